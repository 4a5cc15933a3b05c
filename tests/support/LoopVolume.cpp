#include "support/LoopVolume.h"

#include "support/ChildProcess.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace velmora::test {

namespace {

bool kernelHasFileSystem(const std::string& type) {
    std::ifstream list("/proc/filesystems");
    for (std::string line; std::getline(list, line);) {
        const std::size_t tab = line.rfind('\t');
        if (tab != std::string::npos && line.substr(tab + 1) == type) return true;
    }
    return false;
}

std::string unescapeMountField(const std::string& field) {
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            text += static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
}

std::vector<std::string> formatCommand(const std::string& type, const std::string& label) {
    if (type == "vfat") return {programPath("mkfs.vfat"), "-F", "32", "-n", label};
    if (type == "exfat") return {programPath("mkfs.exfat"), "-L", label};
    if (type == "ext4") return {programPath("mkfs.ext4"), "-F", "-q", "-m", "0", "-L", label};
    if (type == "xfs") return {programPath("mkfs.xfs"), "-f", "-q", "-L", label};
    return {programPath("mkfs." + type), "-f", "-q", "-L", label};
}

// The FUSE driver in the foreground, so that its end can be waited for; its source name
// is the device node, so the mount is found by it.
std::vector<std::string> fuseCommand(const std::string& type, const std::string& node, const std::string& mountPoint,
                                     bool readOnly) {
    if (type == "vfat")
        return {programPath("fusefat"), "-f", "-o", std::string(readOnly ? "ro" : "rw+") + ",fsname=" + node, node,
                mountPoint};
    if (type == "exfat") {
        std::vector<std::string> command{programPath("mount.exfat-fuse"), "-d"};
        if (readOnly) command.insert(command.end(), {"-o", "ro"});
        command.insert(command.end(), {node, mountPoint});
        return command;
    }
    return {""};
}

bool isMountedAt(const std::string& node, const std::string& mountPoint) {
    for (const std::string& mounted : mountPointsOf(node))
        if (mounted == mountPoint) return true;
    return false;
}

}  // namespace

LoopVolume::LoopVolume(int sizeMiB) {
    m_problem = loopDevicesUnavailable();
    if (!m_problem.empty()) return;
    char folderTemplate[] = "/tmp/velmora-loop-XXXXXX";
    if (!mkdtemp(folderTemplate)) {
        m_problem = "cannot create a temporary folder";
        return;
    }
    m_folder = folderTemplate;
    chmod(m_folder.c_str(), 0755);  // unprivileged runs must reach the mounts
    m_image = m_folder + "/volume.img";
    const int fd = open(m_image.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0600);
    const bool sized = fd >= 0 && ftruncate(fd, off_t(sizeMiB) << 20) == 0;
    if (fd >= 0) close(fd);
    if (!sized) {
        m_problem = "cannot create the image " + m_image;
        return;
    }
    const ProcessResult attached = runProcess({programPath("losetup"), "--find", "--show", m_image});
    m_node = attached.out.substr(0, attached.out.find('\n'));
    if (attached.status != 0 || m_node.empty()) {
        m_node.clear();
        m_problem = "losetup cannot attach an image: " + attached.err;
    }
}

