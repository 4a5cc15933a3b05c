#include "diskutil/MountTable.h"

#include "diskutil/BlockDevice.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmora::diskutil {

std::string unescapeOctal(const std::string& field) {
    std::string text;
    for (size_t i = 0; i < field.size(); ++i) {
        const bool escape = field[i] == '\\' && i + 3 < field.size()
            && field.substr(i + 1, 3).find_first_not_of("01234567") == std::string::npos;
        if (escape) {
            text += static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
}

namespace {

// Splits a line at single spaces. The kernel escapes the blanks inside a field; every
// other byte, carriage return and form feed included, belongs to the field.
std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (size_t space = line.find(' '); space != std::string::npos; space = line.find(' ', start)) {
        fields.push_back(line.substr(start, space - start));
        start = space + 1;
    }
    fields.push_back(line.substr(start));
    return fields;
}

std::string canonicalOrSelf(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

}  // namespace

std::vector<MountEntry> parseMountTable(const std::string& text) {
    std::vector<MountEntry> table;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        // id parent major:minor root mount-point options [optional fields...] - type source super-options
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() < 9) continue;
        const auto separator = std::find(fields.begin() + 6, fields.end(), "-");
        if (fields.end() - separator < 3) continue;
        MountEntry entry;
        entry.majorMinor = fields[2];
        entry.root = unescapeOctal(fields[3]);
        entry.mountPoint = unescapeOctal(fields[4]);
        entry.fsType = *(separator + 1);
        entry.source = unescapeOctal(*(separator + 2));
        table.push_back(entry);
    }
    return table;
}

std::vector<MountEntry> readMountTable() {
    std::ifstream file("/proc/self/mountinfo");
    std::ostringstream text;
    text << file.rdbuf();
    return parseMountTable(text.str());
}

std::vector<MountEntry> mountsOf(const BlockDevice& device, const std::vector<MountEntry>& table) {
    std::vector<MountEntry> mounts;
    for (const MountEntry& entry : table) {
        const bool anonymous = entry.majorMinor.starts_with("0:");
        if (entry.majorMinor == device.majorMinor
            || (anonymous && entry.source.starts_with("/dev/") && canonicalOrSelf(entry.source) == device.node)) {
            mounts.push_back(entry);
        }
    }
    return mounts;
}

std::string mountPointOf(const BlockDevice& device, const std::vector<MountEntry>& table) {
    const std::vector<MountEntry> mounts = mountsOf(device, table);
    for (const MountEntry& entry : mounts) {
        if (entry.root == "/") return entry.mountPoint;
    }
    return mounts.empty() ? std::string() : mounts.front().mountPoint;
}

bool isMountPoint(const std::string& path, const std::vector<MountEntry>& table) {
    for (const MountEntry& entry : table) {
        if (entry.mountPoint == path) return true;
    }
    return false;
}

}  // namespace velmora::diskutil
