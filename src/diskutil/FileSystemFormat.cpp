#include "diskutil/FileSystemFormat.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/FileSystemProbe.h"
#include "diskutil/Program.h"

#include <algorithm>
#include <cctype>

namespace velmora::diskutil {

const std::vector<FileSystemFormat>& knownFormats() {
    static const std::vector<FileSystemFormat> formats = {
        {"MS-DOS FAT32", "msdos", "vfat", "FAT32", {"mkfs.vfat", "-I", "-F", "32"}, "-n", "fatlabel",
         "vfat", "fusefat", "rw+,blkdev", 11, false, true, true},
        {"MS-DOS FAT16", "msdos", "vfat", "FAT16", {"mkfs.vfat", "-I", "-F", "16"}, "-n", "fatlabel",
         "vfat", "fusefat", "rw+,blkdev", 11, false, true, true},
        {"MS-DOS FAT12", "msdos", "vfat", "FAT12", {"mkfs.vfat", "-I", "-F", "12"}, "-n", "fatlabel",
         "vfat", "fusefat", "rw+,blkdev", 11, false, true, true},
        {"ExFAT", "exfat", "exfat", "", {"mkfs.exfat"}, "-L", "exfatlabel",
         "exfat", "mount.exfat-fuse", "", 15, true, false, true},
        {"Journaled HFS+", "hfs", "hfsplus", "", {"mkfs.hfsplus", "-J"}, "-v", "",
         "hfsplus", "", "", 255, true, false, false},
        {"NTFS", "ntfs", "ntfs", "", {"mkfs.ntfs", "-Q", "-F"}, "-L", "ntfslabel",
         "ntfs3", "", "", 128, true, false, true},
        {"ext4", "ext4", "ext4", "", {"mkfs.ext4", "-F", "-q"}, "-L", "e2label",
         "ext4", "", "", 16, false, false, false},
        {"ext3", "ext3", "ext3", "", {"mkfs.ext3", "-F", "-q"}, "-L", "e2label",
         "ext3", "", "", 16, false, false, false},
        {"ext2", "ext2", "ext2", "", {"mkfs.ext2", "-F", "-q"}, "-L", "e2label",
         "ext2", "", "", 16, false, false, false},
    };
    return formats;
}

namespace {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// UTF-16 units of UTF-8 text: one per character, two for those beyond the BMP (4-byte sequences).
size_t utf16Length(const std::string& text) {
    size_t units = 0;
    for (const unsigned char byte : text) {
        if ((byte & 0xC0) == 0x80) continue;
        units += byte >= 0xF0 ? 2 : 1;
    }
    return units;
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

bool canMake(const FileSystemFormat& format) { return !findProgram(format.makeCommand.front()).empty(); }

std::string labelFor(const FileSystemFormat& format, const std::string& name) {
    if (!format.upperCaseLabel) {
        const size_t length = format.labelInUtf16Units ? utf16Length(name) : name.size();
        if (length > format.maxLabelLength) {
            throw DiskUtilError("A " + format.name + " volume name holds at most " + std::to_string(format.maxLabelLength)
                                + (format.labelInUtf16Units ? " characters" : " bytes") + "; \"" + name + "\" has "
                                + std::to_string(length));
        }
        return name;
    }
    std::string label = name;
    std::transform(label.begin(), label.end(), label.begin(), [](unsigned char c) { return std::toupper(c); });
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
