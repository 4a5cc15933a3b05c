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

// The fields of "blkid -o export" output (KEY=value lines, values backslash-escaped).
FileSystemProbe parseBlkidExport(const std::string& output);

// Probes the device itself (blkid -p, no cache: right after mkfs and without udev).
// Without read access to the device it falls back to blkid's cache.
FileSystemProbe probeFileSystem(const std::string& node);

}  // namespace velmora::diskutil
