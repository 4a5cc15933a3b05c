#pragma once

#include <cstdint>

namespace velmora::test {

// Takes from the calling thread, for the object's lifetime, the power of root to
// read and search any folder whatever its permissions (CAP_DAC_OVERRIDE and
// CAP_DAC_READ_SEARCH), so that a test run as root meets a folder it cannot list
// as a user would. Without root there is nothing to take and active() is true.
class WithoutFileAccessOverride {
public:
    WithoutFileAccessOverride();
    ~WithoutFileAccessOverride();
    WithoutFileAccessOverride(const WithoutFileAccessOverride&) = delete;
    WithoutFileAccessOverride& operator=(const WithoutFileAccessOverride&) = delete;

    bool active() const { return active_; }

private:
    bool active_ = false;
    bool changed_ = false;
    std::uint32_t savedEffective_[2] = {};
};

} // namespace velmora::test
