#include "support/FileAccessOverride.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velmora::test {
namespace {

bool getCaps(__user_cap_data_struct (&data)[2]) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capget, &header, data) == 0;
}

bool setCaps(__user_cap_data_struct (&data)[2]) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capset, &header, data) == 0;
}

} // namespace

WithoutFileAccessOverride::WithoutFileAccessOverride() {
    if (geteuid() != 0) {
        active_ = true;
        return;
    }
    __user_cap_data_struct data[2] = {};
    if (!getCaps(data)) return;
    savedEffective_[0] = data[0].effective;
    savedEffective_[1] = data[1].effective;
    // Both capabilities are below 32: they live in the first word.
    data[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
    changed_ = setCaps(data);
    active_ = changed_;
}

WithoutFileAccessOverride::~WithoutFileAccessOverride() {
    if (!changed_) return;
    __user_cap_data_struct data[2] = {};
    if (!getCaps(data)) return;
    data[0].effective = savedEffective_[0];
    data[1].effective = savedEffective_[1];
    setCaps(data);
}

} // namespace velmora::test
