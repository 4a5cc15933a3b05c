#include "diskutil/LoopVolume.h"

#include "diskutil/DiskUtilTestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/mount.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace velmora::test {

LoopVolume::LoopVolume() {
    if (geteuid() != 0) {
        m_problem = "needs root for loop devices and mounts";
        return;
    }
    char folderTemplate[] = "/tmp/velmora-diskutil-XXXXXX";
    if (!mkdtemp(folderTemplate)) {
        m_problem = "cannot create a temporary folder";
        return;
    }
    m_folder = folderTemplate;
    m_image = m_folder + "/volume.img";
    std::error_code error;
    std::ofstream(m_image).close();
    fs::resize_file(m_image, 64 * 1024 * 1024, error);
    const CommandResult attach = runCommand({"losetup", "--find", "--show", m_image});
    if (attach.exitCode != 0) {
        m_problem = "losetup cannot attach an image: " + attach.err;
        return;
    }
    m_node = attach.out.substr(0, attach.out.find('\n'));
}

LoopVolume::~LoopVolume() {
    bool mountsLeft = false;
    if (!m_node.empty() && attachedToImage()) {
        for (int round = 0; round < 3; ++round) {
            const auto mountPoints = mountPointsOf(m_node);
            for (auto mountPoint = mountPoints.rbegin(); mountPoint != mountPoints.rend(); ++mountPoint) {
                if (umount2(mountPoint->c_str(), 0) != 0) umount2(mountPoint->c_str(), MNT_DETACH);
            }
        }
        mountsLeft = !mountPointsOf(m_node).empty();
        runCommand({"losetup", "--detach", m_node});
    }
    // Never delete through a mount that could not be undone.
    if (!m_folder.empty() && !mountsLeft) {
        std::error_code error;
        fs::remove_all(m_folder, error);
    }
}

std::string LoopVolume::kernelName() const {
    return fs::path(m_node).filename().string();
}

bool LoopVolume::attachedToImage() const {
    std::ifstream backingFile("/sys/block/" + kernelName() + "/loop/backing_file");
    std::string path;
    std::getline(backingFile, path);
    return !path.empty() && path == m_image;
}

std::string LoopVolume::format(const std::string& type, const std::string& label) {
    CommandResult result;
    if (type == "vfat") result = runCommand({"mkfs.vfat", "-F", "32", "-n", label, m_node});
    else if (type == "exfat") result = runCommand({"mkfs.exfat", "-L", label, m_node});
    else result = runCommand({"mkfs." + type, "-F", "-q", "-L", label, m_node});
    return result.exitCode == 0 ? std::string() : "mkfs." + type + " failed: " + result.out + result.err;
}

std::string LoopVolume::mount(const std::string& type, const std::string& name) {
    const std::string mountPoint = m_folder + "/" + name;
    std::error_code error;
    fs::create_directories(mountPoint, error);
    if (runCommand({"mount", "-t", type, m_node, mountPoint}).exitCode != 0) {
        if (type == "vfat") runCommand({"fusefat", "-o", "rw+,blkdev,fsname=" + m_node, m_node, mountPoint});
        if (type == "exfat") runCommand({"mount.exfat-fuse", m_node, mountPoint});
    }
    for (const std::string& mounted : mountPointsOf(m_node)) {
        if (mounted == mountPoint) return mountPoint;
    }
    return {};
}

std::string LoopVolume::formatAndMount(const std::string& type, const std::string& label, std::string& mountPoint) {
    if (!m_problem.empty()) return m_problem;
    if (std::string problem = format(type, label); !problem.empty()) return problem;
    mountPoint = mount(type, label);
    return mountPoint.empty() ? "no kernel or FUSE driver mounts " + type + " here" : std::string();
}

std::string uniqueLabel(const std::string& prefix) {
    static std::mt19937 generator(std::random_device{}());
    return prefix + std::to_string(std::uniform_int_distribution<int>(100000, 999999)(generator));
}

}  // namespace velmora::test