LoopVolume::~LoopVolume() {
    bool mountsLeft = false;
    if (!m_node.empty() && attachedToImage()) {
        for (int round = 0; round < 3 && !mountPointsOf(m_node).empty(); ++round) {
            if (!unmountAll()) std::this_thread::sleep_for(std::chrono::milliseconds(300));
        }
        for (const std::string& mountPoint : mountPointsOf(m_node)) umount2(mountPoint.c_str(), MNT_DETACH);
        mountsLeft = !mountPointsOf(m_node).empty();
        runProcess({programPath("losetup"), "--detach", m_node});
    }
    for (pid_t driver : m_fuseDrivers) {
        kill(driver, SIGTERM);
        bool timedOut = false;
        waitForChild(driver, 10, timedOut);
    }
    // Never delete through a mount that could not be undone.
    if (!m_folder.empty() && !mountsLeft) {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
}

std::string LoopVolume::kernelName() const { return fs::path(m_node).filename().string(); }

bool LoopVolume::attachedToImage() const {
    std::ifstream backingFile("/sys/block/" + kernelName() + "/loop/backing_file");
    std::string path;
    std::getline(backingFile, path);
    return !path.empty() && path == m_image;
}

std::string LoopVolume::format(const std::string& type, const std::string& label,
                               const std::vector<std::string>& extraOptions) {
    std::vector<std::string> command = formatCommand(type, label);
    if (command[0].empty()) return "no mkfs program for " + type + " is installed";
    command.insert(command.end(), extraOptions.begin(), extraOptions.end());
    command.push_back(m_node);
    const ProcessResult result = runProcess(command);
    return result.status == 0 ? std::string() : command[0] + " failed: " + result.out + result.err;
}

std::string LoopVolume::mount(const std::string& type, const std::string& name, bool readOnly) {
    const std::string mountPoint = m_folder + "/" + name;
    std::error_code ignored;
    fs::create_directories(mountPoint, ignored);
    if (kernelHasFileSystem(type)) {
        std::vector<std::string> command{programPath("mount"), "-t", type};
        if (readOnly) command.insert(command.end(), {"-o", "ro"});
        command.insert(command.end(), {m_node, mountPoint});
        runProcess(command);
        return isMountedAt(m_node, mountPoint) ? mountPoint : std::string();
    }
    const std::vector<std::string> driver = fuseCommand(type, m_node, mountPoint, readOnly);
    if (driver[0].empty()) return {};
    const pid_t pid = spawnQuietly(driver);
    if (pid < 0) return {};
    m_fuseDrivers.push_back(pid);
    for (int waited = 0; waited < 1000 && !isMountedAt(m_node, mountPoint); ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return isMountedAt(m_node, mountPoint) ? mountPoint : std::string();
}

std::string LoopVolume::formatAndMount(const std::string& type, const std::string& label, std::string& mountPoint) {
    if (!m_problem.empty()) return m_problem;
    if (std::string problem = format(type, label); !problem.empty()) return problem;
    mountPoint = mount(type, label);
    return mountPoint.empty() ? "no kernel or FUSE driver mounts " + type + " here" : std::string();
}

bool LoopVolume::unmountAll() {
    std::vector<std::string> mounts = mountPointsOf(m_node);
    bool unmounted = true;
    while (!mounts.empty()) {
        const std::string mountPoint = mounts.back();
        mounts.pop_back();
        bool done = false;
        for (int attempt = 0; attempt < 10 && !done; ++attempt) {
            done = umount2(mountPoint.c_str(), 0) == 0 || errno == EINVAL || errno == ENOENT;
            if (!done) std::this_thread::sleep_for(std::chrono::milliseconds(200));  // still busy
        }
        unmounted = unmounted && done;
    }
    // A FUSE driver writes its last changes as it ends.
    for (pid_t driver : m_fuseDrivers) {
        bool timedOut = false;
        waitForChild(driver, 30, timedOut);
    }
    m_fuseDrivers.clear();
    const int fd = open(m_node.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        ioctl(fd, BLKFLSBUF, 0);
        close(fd);
    }
    return unmounted && mountPointsOf(m_node).empty();
}

std::vector<std::string> LoopVolume::mountPoints() const { return mountPointsOf(m_node); }

int LoopVolume::countInImage(const std::string& text) const { return countInFile(m_image, text); }

std::string loopDevicesUnavailable() {
    if (geteuid() != 0) return "SKIPPED: needs root to attach and mount loop devices";
    if (access("/dev/loop-control", F_OK) != 0) return "SKIPPED: no /dev/loop-control";
    return {};
}

std::string uniqueLabel(const std::string& prefix) {
    static std::mt19937 generator(std::random_device{}());
    return prefix + std::to_string(std::uniform_int_distribution<int>(100000, 999999)(generator));
}

std::vector<std::string> mountPointsOf(const std::string& node) {
    std::vector<std::string> mountPoints;
    struct stat info;
    if (node.empty() || stat(node.c_str(), &info) != 0) return mountPoints;
    const std::string number = std::to_string(major(info.st_rdev)) + ":" + std::to_string(minor(info.st_rdev));
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string id, parent, device, root, mountPoint, field;
        fields >> id >> parent >> device >> root >> mountPoint;
        while (fields >> field && field != "-") {
        }
        std::string type, source;
        fields >> type >> source;
        if (device == number || source == node) mountPoints.push_back(unescapeMountField(mountPoint));
    }
    return mountPoints;
}

std::string programPath(const std::string& name) {
    if (name.find('/') != std::string::npos) return name;
    std::istringstream folders(std::string(std::getenv("PATH") ? std::getenv("PATH") : "") +
                               ":/usr/sbin:/sbin:/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string candidate = folder + "/" + name;
        if (!folder.empty() && access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return {};
}

int countInFile(const std::string& path, const std::string& text) {
    std::ifstream file(path, std::ios::binary);
    if (!file || text.empty()) return -1;
    int hits = 0;
    std::string tail;
    std::vector<char> chunk(8 << 20);
    while (file) {
        file.read(chunk.data(), std::streamsize(chunk.size()));
        const std::string window = tail + std::string(chunk.data(), std::size_t(file.gcount()));
        for (std::size_t at = window.find(text); at != std::string::npos; at = window.find(text, at + 1)) ++hits;
        // One byte shorter than the text, so no match is counted twice.
        tail = window.size() >= text.size() ? window.substr(window.size() - (text.size() - 1)) : window;
    }
    return hits;
}

}  // namespace velmora::test
