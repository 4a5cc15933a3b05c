#include "engine/duplicate/PageCacheGuard.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/mman.h>
#include <unistd.h>

namespace velmora {

namespace {

const quint64 kPageSize = quint64(sysconf(_SC_PAGESIZE));

#if defined(__linux__)
// cachestat(2), Linux 6.5 and later: how many pages of a range are cached.
// One call instead of map, mincore and unmap when the range is all cached.
struct CachestatRange {
    quint64 offset;
    quint64 length;
};
struct Cachestat {
    quint64 nrCache, nrDirty, nrWriteback, nrEvicted, nrRecentlyEvicted;
};
constexpr long kCachestatSyscall = 451;  // the same number on every architecture

bool isAllCached(int fd, quint64 offset, quint64 length) {
    static std::atomic<bool> unsupported{false};
    if (unsupported.load(std::memory_order_relaxed)) return false;
    CachestatRange range{offset, length};
    Cachestat stat{};
    if (syscall(kCachestatSyscall, fd, &range, &stat, 0) != 0) {
        if (errno == ENOSYS || errno == EPERM) unsupported.store(true, std::memory_order_relaxed);
        return false;
    }
    return stat.nrCache >= (length + kPageSize - 1) / kPageSize;
}
#endif

}  // namespace

PageCacheGuard::PageCacheGuard(int fd, quint64 offset, quint64 length, bool firstPageIsOurs)
    : m_fd(fd), m_offset(offset), m_length(length) {
#if defined(__APPLE__)
    Q_UNUSED(firstPageIsOurs);
    fcntl(fd, F_NOCACHE, 1);
#else
    if (length == 0 || (!firstPageIsOurs && isAllCached(fd, offset, length))) return;
    // A mapping that is never touched costs no I/O; mincore() reports which
    // of its pages are cached.
    void* map = mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, off_t(offset));
    if (map == MAP_FAILED) return;
    m_residentBefore.resize((length + kPageSize - 1) / kPageSize);
    if (mincore(map, length, m_residentBefore.data()) != 0) m_residentBefore.clear();
    munmap(map, length);
    if (firstPageIsOurs && !m_residentBefore.empty()) m_residentBefore[0] = 0;
    posix_fadvise(fd, off_t(offset), off_t(length), POSIX_FADV_SEQUENTIAL);
#endif
}

void PageCacheGuard::dropReadPages() const {
#if !defined(__APPLE__)
    const size_t pages = m_residentBefore.size();
    size_t page = 0;
    while (page < pages) {
        if (m_residentBefore[page] & 1) {
            ++page;
            continue;
        }
        const size_t first = page;
        while (page < pages && !(m_residentBefore[page] & 1)) ++page;
        const quint64 start = m_offset + first * kPageSize;
        const quint64 end = m_offset + qMin(m_length, quint64(page) * kPageSize);
        // A run that reaches the end of the range also takes its partial last page.
        const quint64 length = page == pages ? (end - start + kPageSize - 1) / kPageSize * kPageSize : end - start;
        posix_fadvise(m_fd, off_t(start), off_t(length), POSIX_FADV_DONTNEED);
    }
#endif
}

}  // namespace velmora
