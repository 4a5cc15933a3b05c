#include "diskutil/Volume.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/FatAllocationTable.h"
#include "diskutil/FileSystemFormat.h"
#include "diskutil/MountTable.h"

#include <filesystem>
#include <strings.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace fs = std::filesystem;

namespace velmora::diskutil {

namespace {

std::optional<BlockDevice> deviceOfNode(const std::string& node) {
    std::error_code error;
    const fs::path resolved = fs::canonical(node, error);
    struct stat info;
    if (error || stat(resolved.c_str(), &info) != 0 || !S_ISBLK(info.st_mode)) return std::nullopt;
    return readBlockDevice(resolved.filename().string());
}

std::optional<BlockDevice> deviceMountedAt(const std::string& path, const std::vector<MountEntry>& table) {
    std::error_code error;
    const std::string folder = fs::canonical(path, error).string();
    if (error) return std::nullopt;
    for (const BlockDevice& device : listBlockDevices()) {
        for (const MountEntry& entry : mountsOf(device, table)) {
            if (entry.mountPoint == folder) return device;
        }
    }
    return std::nullopt;
}

// A volume name or UUID; a mounted volume wins over an unmounted one of the same name.
std::optional<Volume> volumeNamed(const std::string& target, const std::vector<MountEntry>& table) {
    std::optional<Volume> unmounted;
    for (const BlockDevice& device : listBlockDevices()) {
        Volume volume = describeVolume(device, table);
        if (!volume.hasFileSystem()) continue;
        const bool matches = volume.name() == target
            || (!volume.fileSystem.uuid.empty() && strcasecmp(volume.fileSystem.uuid.c_str(), target.c_str()) == 0);
        if (!matches) continue;
        if (!volume.mountPoint.empty()) return volume;
        if (!unmounted) unmounted = volume;
    }
    return unmounted;
}

}  // namespace

std::string Volume::name() const {
    if (!fileSystem.label.empty()) return fileSystem.label;
    if (!mountPoint.empty() && mountPoint != "/") return fs::path(mountPoint).filename().string();
    return device.kernelName;
}

std::string Volume::fileSystemName() const {
    return format ? format->name : fileSystem.type;
}

std::string Volume::fileSystemType() const {
    return format ? format->type : fileSystem.type;
}

std::string Volume::content() const {
    if (hasFileSystem()) return fileSystem.type;
    if (fileSystem.partitionTable == "gpt") return "GUID_partition_scheme";
    if (fileSystem.partitionTable == "dos") return "FDisk_partition_scheme";
    return fileSystem.partitionTable;
}

uint64_t Volume::freeBytes() const {
    struct statvfs space;
    if (mountPoint.empty() || statvfs(mountPoint.c_str(), &space) != 0) return 0;
    if (space.f_blocks == 0 && fileSystem.type == "vfat") {  // a FUSE FAT driver that reports no sizes
        return countFatFreeBytes(device.node).value_or(0);
    }
    return uint64_t(space.f_bavail) * space.f_frsize;
}

Volume describeVolume(const BlockDevice& device, const std::vector<MountEntry>& mountTable) {
    Volume volume;
    volume.device = device;
    volume.fileSystem = probeFileSystem(device.node);
    volume.mountPoint = mountPointOf(device, mountTable);
    // A device blkid may not read (a sandboxed system disk) still shows its kernel mount type.
    const std::vector<MountEntry> mounts = mountsOf(device, mountTable);
    if (volume.fileSystem.type.empty() && !mounts.empty() && !mounts.front().fsType.starts_with("fuse")) {
        volume.fileSystem.type = mounts.front().fsType;
    }
    volume.format = formatOf(volume.fileSystem);
    return volume;
}

Volume findVolume(const std::string& target) {
    const std::vector<MountEntry> table = readMountTable();
    std::optional<BlockDevice> device;
    if (target.starts_with("/dev/")) {
        device = deviceOfNode(target);
    } else if (target.starts_with("/")) {
        device = deviceMountedAt(target, table);
    } else {
        device = readBlockDevice(target);
    }
    if (device) return describeVolume(*device, table);
    if (!target.starts_with("/") && !target.empty()) {
        if (auto volume = volumeNamed(target, table)) return *volume;
    }
    throw DiskUtilError("Could not find disk: " + target);
}

}  // namespace velmora::diskutil
