#include "diskutil/Mounting.h"

#include "diskutil/BlockDevice.h"
#include "diskutil/DiskUtilError.h"
#include "diskutil/FileSystemFormat.h"
#include "diskutil/MountTable.h"
#include "diskutil/ProcessUsers.h"
#include "diskutil/Program.h"
#include "diskutil/Volume.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <pwd.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace velmora::diskutil {

namespace {

// The user behind a privileged run (pkexec or sudo), else the one running the tool.
passwd* invokingUser() {
    for (const char* variable : {"PKEXEC_UID", "SUDO_UID"}) {
        if (const char* uid = std::getenv(variable)) {
            if (passwd* user = getpwuid(static_cast<uid_t>(std::strtoul(uid, nullptr, 10)))) return user;
        }
    }
    return getpwuid(getuid());
}

std::string ownerOptions(const Owner& owner) {
    return "uid=" + std::to_string(owner.uid) + ",gid=" + std::to_string(owner.gid);
}

void mountWithFuse(const std::string& node, const FileSystemFormat& format, const std::string& folder,
                   const Owner& owner) {
    std::string options = format.fuseOptions.empty() ? "" : format.fuseOptions + ",";
    options += "fsname=" + node;
    if (format.ownerByMountOption && owner.uid != 0) options.append(",").append(ownerOptions(owner));
    const ProgramResult result = runProgram({format.fuseProgram, "-o", options, node, folder});
    if (result.exitCode != 0 || !isMountPoint(folder, readMountTable())) {
        throw DiskUtilError("Could not mount " + node + " on " + folder + ": " + result.reason());
    }
}

// The kernel driver first; the FUSE driver where the kernel has none for the file system.
void mountFileSystem(const std::string& node, const FileSystemFormat& format, const std::string& folder,
                     const Owner& owner) {
    const std::string options = format.ownerByMountOption && owner.uid != 0 ? ownerOptions(owner) : "";
    // nosuid and nodev, as for any user's removable volume (FUSE mounts get them by default).
    if (mount(node.c_str(), folder.c_str(), format.kernelType.c_str(), MS_NOSUID | MS_NODEV, options.c_str()) != 0) {
        const int error = errno;
        if (error != ENODEV || format.fuseProgram.empty() || findProgram(format.fuseProgram).empty()) {
            throw DiskUtilError("Could not mount " + node + " on " + folder + ": " + std::strerror(error));
        }
        mountWithFuse(node, format, folder, owner);
    }
    if (!format.ownerByMountOption && owner.uid != 0) {
        if (chown(folder.c_str(), owner.uid, owner.gid) != 0) {
            throw DiskUtilError("Could not hand " + folder + " to its owner: " + std::strerror(errno));
        }
    }
}

std::string folderNameFor(const std::string& volumeName) {
    std::string name = volumeName.empty() ? "Untitled" : volumeName;
    for (char& c : name) {
        if (c == '/') c = '_';
    }
    return name;
}

// The first of NAME, "NAME 1", "NAME 2", ... that is free: missing, or an empty folder
// that nothing is mounted on. The volume's own old mount folder is free by now.
std::string freeMountFolder(const RemountPlan& plan, const std::string& volumeName) {
    const std::vector<MountEntry> table = readMountTable();
    const std::string base = (fs::path(plan.parentFolder) / folderNameFor(volumeName)).string();
    for (int suffix = 0;; ++suffix) {
        const std::string candidate = suffix == 0 ? base : base + " " + std::to_string(suffix);
        std::error_code error;
        if (candidate == plan.oldMountPoint || !fs::exists(candidate, error)) return candidate;
        if (fs::is_directory(candidate, error) && fs::is_empty(candidate, error) && !isMountPoint(candidate, table)) {
            return candidate;
        }
    }
}

// A FUSE driver writes the file system's last changes after the unmount returned and lets
// go of the device only then; a tool that writes the device before that (a new label, a
// new file system) would race it and leave the two copies of the FAT differing. Another
// program that keeps the device open is waited for 10 s at most; what comes next reports
// its own error then.
void waitForFuseDriverToEnd(const BlockDevice& device) {
    for (int waited = 0; waited < 200 && !processesHoldingDevice(device.node).empty(); ++waited) usleep(50 * 1000);
}

}  // namespace

RemountPlan planRemount(const Volume& volume) {
    RemountPlan plan;
    plan.oldName = volume.name();
    struct stat info;
    if (!volume.mountPoint.empty() && stat(volume.mountPoint.c_str(), &info) == 0) {
        plan.oldMountPoint = volume.mountPoint;
        plan.parentFolder = fs::path(volume.mountPoint).parent_path().string();
        plan.owner = {info.st_uid, info.st_gid};
        return plan;
    }
    const passwd* user = invokingUser();
    plan.parentFolder = std::string("/media/") + (user ? user->pw_name : "root");
    if (user) plan.owner = {user->pw_uid, user->pw_gid};
    return plan;
}

void unmountDevice(const BlockDevice& device) {
    const std::vector<MountEntry> mounts = mountsOf(device, readMountTable());
    for (auto mount = mounts.rbegin(); mount != mounts.rend(); ++mount) {
        if (umount2(mount->mountPoint.c_str(), 0) != 0) {
            const int error = errno;
            std::string reason = std::strerror(error);
            if (error == EBUSY) {
                const std::string users = describeUsers(processesUsing(mount->majorMinor));
                reason = "the volume is in use" + (users.empty() ? std::string() : " by " + users);
            }
            throw DiskUtilError("Could not unmount " + device.node + " from " + mount->mountPoint + ": " + reason);
        }
    }
    if (std::any_of(mounts.begin(), mounts.end(), [](const MountEntry& mount) { return mount.fsType.starts_with("fuse"); }))
        waitForFuseDriverToEnd(device);
}

std::string mountAgain(const RemountPlan& plan, const BlockDevice& device, const FileSystemFormat& format,
                       const std::string& name) {
    std::error_code error;
    fs::create_directories(plan.parentFolder, error);
    const std::string folder = freeMountFolder(plan, name);
    const bool created = fs::create_directory(folder, error);
    try {
        mountFileSystem(device.node, format, folder, plan.owner);
    } catch (const DiskUtilError&) {
        if (created) fs::remove(folder, error);
        throw;
    }
    if (!plan.oldMountPoint.empty() && plan.oldMountPoint != folder
        && fs::path(plan.oldMountPoint).filename() == plan.oldName) {
        rmdir(plan.oldMountPoint.c_str());  // only while empty
    }
    return folder;
}

}  // namespace velmora::diskutil
