#pragma once

#include <string>
#include <vector>

namespace velmora::diskutil {

struct BlockDevice;

// One line of /proc/self/mountinfo.
struct MountEntry {
    std::string majorMinor;  // device number of the mounted file system
    std::string root;        // folder of the file system that is mounted ("/" unless a bind mount)
    std::string mountPoint;
    std::string fsType;
    std::string source;
};

// mountinfo and /proc/swaps write space, tab, newline and backslash as octal
// escapes ("\040"); a backslash not followed by three octal digits stays as it is.
std::string unescapeOctal(const std::string& field);

// The entries of mountinfo text; lines without the fields up to the source are skipped.
std::vector<MountEntry> parseMountTable(const std::string& text);
std::vector<MountEntry> readMountTable();

// The mounts of a device, oldest first. Matched by device number, or by source path
// for file systems that report an anonymous one (btrfs, FUSE without blkdev).
std::vector<MountEntry> mountsOf(const BlockDevice& device, const std::vector<MountEntry>& table);

// The folder where the device's file system is mounted (its root, not a bind mount
// of a subfolder, when there is a choice); empty when it is not mounted.
std::string mountPointOf(const BlockDevice& device, const std::vector<MountEntry>& table);

bool isMountPoint(const std::string& path, const std::vector<MountEntry>& table);

}  // namespace velmora::diskutil
