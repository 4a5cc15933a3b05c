#pragma once

#include <string>
#include <vector>

namespace velmora::diskutil {

struct FileSystemProbe;

// A file system the tool recognises, and how it creates, relabels and mounts it.
struct FileSystemFormat {
    std::string name;                      // "MS-DOS FAT32": FilesystemName, and what eraseVolume takes
    std::string type;                      // "msdos": FilesystemType
    std::string blkidType;                 // "vfat"
    std::string blkidVersion;              // "FAT32"; empty matches every version
    std::vector<std::string> makeCommand;  // mkfs program and options, without label and device
    std::string labelOption;               // mkfs option that sets the label
    std::string labelProgram;              // "fatlabel DEVICE LABEL"; empty when there is none
    std::string kernelType;                // type for mount(2)
    std::string fuseProgram;               // FUSE driver used when the kernel lacks one
    std::string fuseOptions;
    size_t maxLabelLength;                 // in bytes
    bool upperCaseLabel;
    bool ownerByMountOption;               // no owners on disk: uid=/gid= at mount time
};

// By FilesystemName or FilesystemType, ignoring case ("MS-DOS FAT32", "exfat", "ext4").
const FileSystemFormat* formatNamed(const std::string& name);

// The format blkid found; null for file systems the tool does not know.
const FileSystemFormat* formatOf(const FileSystemProbe& probe);

// The label the file system will hold for a requested name: upper case for FAT,
// cut to the file system's limit, without trailing spaces.
std::string labelFor(const FileSystemFormat& format, const std::string& name);

// The mkfs command line that creates the file system with the label on the device.
std::vector<std::string> makeFileSystemCommand(const FileSystemFormat& format, const std::string& label,
                                               const std::string& node);

}  // namespace velmora::diskutil
