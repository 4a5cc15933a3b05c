// blkid prints labels that the owner of a volume chose.
#include "FuzzCheck.h"
#include "diskutil/FileSystemProbe.h"

#include <cstddef>
#include <cstdint>
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

bool isPrintableAscii(const std::string& text) {
    for (unsigned char c : text)
        if (c < 0x20 || c > 0x7e) return false;
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    velmora::diskutil::parseBlkidExport(bytes);

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
