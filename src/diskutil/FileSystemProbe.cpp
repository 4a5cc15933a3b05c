#include "diskutil/FileSystemProbe.h"

#include "diskutil/Program.h"

#include <sstream>
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

FileSystemProbe probeFileSystem(const std::string& node) {
    const bool readable = access(node.c_str(), R_OK) == 0;
    const ProgramResult result = readable ? runProgram({"blkid", "-p", "-o", "export", node})
                                          : runProgram({"blkid", "-o", "export", node});
    if (result.exitCode != 0) return {};
    return parseBlkidExport(result.output);
}

}  // namespace velmora::diskutil
