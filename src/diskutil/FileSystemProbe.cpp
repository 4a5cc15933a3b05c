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

// "blkid -o export" puts a backslash before spaces, quotes and other shell characters.
std::string unescape(const std::string& value) {
    std::string text;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) ++i;
        text += value[i];
    }
    return text;
}

// udev writes bytes outside plain ASCII letters and digits in a label as "\xHH".
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

}  // namespace

FileSystemProbe parseBlkidExport(const std::string& output) {
    FileSystemProbe probe;
    std::istringstream lines(output);
    std::string line;
    while (std::getline(lines, line)) {
        const size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        const std::string key = line.substr(0, equals);
        const std::string value = unescape(line.substr(equals + 1));
        if (key == "TYPE") probe.type = value;
        else if (key == "VERSION") probe.version = value;
        else if (key == "LABEL") probe.label = value;
        else if (key == "UUID") probe.uuid = value;
        else if (key == "PTTYPE") probe.partitionTable = value;
    }
    return probe;
}

FileSystemProbe parseUdevProperties(const std::string& record) {
    FileSystemProbe probe;
    std::istringstream lines(record);
    std::string line;
    while (std::getline(lines, line)) {
        if (!line.starts_with("E:")) continue;
        const size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        const std::string key = line.substr(2, equals - 2);
        const std::string value = line.substr(equals + 1);
        if (key == "ID_FS_TYPE") probe.type = value;
        else if (key == "ID_FS_VERSION") probe.version = value;
        else if (key == "ID_FS_LABEL_ENC") probe.label = decodeHexEscapes(value);
        else if (key == "ID_FS_UUID") probe.uuid = value;
        else if (key == "ID_PART_TABLE_TYPE") probe.partitionTable = value;
    }
    return probe;
}

FileSystemProbe probeFileSystem(const std::string& node) {
    if (access(node.c_str(), R_OK) == 0) {
        const ProgramResult result = runProgram({"blkid", "-p", "-o", "export", node});
        return result.exitCode == 0 ? parseBlkidExport(result.output) : FileSystemProbe{};
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
