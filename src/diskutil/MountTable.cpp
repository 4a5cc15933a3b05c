#include "diskutil/MountTable.h"

#include "diskutil/BlockDevice.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmora::diskutil {

namespace {

// mountinfo writes space, tab, newline and backslash as octal escapes ("\040").
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

std::string canonicalOrSelf(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

}  // namespace

std::vector<MountEntry> readMountTable() {
    std::vector<MountEntry> table;
    std::ifstream file("/proc/self/mountinfo");
    std::string line;
    while (std::getline(file, line)) {
        // id parent major:minor root mount-point options [optional fields...] - type source super-options
        std::istringstream fields(line);
        std::string id, parent, options, field;
        MountEntry entry;
        fields >> id >> parent >> entry.majorMinor >> entry.root >> entry.mountPoint >> options;
        while (fields >> field && field != "-") {
        }
        fields >> entry.fsType >> entry.source;
        entry.root = unescapeOctal(entry.root);
        entry.mountPoint = unescapeOctal(entry.mountPoint);
        entry.source = unescapeOctal(entry.source);
        table.push_back(entry);
    }
    return table;
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
