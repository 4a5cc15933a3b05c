#pragma once

#include <string>

namespace velmora::diskutil {

// What blkid finds on a device. Every field is empty when it finds nothing.
struct FileSystemProbe {
    std::string type;            // "vfat", "exfat", "ext4", ...
    std::string version;         // "FAT32" for FAT, else as blkid says
    std::string label;
    std::string uuid;
    std::string partitionTable;  // "gpt" or "dos" on a partitioned disk
};

// The fields of "blkid -o udev" output: ID_FS_TYPE=, ID_FS_LABEL_ENC= (the label with every
// byte that is neither plain nor part of valid UTF-8 written as \xHH, so it reads back
// exactly), ID_FS_UUID=, ...
FileSystemProbe parseBlkidUdev(const std::string& output);

// The fields of a udev database record (/run/udev/data/bMAJOR:MINOR): the same properties,
// each on an "E:" line.
FileSystemProbe parseUdevProperties(const std::string& record);

// Probes the device itself (blkid -p, no cache: right after mkfs or a relabel, and
// without udev). Without read access to the device (a user who is not root) it reads
// udev's record of the device; without udev that leaves label and UUID empty, never
// the possibly stale ones of blkid's cache.
FileSystemProbe probeFileSystem(const std::string& node);

}  // namespace velmora::diskutil
