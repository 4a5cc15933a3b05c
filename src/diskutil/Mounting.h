#pragma once

#include <string>
#include <sys/types.h>

namespace velmora::diskutil {

struct BlockDevice;
struct FileSystemFormat;
struct Volume;

// Who owns the files of a mounted volume.
struct Owner {
    uid_t uid = 0;
    gid_t gid = 0;
};

// Where a volume goes after it was unmounted to be changed: the folder that held its
// mount point (for a volume that was not mounted, /media/<user>) and the owner of its
// files, so the user who had it keeps access to it.
struct RemountPlan {
    std::string oldMountPoint;  // empty when it was not mounted
    std::string oldName;
    std::string parentFolder;
    Owner owner;
};

RemountPlan planRemount(const Volume& volume);

// Unmounts every mount of the device, newest first. A busy mount ends it with an error
// that names the processes using the volume.
void unmountDevice(const BlockDevice& device);

// Mounts the device's file system at parentFolder/NAME ("NAME 1", "NAME 2", ... when
// that folder is taken) and removes the old mount folder when it was named after the
// volume. Returns the new mount point.
std::string mountAgain(const RemountPlan& plan, const BlockDevice& device, const FileSystemFormat& format,
                       const std::string& name);

}  // namespace velmora::diskutil
