#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace velmora::diskutil {

// A process that keeps a mounted file system busy, and how.
struct ProcessUser {
    pid_t pid = 0;
    std::string command;  // /proc/PID/comm
    std::string use;      // "open file", "working folder", "root folder", "program", "mapped file"
};

// The processes that use the file system with this device number ("major:minor", as in
// mountinfo), found the way fuser does: their open files, working and root folders,
// program and mapped files under /proc. This process is left out.
std::vector<ProcessUser> processesUsing(const std::string& majorMinor);

// The processes other than this one that hold the block device node itself open, such as
// the driver of a FUSE mount, which still writes the file system's last changes after
// the unmount returned.
std::vector<ProcessUser> processesHoldingDevice(const std::string& node);

// "less (pid 812, open file), bash (pid 77, working folder)"
std::string describeUsers(const std::vector<ProcessUser>& users);

}  // namespace velmora::diskutil
