#include "diskutil/FileSystemProbe.h"

#include "diskutil/Program.h"

#include <cctype>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace velmora::diskutil {

namespace {

// blkid and udev write the bytes of a label that are neither plain ASCII nor valid UTF-8,
// a backslash included, as "\xHH".
std::string decodeHexEscapes(const std::string& value) {
    std::string text;
    for (size_t i = 0; i < value.size(); ++i) {
        const auto hexDigit = [&](size_t at) { return std::isxdigit(static_cast<unsigned char>(value[at])) != 0; };
        if (value.compare(i, 2, "\\x") == 0 && i + 3 < value.size() && hexDigit(i + 2) && hexDigit(i + 3)) {
            text += static_cast<char>(std::stoi(value.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            text += value[i];
        }
    }
    return text;
}

// One "KEY=value" property as blkid -o udev and udev's records write it.
void readProperty(const std::string& property, FileSystemProbe& probe) {
    const size_t equals = property.find('=');
    if (equals == std::string::npos) return;
    const std::string key = property.substr(0, equals);
    const std::string value = property.substr(equals + 1);
    if (key == "ID_FS_TYPE") probe.type = value;
    else if (key == "ID_FS_VERSION") probe.version = value;
    else if (key == "ID_FS_LABEL_ENC") probe.label = decodeHexEscapes(value);
    else if (key == "ID_FS_UUID") probe.uuid = value;
    else if (key == "ID_PART_TABLE_TYPE") probe.partitionTable = value;
}

}  // namespace

FileSystemProbe parseBlkidUdev(const std::string& output) {
    FileSystemProbe probe;
    std::istringstream lines(output);
    std::string line;
    while (std::getline(lines, line)) readProperty(line, probe);
    return probe;
}

FileSystemProbe parseUdevProperties(const std::string& record) {
    FileSystemProbe probe;
    std::istringstream lines(record);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.starts_with("E:")) readProperty(line.substr(2), probe);
    }
    return probe;
}

FileSystemProbe probeFileSystem(const std::string& node) {
    if (access(node.c_str(), R_OK) == 0) {
        // The udev format, not "export": that one writes other bytes of a label in a lossy
        // ^X / M-X notation, so "Café" or a label with a newline would read back changed.
        const ProgramResult result = runProgram({"blkid", "-p", "-o", "udev", "--", node});
        return result.exitCode == 0 ? parseBlkidUdev(result.output) : FileSystemProbe{};
    }
    // Without read access: udev's record of the device, which udev renews on every
    // change of the device. Never blkid's cache: it keeps what the last root query saw,
    // a label or UUID that may have changed since.
    struct stat info;
    if (stat(node.c_str(), &info) != 0 || !S_ISBLK(info.st_mode)) return {};
    std::ifstream record("/run/udev/data/b" + std::to_string(major(info.st_rdev)) + ":"
                         + std::to_string(minor(info.st_rdev)));
    std::ostringstream text;
    text << record.rdbuf();
    return parseUdevProperties(text.str());
}

}  // namespace velmora::diskutil
