#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora::diskutil {

// A block device as sysfs describes it (no udev needed), with the traits of the
// whole disk it belongs to.
struct BlockDevice {
    std::string kernelName;   // "sdb1", "loop0"
    std::string node;         // "/dev/sdb1"
    std::string wholeDisk;    // "sdb"; the device itself for a whole disk
    std::string majorMinor;   // "8:17", as in /proc/self/mountinfo
    uint64_t sizeBytes = 0;
    bool isWholeDisk = true;
    bool solidState = false;  // queue/rotational is 0
    bool removable = false;   // the kernel's removable-media flag
    bool ejectable = false;   // a disk image, a USB disk or removable media
    bool isLoop = false;
    std::string busProtocol;  // "USB", "SATA", "PCI-Express", "Disk Image", ...
};

std::optional<BlockDevice> readBlockDevice(const std::string& kernelName);

// Whole disks, each followed by its partitions, ordered by device number.
// Empty devices (detached loops, empty card readers) and RAM disks are left out.
std::vector<BlockDevice> listBlockDevices();

std::vector<BlockDevice> partitionsOf(const std::string& wholeDisk);

}  // namespace velmora::diskutil
