#pragma once

#include "diskutil/BlockDevice.h"
#include "diskutil/FileSystemProbe.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::diskutil {

struct FileSystemFormat;
struct MountEntry;

// A block device with the file system on it and where that is mounted.
struct Volume {
    BlockDevice device;
    FileSystemProbe fileSystem;
    const FileSystemFormat* format = nullptr;  // null when the tool does not know the file system
    std::string mountPoint;                    // empty when not mounted

    bool hasFileSystem() const { return !fileSystem.type.empty(); }
    // The label; without one the mount folder's name, else the kernel name.
    std::string name() const;
    // FilesystemName: the format's name, or blkid's type for other file systems.
    std::string fileSystemName() const;
    std::string fileSystemType() const;
    // What the device holds: the file system type, or the partition scheme of a disk.
    std::string content() const;
    // Bytes available on the mounted file system; 0 when it is not mounted.
    uint64_t freeBytes() const;
};

Volume describeVolume(const BlockDevice& device, const std::vector<MountEntry>& mountTable);

// The volume a command line names: a device node, a kernel name (sdb1, loop0), a
// mount point, a volume name or a volume UUID. Throws "Could not find disk: TARGET".
Volume findVolume(const std::string& target);

}  // namespace velmora::diskutil
