#include "diskutil/BlockDevice.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace velmora::diskutil {

namespace {

const fs::path sysClassBlock = "/sys/class/block";

std::string readFirstLine(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::pair<unsigned long, unsigned long> deviceNumber(const BlockDevice& device) {
    const size_t colon = device.majorMinor.find(':');
    if (colon == std::string::npos) return {0, 0};
    return {std::stoul(device.majorMinor.substr(0, colon)), std::stoul(device.majorMinor.substr(colon + 1))};
}

bool byDeviceNumber(const BlockDevice& a, const BlockDevice& b) {
    return deviceNumber(a) < deviceNumber(b);
}

// Named after the bus the disk hangs on, as the macOS disk utility names them.
std::string busProtocolOf(const std::string& wholeDisk, bool isLoop) {
    if (isLoop) return "Disk Image";
    std::error_code error;
    const std::string devicePath = fs::canonical(sysClassBlock / wholeDisk, error).string();
    const std::pair<const char*, const char*> buses[] = {
        {"/usb", "USB"},   {"/nvme", "PCI-Express"}, {"/ata", "SATA"},
        {"/mmc", "Secure Digital"}, {"/virtio", "VirtIO"}, {"/host", "SCSI"},
    };
    for (const auto& [pathPart, name] : buses) {
        if (devicePath.find(pathPart) != std::string::npos) return name;
    }
    return "Unknown";
}

}  // namespace

std::optional<BlockDevice> readBlockDevice(const std::string& kernelName) {
    if (kernelName.empty() || kernelName.find('/') != std::string::npos) return std::nullopt;
    const fs::path sysPath = sysClassBlock / kernelName;
    std::error_code error;
    if (!fs::exists(sysPath / "dev", error)) return std::nullopt;

    BlockDevice device;
    device.kernelName = kernelName;
    device.node = "/dev/" + kernelName;
    device.majorMinor = readFirstLine(sysPath / "dev");
    const std::string sectors = readFirstLine(sysPath / "size");
    device.sizeBytes = sectors.empty() ? 0 : std::stoull(sectors) * 512;  // sysfs counts 512-byte sectors
    device.isWholeDisk = !fs::exists(sysPath / "partition", error);
    device.wholeDisk = device.isWholeDisk
        ? kernelName
        : fs::canonical(sysPath, error).parent_path().filename().string();

    const fs::path diskPath = sysClassBlock / device.wholeDisk;
    device.isLoop = device.wholeDisk.starts_with("loop");
    device.solidState = readFirstLine(diskPath / "queue" / "rotational") == "0";
    device.removable = readFirstLine(diskPath / "removable") == "1";
    device.busProtocol = busProtocolOf(device.wholeDisk, device.isLoop);
    device.ejectable = device.isLoop || device.removable || device.busProtocol == "USB";
    return device;
}

std::vector<BlockDevice> partitionsOf(const std::string& wholeDisk) {
    std::vector<BlockDevice> partitions;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/sys/block/" + wholeDisk, error)) {
        if (!fs::exists(entry.path() / "partition", error)) continue;
        if (auto partition = readBlockDevice(entry.path().filename().string())) partitions.push_back(*partition);
    }
    std::sort(partitions.begin(), partitions.end(), byDeviceNumber);
    return partitions;
}

std::vector<BlockDevice> listBlockDevices() {
    std::vector<BlockDevice> disks;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/sys/block", error)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("ram") || name.starts_with("zram")) continue;
        auto disk = readBlockDevice(name);
        if (disk && disk->sizeBytes > 0) disks.push_back(*disk);
    }
    std::sort(disks.begin(), disks.end(), byDeviceNumber);

    std::vector<BlockDevice> devices;
    for (const BlockDevice& disk : disks) {
        devices.push_back(disk);
        for (const BlockDevice& partition : partitionsOf(disk.kernelName)) devices.push_back(partition);
    }
    return devices;
}

}  // namespace velmora::diskutil
