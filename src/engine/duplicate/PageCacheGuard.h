#pragma once

#include <QtGlobal>
#include <vector>

namespace velmora {

// Keeps a long read from crowding the page cache. On Linux it notes which
// pages of a byte range are cached when it is created, and dropReadPages()
// drops every page of the range that was not. On macOS reads through the
// descriptor bypass the cache (F_NOCACHE) instead.
class PageCacheGuard {
public:
    // `offset` must be a multiple of the page size. With firstPageIsOurs the
    // range's first page counts as not cached before, whatever its state.
    PageCacheGuard(int fd, quint64 offset, quint64 length, bool firstPageIsOurs = false);
    void dropReadPages() const;

private:
    int m_fd;
    quint64 m_offset;
    quint64 m_length;
    std::vector<unsigned char> m_residentBefore;  // one byte per page, bit 0 set when cached
};

}  // namespace velmora
