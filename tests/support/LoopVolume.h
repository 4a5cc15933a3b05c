#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace velmora::test {

// An image file of a bounded size in a private folder under /tmp, attached to a loop
// device. Everything it set up is taken down when it goes, also after a failed
// assertion: every mount of the device (also those a tool under test made), the FUSE
// drivers it started, the loop device and the folder. A device that was detached
// meanwhile (an eject) is left alone, since another test may own it by then. Needs root.
class LoopVolume {
public:
    explicit LoopVolume(int sizeMiB = 64);
    ~LoopVolume();
    LoopVolume(const LoopVolume&) = delete;
    LoopVolume& operator=(const LoopVolume&) = delete;

    // Empty when the device is attached, else why not (the reason to skip).
    const std::string& setupProblem() const { return m_problem; }
    const std::string& node() const { return m_node; }
    std::string kernelName() const;
    const std::string& folder() const { return m_folder; }
    const std::string& image() const { return m_image; }
    bool attachedToImage() const;

    // mkfs for "vfat" (FAT32), "exfat", "ext4" (no reserved blocks unless extraOptions
    // say otherwise), "btrfs" or "xfs". Empty on success, else the reason.
    std::string format(const std::string& type, const std::string& label,
                       const std::vector<std::string>& extraOptions = {});
    // Mounts the device at folder()/name with the kernel driver, or with the FUSE driver
    // where the kernel has none. Returns the mount point, empty on failure.
    std::string mount(const std::string& type, const std::string& name, bool readOnly = false);
    // Both at once, mounted at folder()/label; empty on success, else why it cannot be
    // done on this machine (the reason to skip).
    std::string formatAndMount(const std::string& type, const std::string& label, std::string& mountPoint);
    // Unmounts every mount of the device, newest first, waits for the FUSE drivers to
    // write their last changes, and flushes the device, so the image holds every write.
    bool unmountAll();
    std::vector<std::string> mountPoints() const;

    // How often the text occurs in the raw image (read after unmountAll).
    int countInImage(const std::string& text) const;

private:
    std::string m_folder;
    std::string m_image;
    std::string m_node;
    std::string m_problem;
    std::vector<pid_t> m_fuseDrivers;
};

// Empty when this process can attach loop devices, else why not.
std::string loopDevicesUnavailable();

// A label no other volume on this machine carries.
std::string uniqueLabel(const std::string& prefix);

// Mount points of the device in /proc/self/mountinfo, newest last: matched by device
// number, or by source name for FUSE mounts.
std::vector<std::string> mountPointsOf(const std::string& node);

// Full path of a system program (sbin folders included), empty when not installed.
std::string programPath(const std::string& name);

// How often the text occurs in a file, read in overlapping chunks; -1 when unreadable.
int countInFile(const std::string& path, const std::string& text);

}  // namespace velmora::test
