#include "diskutil/Commands.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/MountTable.h"
#include "diskutil/Mounting.h"
#include "diskutil/SystemDevices.h"
#include "diskutil/Volume.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace velmora::diskutil {

namespace {

// A loop device is detached from its image, as ejecting a disk image detaches it; any
// other disk is removed from the kernel, after which it can be unplugged.
void release(const BlockDevice& disk) {
    if (disk.isLoop) {
        const int fd = open(disk.node.c_str(), O_RDONLY | O_CLOEXEC);
        const bool detached = fd >= 0 && ioctl(fd, LOOP_CLR_FD, 0) == 0;
        const int error = errno;
        if (fd >= 0) close(fd);
        if (!detached) throw DiskUtilError("Could not detach " + disk.node + ": " + std::strerror(error));
        return;
    }
    std::ofstream remove("/sys/block/" + disk.kernelName + "/device/delete");
    remove << "1" << std::endl;
    if (!remove) throw DiskUtilError("Could not eject " + disk.node);
}

}  // namespace

// Ejects the whole disk that holds the target: every volume on it is unmounted first.
void ejectCommand(const std::vector<std::string>& args) {
    if (args.size() != 1) throw DiskUtilError("Usage: velmora-diskutil eject TARGET");
    const Volume volume = findVolume(args[0]);
    const std::optional<BlockDevice> disk = readBlockDevice(volume.device.wholeDisk);
    if (!disk) throw DiskUtilError("Could not find disk: " + volume.device.wholeDisk);
    if (!disk->ejectable) throw DiskUtilError("Disk " + disk->kernelName + " is not ejectable");
    refuseSystemDevice(*disk);

    const std::vector<MountEntry> table = readMountTable();
    std::vector<BlockDevice> devices = partitionsOf(disk->kernelName);
    devices.push_back(*disk);
    for (const BlockDevice& device : devices) {
        const Volume mounted = describeVolume(device, table);
        unmountDevice(device);
        // A mount folder named after its volume goes with it, as the volume's folder does on macOS.
        if (!mounted.mountPoint.empty() && std::filesystem::path(mounted.mountPoint).filename() == mounted.name()) {
            rmdir(mounted.mountPoint.c_str());
        }
    }
    release(*disk);
    std::cout << "Disk " << disk->kernelName << " ejected" << std::endl;
}

}  // namespace velmora::diskutil
