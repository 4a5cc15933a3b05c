// blkid's output and udev's record of a device carry labels that the owner of a volume chose.
#include "FuzzCheck.h"
#include "diskutil/FileSystemProbe.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

// What "blkid -o export" writes for a printable value: a backslash before blanks,
// quotes, backslashes and the other shell characters.
std::string escapedAsBlkid(const std::string& value) {
    std::string text;
    for (char c : value) {
        if (std::strchr(" \\\"'$`<>", c)) text += '\\';
        text += c;
    }
    return text;
}

// What udev writes for a label in ID_FS_LABEL_ENC: here every byte but letters and digits
// as "\xHH" (udev keeps a few more as they are; the reader must take both).
std::string encodedAsUdev(const std::string& value) {
    std::string text;
    for (unsigned char c : value) {
        if (std::isalnum(c)) {
            text += char(c);
        } else {
            char code[5];
            std::snprintf(code, sizeof code, "\\x%02x", c);
            text += code;
        }
    }
    return text;
}

bool isPrintableAscii(const std::string& text) {
    for (unsigned char c : text)
        if (c < 0x20 || c > 0x7e) return false;
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    velmora::diskutil::parseBlkidExport(bytes);
    velmora::diskutil::parseUdevProperties(bytes);

    // Any label, as udev encodes it, reads back byte for byte.
    const std::string record = "S:disk/by-uuid/9C57-CB7C\nE:ID_FS_LABEL=ignored\nE:ID_FS_LABEL_ENC="
        + encodedAsUdev(bytes) + "\nE:ID_FS_UUID=9C57-CB7C\nE:ID_FS_TYPE=vfat\nE:ID_FS_VERSION=FAT32\n";
    const velmora::diskutil::FileSystemProbe fromUdev = velmora::diskutil::parseUdevProperties(record);
    fuzzCheck(fromUdev.label == bytes, "the label reads back from udev's record");
    fuzzCheck(fromUdev.type == "vfat" && fromUdev.uuid == "9C57-CB7C" && fromUdev.partitionTable.empty(),
              "a label cannot change the other fields of udev's record");

    // blkid writes other bytes in its lossy ^X / M-X notation, so only printable labels
    // can come back exactly.
    if (!isPrintableAscii(bytes)) return 0;
    const std::string output = "DEVNAME=/dev/loop7\nLABEL=" + escapedAsBlkid(bytes)
        + "\nUUID=9C57-CB7C\nVERSION=FAT32\nBLOCK_SIZE=512\nTYPE=vfat\nUSAGE=filesystem\n";
    const velmora::diskutil::FileSystemProbe probe = velmora::diskutil::parseBlkidExport(output);
    fuzzCheck(probe.label == bytes, "the label reads back as the volume has it");
    fuzzCheck(probe.type == "vfat" && probe.version == "FAT32" && probe.uuid == "9C57-CB7C",
              "a label cannot change the other fields");
    fuzzCheck(probe.partitionTable.empty(), "a label cannot add a partition table");
    return 0;
}
