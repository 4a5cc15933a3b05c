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
    size_t maxLabelLength;                 // in labelUnits
    bool labelInUtf16Units;                // the limit counts UTF-16 units, else bytes
    bool upperCaseLabel;                   // FAT: upper case, cut to the limit
    bool ownerByMountOption;               // no owners on disk: uid=/gid= at mount time
};

// By FilesystemName or FilesystemType, ignoring case ("MS-DOS FAT32", "exfat", "ext4").
const FileSystemFormat* formatNamed(const std::string& name);

// The format blkid found; null for file systems the tool does not know.
const FileSystemFormat* formatOf(const FileSystemProbe& probe);

// Every format the tool knows, in the order listFilesystems prints them.
const std::vector<FileSystemFormat>& knownFormats();

// Whether the tool can create the format here: its mkfs program is installed.
bool canMake(const FileSystemFormat& format);

// The label the file system will hold for a requested name. FAT takes it upper case,
// cut to 11 bytes, without trailing spaces; every other file system takes it as it is
// or, when it is longer than the file system's limit, refuses it (DiskUtilError)
// rather than cutting it.
std::string labelFor(const FileSystemFormat& format, const std::string& name);

// The mkfs command line that creates the file system with the label on the device.
std::vector<std::string> makeFileSystemCommand(const FileSystemFormat& format, const std::string& label,
                                               const std::string& node);

}  // namespace velmora::diskutil
