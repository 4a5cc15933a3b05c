// Mount points and sources come from volume labels and from whoever mounts a file system.
#include "FuzzCheck.h"
#include "diskutil/MountTable.h"
#include "engine/volumes/MountInfo.h"

#include <QFile>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace {

// What the kernel writes for a path in mountinfo: blanks, tabs, newlines and
// backslashes as three octal digits.
std::string escapedAsKernel(const std::string& path) {
    std::string text;
    for (unsigned char c : path) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\\') {
            char code[5];
            std::snprintf(code, sizeof code, "\\%03o", c);
            text += code;
        } else {
            text += char(c);
        }
    }
    return text;
}

QString decoded(const std::string& bytes) { return QFile::decodeName(QByteArray(bytes.data(), qsizetype(bytes.size()))); }

// The tool's parser and the engine's read any text alike.
void checkParsersAgree(const std::string& text) {
    const auto tool = velmora::diskutil::parseMountTable(text);
    const auto engine = velmora::parseMountInfo(QByteArray(text.data(), qsizetype(text.size())));
    fuzzCheck(tool.size() == size_t(engine.size()), "both parsers find the same number of mounts");
    for (size_t i = 0; i < tool.size(); ++i) {
        fuzzCheck(decoded(tool[i].mountPoint) == engine[qsizetype(i)].mountPoint, "both read the same mount point");
        fuzzCheck(decoded(tool[i].source) == engine[qsizetype(i)].source, "both read the same source");
        fuzzCheck(decoded(tool[i].root) == engine[qsizetype(i)].root, "both read the same root");
        fuzzCheck(tool[i].majorMinor == engine[qsizetype(i)].deviceNumber.toStdString(), "both read the same device");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    checkParsersAgree(bytes);

    // The input as a mount point and a source name, written the way the kernel writes
    // them, must come back byte for byte.
    const std::string mountPoint = "/media/" + bytes;
    const std::string source = "/dev/" + bytes;
    const std::string line = "36 25 8:17 / " + escapedAsKernel(mountPoint) + " rw,relatime shared:1 - ext4 "
        + escapedAsKernel(source) + " rw\n";
    const auto tool = velmora::diskutil::parseMountTable(line);
    fuzzCheck(tool.size() == 1, "the tool reads the one mount");
    fuzzCheck(tool[0].mountPoint == mountPoint, "the tool reads the mount point as written");
    fuzzCheck(tool[0].source == source, "the tool reads the source as written");
    fuzzCheck(tool[0].fsType == "ext4" && tool[0].majorMinor == "8:17", "the tool reads type and device");
    const auto engine = velmora::parseMountInfo(QByteArray::fromStdString(line));
    fuzzCheck(engine.size() == 1, "the engine reads the one mount");
    fuzzCheck(engine[0].mountPoint == decoded(mountPoint), "the engine reads the mount point as written");
    fuzzCheck(engine[0].source == decoded(source), "the engine reads the source as written");
    fuzzCheck(engine[0].fileSystemType == "ext4" && !engine[0].readOnly, "the engine reads type and options");
    checkParsersAgree(line);
    return 0;
}
