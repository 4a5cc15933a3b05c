#include "engine/duplicate/DescriptorBudget.h"

#include <dirent.h>
#include <sys/resource.h>

namespace velmora {

namespace {

// The descriptors open in this process, without the one used to count them.
qsizetype openDescriptors() {
#if defined(__APPLE__)
    const char* const folder = "/dev/fd";
#else
    const char* const folder = "/proc/self/fd";
#endif
    DIR* dir = opendir(folder);
    if (!dir) return 0;
    qsizetype count = 0;
    while (const dirent* entry = readdir(dir))
        if (entry->d_name[0] != '.') ++count;
    closedir(dir);
    return count > 0 ? count - 1 : 0;
}

}  // namespace

qsizetype DescriptorBudget::availableNow() {
    struct rlimit limit;
    // An unlimited or huge limit is capped: the search never needs that many.
    constexpr qsizetype kCap = 1 << 16;
    qsizetype allowed = kCap;
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        allowed = qsizetype(qMin<rlim_t>(limit.rlim_cur, rlim_t(kCap)));
    return qMax<qsizetype>(1, allowed - openDescriptors() - kReserve);
}

bool DescriptorBudget::tryTake(qsizetype count) {
    qsizetype free = m_free.load(std::memory_order_relaxed);
    while (free >= count)
        if (m_free.compare_exchange_weak(free, free - count, std::memory_order_relaxed)) return true;
    return false;
}

}  // namespace velmora
