#include "diskutil/FileSystemFormat.h"

#include "diskutil/FileSystemProbe.h"

#include <algorithm>
#include <cctype>

namespace velmora::diskutil {

namespace {

const std::vector<FileSystemFormat>& knownFormats() {
    static const std::vector<FileSystemFormat> formats = {
        {"MS-DOS FAT32", "msdos", "vfat", "FAT32", {"mkfs.vfat", "-I", "-F", "32"}, "-n", "fatlabel",
         "vfat", "fusefat", "rw+,blkdev", 11, true, true},
        {"MS-DOS FAT16", "msdos", "vfat", "FAT16", {"mkfs.vfat", "-I", "-F", "16"}, "-n", "fatlabel",
         "vfat", "fusefat", "rw+,blkdev", 11, true, true},
        {"MS-DOS FAT12", "msdos", "vfat", "FAT12", {"mkfs.vfat", "-I", "-F", "12"}, "-n", "fatlabel",
         "vfat", "fusefat", "rw+,blkdev", 11, true, true},
        {"ExFAT", "exfat", "exfat", "", {"mkfs.exfat"}, "-L", "exfatlabel",
         "exfat", "mount.exfat-fuse", "", 11, false, true},
        {"Journaled HFS+", "hfs", "hfsplus", "", {"mkfs.hfsplus", "-J"}, "-v", "",
         "hfsplus", "", "", 255, false, false},
        {"NTFS", "ntfs", "ntfs", "", {"mkfs.ntfs", "-Q", "-F"}, "-L", "ntfslabel",
         "ntfs3", "", "", 128, false, true},
        {"ext4", "ext4", "ext4", "", {"mkfs.ext4", "-F", "-q"}, "-L", "e2label",
         "ext4", "", "", 16, false, false},
        {"ext3", "ext3", "ext3", "", {"mkfs.ext3", "-F", "-q"}, "-L", "e2label",
         "ext3", "", "", 16, false, false},
        {"ext2", "ext2", "ext2", "", {"mkfs.ext2", "-F", "-q"}, "-L", "e2label",
         "ext2", "", "", 16, false, false},
    };
    return formats;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

}  // namespace

const FileSystemFormat* formatNamed(const std::string& name) {
    const std::string wanted = lowerCase(name);
    for (const FileSystemFormat& format : knownFormats()) {
        if (lowerCase(format.name) == wanted || format.type == wanted) return &format;
    }
    return nullptr;
}

const FileSystemFormat* formatOf(const FileSystemProbe& probe) {
    for (const FileSystemFormat& format : knownFormats()) {
        if (format.blkidType == probe.type
            && (format.blkidVersion.empty() || probe.version.empty() || format.blkidVersion == probe.version)) {
            return &format;
        }
    }
    return nullptr;
}

std::string labelFor(const FileSystemFormat& format, const std::string& name) {
    std::string label = name;
    if (format.upperCaseLabel) {
        std::transform(label.begin(), label.end(), label.begin(), [](unsigned char c) { return std::toupper(c); });
    }
    if (label.size() > format.maxLabelLength) {
        size_t end = format.maxLabelLength;
        while (end > 0 && (static_cast<unsigned char>(label[end]) & 0xC0) == 0x80) --end;  // keep UTF-8 whole
        label.resize(end);
    }
    while (!label.empty() && label.back() == ' ') label.pop_back();
    return label;
}

std::vector<std::string> makeFileSystemCommand(const FileSystemFormat& format, const std::string& label,
                                               const std::string& node) {
    std::vector<std::string> command = format.makeCommand;
    if (!label.empty()) {
        command.push_back(format.labelOption);
        command.push_back(label);
    }
    command.push_back(node);
    return command;
}

}  // namespace velmora::diskutil
