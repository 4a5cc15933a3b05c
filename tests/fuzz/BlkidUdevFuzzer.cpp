// blkid's output and udev's record of a device carry labels that the owner of a volume chose.
#include "FuzzCheck.h"
#include "diskutil/FileSystemProbe.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace {

// How "blkid -o udev" and udev write a label in ID_FS_LABEL_ENC: a backslash, blanks,
// control characters and the other ASCII punctuation as "\xHH". They keep valid UTF-8
// as it is; here every byte from 0x80 up stays, which the reader must take alike.
std::string encodedAsUdev(const std::string& value) {
    std::string text;
    for (unsigned char c : value) {
        if (std::isalnum(c) || c >= 0x80) {
            text += char(c);
        } else {
            char code[5];
            std::snprintf(code, sizeof code, "\\x%02x", c);
            text += code;
        }
    }
    return text;
}

void checkOtherFields(const velmora::diskutil::FileSystemProbe& probe) {
    fuzzCheck(probe.type == "vfat" && probe.version == "FAT32" && probe.uuid == "9C57-CB7C",
              "a label cannot change the other fields");
    fuzzCheck(probe.partitionTable.empty(), "a label cannot add a partition table");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    velmora::diskutil::parseBlkidUdev(bytes);
    velmora::diskutil::parseUdevProperties(bytes);

    // Any label, as blkid -p -o udev prints it, reads back byte for byte.
    const std::string label = encodedAsUdev(bytes);
    const std::string output = "ID_FS_LABEL=ignored\nID_FS_LABEL_ENC=" + label
        + "\nID_FS_UUID=9C57-CB7C\nID_FS_VERSION=FAT32\nID_FS_BLOCK_SIZE=512\nID_FS_TYPE=vfat\n";
    const velmora::diskutil::FileSystemProbe fromBlkid = velmora::diskutil::parseBlkidUdev(output);
    fuzzCheck(fromBlkid.label == bytes, "the label reads back from blkid's output");
    checkOtherFields(fromBlkid);

    // And as udev keeps it in its record of the device.
    const std::string record = "S:disk/by-uuid/9C57-CB7C\nE:ID_FS_LABEL=ignored\nE:ID_FS_LABEL_ENC=" + label
        + "\nE:ID_FS_UUID=9C57-CB7C\nE:ID_FS_TYPE=vfat\nE:ID_FS_VERSION=FAT32\n";
    const velmora::diskutil::FileSystemProbe fromUdev = velmora::diskutil::parseUdevProperties(record);
    fuzzCheck(fromUdev.label == bytes, "the label reads back from udev's record");
    checkOtherFields(fromUdev);
    return 0;
}
