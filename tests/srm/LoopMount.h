#pragma once

#include <string>

#include <sys/types.h>

namespace velmora::test {

// A small file system image, formatted, attached to a loop device and mounted; all of
// it is undone when the object goes, also when the test failed half-way. Where the
// kernel has no driver for the file system (FAT and exFAT on some kernels), the FUSE
// driver is used if installed.
class LoopMount {
public:
    // fileSystem: "vfat" (formatted as FAT32), "exfat" or "ext4".
    LoopMount(const std::string& folder, const std::string& fileSystem, int megabytes = 64);
    ~LoopMount();
    LoopMount(const LoopMount&) = delete;
    LoopMount& operator=(const LoopMount&) = delete;

    // Empty when the volume is mounted, else why it could not be.
    const std::string& problem() const { return problem_; }
    const std::string& mountPoint() const { return mountPoint_; }

    bool mount();
    bool unmount(); // and flush the loop device, so the image holds every write

    std::string imageContent() const;

private:
    bool fail(const std::string& why);

    std::string fileSystem_;
    std::string image_;
    std::string mountPoint_;
    std::string device_;
    std::string problem_;
    pid_t fuseDriver_ = -1;
    bool mounted_ = false;
};

} // namespace velmora::test
