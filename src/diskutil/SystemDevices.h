#pragma once

#include <string>
#include <vector>

namespace velmora::diskutil {

struct BlockDevice;
struct MountEntry;

// A block device the running system depends on, and what for.
struct SystemUse {
    std::string majorMinor;  // "254:0"
    std::string use;         // "holds /", "is an active swap area"
};

// The devices behind the system's own mounts ("/", /boot, /boot/efi, /home, /usr):
// every mount at one of those folders counts, bind mounts and stacked mounts included.
std::vector<SystemUse> systemMountUses(const std::vector<MountEntry>& table);

// The devices of the active swap areas in /proc/swaps text: a swap partition itself,
// or the device whose file system holds a swap file.
std::vector<SystemUse> swapUses(const std::string& procSwaps, const std::vector<MountEntry>& table);

// Why the target must not be erased, reformatted, renamed or ejected: it is one of the
// used devices, lies under one (a disk or partition a device-mapper or RAID device is
// built on), or is the whole disk of one; or a device is built on it or on one of its
// partitions (holders: LVM, RAID, dm-crypt). Empty when none of that holds, else a
// text such as "it holds /".
std::string protectionReason(const BlockDevice& target, const std::vector<SystemUse>& uses);

// Reads the live mount table and /proc/swaps and throws DiskUtilError with the reason
// when the target is protected. Commands that change a device call it before anything
// else touches the device.
void refuseSystemDevice(const BlockDevice& target);

}  // namespace velmora::diskutil
