#include "diskutil/ProcessUsers.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace velmora::diskutil {

namespace {

bool parseDeviceNumber(const std::string& text, int base, dev_t& device) {
    unsigned major = 0;
    unsigned minor = 0;
    const char* format = base == 16 ? "%x:%x" : "%u:%u";
    if (std::sscanf(text.c_str(), format, &major, &minor) != 2) return false;
    device = makedev(major, minor);
    return true;
}

// The file a /proc link names is on the device (stat follows the link to the file itself).
bool linkIsOnDevice(const fs::path& link, dev_t device) {
    struct stat info;
    return stat(link.c_str(), &info) == 0 && info.st_dev == device;
}

// The maps file names the device of each mapping in hexadecimal "major:minor".
bool mapsFileOnDevice(const fs::path& maps, dev_t device) {
    std::ifstream file(maps);
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string address, permissions, offset, deviceField;
        dev_t mapped = 0;
        if (fields >> address >> permissions >> offset >> deviceField && parseDeviceNumber(deviceField, 16, mapped)
            && mapped == device && deviceField != "00:00") {
            return true;
        }
    }
    return false;
}

// The /proc link names the block device with this device number itself.
bool linkIsDevice(const fs::path& link, dev_t device) {
    struct stat info;
    return stat(link.c_str(), &info) == 0 && S_ISBLK(info.st_mode) && info.st_rdev == device;
}

template <typename UseOf>
std::vector<ProcessUser> processesWith(const UseOf& useOfProcess) {
    std::vector<ProcessUser> users;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos) continue;
        const pid_t pid = static_cast<pid_t>(std::stol(name));
        if (pid == getpid()) continue;
        const std::string use = useOfProcess(entry.path());
        if (use.empty()) continue;
        std::string command;
        std::getline(std::ifstream(entry.path() / "comm"), command);
        users.push_back({pid, command, use});
    }
    return users;
}

std::string useOf(const fs::path& process, dev_t device) {
    std::error_code error;
    for (const auto& descriptor : fs::directory_iterator(process / "fd", error)) {
        if (linkIsOnDevice(descriptor.path(), device)) return "open file";
    }
    if (linkIsOnDevice(process / "cwd", device)) return "working folder";
    if (linkIsOnDevice(process / "root", device)) return "root folder";
    if (linkIsOnDevice(process / "exe", device)) return "program";
    if (mapsFileOnDevice(process / "maps", device)) return "mapped file";
    return {};
}

}  // namespace

std::vector<ProcessUser> processesUsing(const std::string& majorMinor) {
    dev_t device = 0;
    if (!parseDeviceNumber(majorMinor, 10, device)) return {};
    return processesWith([device](const fs::path& process) { return useOf(process, device); });
}

std::vector<ProcessUser> processesHoldingDevice(const std::string& node) {
    struct stat info;
    if (stat(node.c_str(), &info) != 0 || !S_ISBLK(info.st_mode)) return {};
    return processesWith([device = info.st_rdev](const fs::path& process) {
        std::error_code error;
        for (const auto& descriptor : fs::directory_iterator(process / "fd", error)) {
            if (linkIsDevice(descriptor.path(), device)) return std::string("open device");
        }
        return std::string();
    });
}

std::string describeUsers(const std::vector<ProcessUser>& users) {
    std::string text;
    for (const ProcessUser& user : users) {
        if (!text.empty()) text += ", ";
        text += user.command + " (pid " + std::to_string(user.pid) + ", " + user.use + ")";
    }
    return text;
}

}  // namespace velmora::diskutil
