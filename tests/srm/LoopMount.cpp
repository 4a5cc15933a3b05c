#include "srm/LoopMount.h"

#include "srm/ChildProcess.h"
#include "srm/TestFiles.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {

// Programs such as mkfs live in sbin folders that a test's PATH may lack.
std::string findProgram(const std::string& name)
{
    std::string folders = std::getenv("PATH") ? std::getenv("PATH") : "";
    folders += ":/usr/sbin:/sbin:/usr/bin:/bin";
    std::istringstream list(folders);
    for (std::string folder; std::getline(list, folder, ':');) {
        const std::string candidate = folder + "/" + name;
        if (!folder.empty() && access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return {};
}

bool kernelHasFileSystem(const std::string& fileSystem)
{
    std::ifstream list("/proc/filesystems");
    for (std::string line; std::getline(list, line);) {
        if (line.size() > fileSystem.size() && line.substr(line.size() - fileSystem.size()) == fileSystem &&
            line[line.size() - fileSystem.size() - 1] == '\t')
            return true;
    }
    return false;
}

bool isMountPoint(const std::string& path)
{
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream fields(line);
        std::string id, parent, numbers, root, point;
        fields >> id >> parent >> numbers >> root >> point;
        if (point == path)
            return true;
    }
    return false;
}

std::vector<std::string> formatCommand(const std::string& fileSystem, const std::string& image)
{
    if (fileSystem == "vfat")
        return {findProgram("mkfs.vfat"), "-F", "32", image};
    if (fileSystem == "exfat")
        return {findProgram("mkfs.exfat"), image};
    return {findProgram("mkfs.ext4"), "-q", "-F", image};
}

// The FUSE driver run in the foreground, so that its end can be waited for.
std::vector<std::string> fuseCommand(const std::string& fileSystem, const std::string& device, const std::string& point)
{
    if (fileSystem == "vfat")
        return {findProgram("fusefat"), "-f", "-o", "rw+", device, point};
    if (fileSystem == "exfat")
        return {findProgram("mount.exfat-fuse"), "-d", device, point};
    return {""};
}

} // namespace

LoopMount::LoopMount(const std::string& folder, const std::string& fileSystem, int megabytes)
    : fileSystem_(fileSystem)
    , image_(folder + "/" + fileSystem + ".img")
    , mountPoint_(folder + "/" + fileSystem + "-mount")
{
    if (geteuid() != 0) {
        fail("loop devices and mounts need root");
        return;
    }
    const int fd = open(image_.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0600);
    const bool sized = fd >= 0 && ftruncate(fd, off_t(megabytes) << 20) == 0;
    if (fd >= 0)
        close(fd);
    if (!sized) {
        fail("cannot create the image " + image_);
        return;
    }
    const std::vector<std::string> format = formatCommand(fileSystem, image_);
    if (format[0].empty()) {
        fail("no mkfs program for " + fileSystem + " is installed");
        return;
    }
    const ProcessResult formatted = runProcess(format);
    if (formatted.status != 0) {
        fail(format[0] + " failed: " + formatted.err);
        return;
    }
    const ProcessResult attached = runProcess({findProgram("losetup"), "--find", "--show", image_});
    device_ = attached.out.substr(0, attached.out.find('\n'));
    if (attached.status != 0 || device_.empty()) {
        device_.clear();
        fail("losetup failed: " + attached.err);
        return;
    }
    mkdir(mountPoint_.c_str(), 0755);
    mount();
}

LoopMount::~LoopMount()
{
    if (mounted_ && !unmount())
        runProcess({findProgram("umount"), "-l", mountPoint_});
    if (fuseDriver_ > 0) {
        kill(fuseDriver_, SIGTERM);
        bool timedOut = false;
        waitForChild(fuseDriver_, 10, timedOut);
    }
    if (!device_.empty())
        runProcess({findProgram("losetup"), "-d", device_});
    rmdir(mountPoint_.c_str());
    unlink(image_.c_str());
}

bool LoopMount::fail(const std::string& why)
{
    problem_ = why;
    return false;
}

bool LoopMount::mount()
{
    if (kernelHasFileSystem(fileSystem_)) {
        const ProcessResult mounted = runProcess({findProgram("mount"), "-t", fileSystem_, device_, mountPoint_});
        if (mounted.status != 0)
            return fail("mount failed: " + mounted.err);
        mounted_ = true;
        problem_.clear();
        return true;
    }
    const std::vector<std::string> driver = fuseCommand(fileSystem_, device_, mountPoint_);
    if (driver[0].empty())
        return fail("the kernel has no " + fileSystem_ + " driver and no FUSE driver for it is installed");
    fuseDriver_ = spawnQuietly(driver);
    for (int waited = 0; waited < 1000 && !isMountPoint(mountPoint_); ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (!isMountPoint(mountPoint_)) {
        kill(fuseDriver_, SIGTERM);
        bool timedOut = false;
        waitForChild(fuseDriver_, 10, timedOut);
        fuseDriver_ = -1;
        return fail(driver[0] + " did not mount " + device_);
    }
    mounted_ = true;
    problem_.clear();
    return true;
}

bool LoopMount::unmount()
{
    ProcessResult unmounted;
    for (int attempt = 0; attempt < 10; ++attempt) {
        unmounted = runProcess({findProgram("umount"), mountPoint_});
        if (unmounted.status == 0)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(200)); // still busy
    }
    if (unmounted.status != 0)
        return fail("umount failed: " + unmounted.err);
    mounted_ = false;
    if (fuseDriver_ > 0) {
        bool timedOut = false;
        waitForChild(fuseDriver_, 30, timedOut); // it writes its last changes as it ends
        fuseDriver_ = -1;
    }
    const int fd = open(device_.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
    return true;
}

std::string LoopMount::imageContent() const
{
    return readFile(image_);
}

} // namespace velmora::test
