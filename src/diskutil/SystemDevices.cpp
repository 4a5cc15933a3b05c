#include "diskutil/SystemDevices.h"

#include "diskutil/BlockDevice.h"
#include "diskutil/DiskUtilError.h"
#include "diskutil/MountTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace fs = std::filesystem;

namespace velmora::diskutil {

namespace {

const char* const systemFolders[] = {"/", "/boot", "/boot/efi", "/home", "/usr"};

std::string majorMinorOf(dev_t device) {
    return std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

// The block device a mounted file system lives on. File systems with an anonymous
// device number (btrfs, FUSE) name their device node as the mount source instead.
std::string blockDeviceOfMount(const std::string& majorMinor, const std::vector<MountEntry>& table) {
    if (!majorMinor.starts_with("0:")) return majorMinor;
    for (const MountEntry& entry : table) {
        struct stat info;
        if (entry.majorMinor == majorMinor && entry.source.starts_with("/dev/")
            && stat(entry.source.c_str(), &info) == 0 && S_ISBLK(info.st_mode)) {
            return majorMinorOf(info.st_rdev);
        }
    }
    return {};
}

std::string kernelNameOf(const std::string& majorMinor) {
    std::error_code error;
    const fs::path link = fs::read_symlink("/sys/dev/block/" + majorMinor, error);
    return error ? std::string() : link.filename().string();
}

std::vector<std::string> entriesOf(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

// The device, every device it is built on (slaves, followed down), and the whole
// disks of all of them: erasing any of these would destroy the device's data.
void addDeviceAndWhatItLiesOn(const std::string& kernelName, std::set<std::string>& devices) {
    if (kernelName.empty() || !devices.insert(kernelName).second) return;
    if (const std::optional<BlockDevice> device = readBlockDevice(kernelName)) devices.insert(device->wholeDisk);
    for (const std::string& slave : entriesOf("/sys/class/block/" + kernelName + "/slaves")) {
        addDeviceAndWhatItLiesOn(slave, devices);
    }
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

}  // namespace

std::vector<SystemUse> systemMountUses(const std::vector<MountEntry>& table) {
    std::vector<SystemUse> uses;
    for (const MountEntry& entry : table) {
        for (const char* folder : systemFolders) {
            if (entry.mountPoint != folder) continue;
            const std::string device = blockDeviceOfMount(entry.majorMinor, table);
            if (!device.empty()) uses.push_back({device, std::string("holds ") + folder});
        }
    }
    return uses;
}

std::vector<SystemUse> swapUses(const std::string& procSwaps, const std::vector<MountEntry>& table) {
    std::vector<SystemUse> uses;
    std::istringstream lines(procSwaps);
    std::string line;
    std::getline(lines, line);  // the column titles
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string name;
        if (!(fields >> name)) continue;
        const std::string path = unescapeOctal(name);
        struct stat info;
        if (stat(path.c_str(), &info) != 0) continue;
        if (S_ISBLK(info.st_mode)) {
            uses.push_back({majorMinorOf(info.st_rdev), "is an active swap area"});
        } else {
            const std::string device = blockDeviceOfMount(majorMinorOf(info.st_dev), table);
            if (!device.empty()) uses.push_back({device, "holds the active swap file " + path});
        }
    }
    return uses;
}

std::string protectionReason(const BlockDevice& target, const std::vector<SystemUse>& uses) {
    for (const SystemUse& use : uses) {
        const std::string used = kernelNameOf(use.majorMinor);
        std::set<std::string> devices;
        addDeviceAndWhatItLiesOn(used, devices);
        if (!devices.contains(target.kernelName)) continue;
        if (used == target.kernelName) return "it " + use.use;
        return "/dev/" + used + " lies on it and " + use.use;
    }
    std::vector<BlockDevice> devices{target};
    if (target.isWholeDisk) {
        for (const BlockDevice& partition : partitionsOf(target.kernelName)) devices.push_back(partition);
    }
    for (const BlockDevice& device : devices) {
        const std::vector<std::string> holders = entriesOf("/sys/class/block/" + device.kernelName + "/holders");
        if (holders.empty()) continue;
        const std::string which = device.kernelName == target.kernelName ? "it" : "its partition " + device.node;
        return which + " is in use by " + joined(holders) + " (LVM, RAID or an encrypted volume)";
    }
    return {};
}

void refuseSystemDevice(const BlockDevice& target) {
    const std::vector<MountEntry> table = readMountTable();
    std::vector<SystemUse> uses = systemMountUses(table);
    std::ifstream swaps("/proc/swaps");
    std::ostringstream text;
    text << swaps.rdbuf();
    for (SystemUse& use : swapUses(text.str(), table)) uses.push_back(use);
    const std::string reason = protectionReason(target, uses);
    if (!reason.empty()) throw DiskUtilError("Refusing to change " + target.node + ": " + reason);
}

}  // namespace velmora::diskutil
