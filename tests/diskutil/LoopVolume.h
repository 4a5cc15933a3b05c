#pragma once

#include <string>

namespace velmora::test {

// A 64 MB image in a private temporary folder, attached to a loop device. When it goes
// out of scope (also after a failed assertion) every mount of the device is undone, the
// device is detached and the folder removed; a device that was detached meanwhile (by
// an eject) is left alone, since another test may own it by then.
class LoopVolume {
public:
    LoopVolume();
    ~LoopVolume();
    LoopVolume(const LoopVolume&) = delete;
    LoopVolume& operator=(const LoopVolume&) = delete;

    // Empty when the device could be set up, else why not (for GTEST_SKIP).
    const std::string& setupProblem() const { return m_problem; }
    const std::string& node() const { return m_node; }
    std::string kernelName() const;
    const std::string& folder() const { return m_folder; }
    bool attachedToImage() const;

    // mkfs for "vfat" (FAT32), "exfat" or "ext4"; empty on success, else the reason.
    std::string format(const std::string& type, const std::string& label);
    // Mounts the device at folder()/name with the kernel driver, or with the FUSE driver
    // where the kernel has none. Returns the mount point, empty on failure.
    std::string mount(const std::string& type, const std::string& name);
    // Both at once, the volume mounted at folder()/label; empty on success, else why it
    // cannot be done on this machine (the reason to skip).
    std::string formatAndMount(const std::string& type, const std::string& label, std::string& mountPoint);

private:
    std::string m_folder;
    std::string m_image;
    std::string m_node;
    std::string m_problem;
};

// A label no other volume on this machine carries (volume names are looked up globally).
std::string uniqueLabel(const std::string& prefix);

}  // namespace velmora::test
