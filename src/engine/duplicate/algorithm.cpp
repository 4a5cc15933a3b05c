#include "engine/duplicate/algorithm.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PageCacheGuard.h"
#include "engine/duplicate/crc.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace velmora {

namespace {

int openForReading(const QString& path) {
    int fd;
    do fd = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    return fd;
}

// Reads up to `size` bytes at `offset`, fewer only at the end of the file;
// -1 on a read error.
ssize_t readFully(int fd, unsigned char* buffer, size_t size, quint64 offset) {
    size_t got = 0;
    while (got < size) {
        const ssize_t n = pread(fd, buffer + got, size - got, off_t(offset + got));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return -1;
        if (n == 0) break;
        got += size_t(n);
    }
    return ssize_t(got);
}

// Reads the first block without leaving it in the page cache unless it was
// cached already: a non-blocking read succeeds only from the cache, and a
// block that had to come from the disk is dropped again.
ssize_t readFirstBlock(int fd, unsigned char* buffer, size_t size) {
#if defined(__APPLE__)
    fcntl(fd, F_NOCACHE, 1);
    return readFully(fd, buffer, size, 0);
#elif defined(__linux__) && defined(RWF_NOWAIT)
    posix_fadvise(fd, 0, 0, POSIX_FADV_RANDOM);  // no read-ahead beyond the block
    iovec vector{buffer, size};
    const ssize_t cached = preadv2(fd, &vector, 1, 0, RWF_NOWAIT);
    if (cached == ssize_t(size) || cached == 0) return cached;
    const ssize_t got = readFully(fd, buffer, size, 0);
    if (got >= 0 && cached < 0 && errno == EAGAIN) posix_fadvise(fd, 0, off_t(size), POSIX_FADV_DONTNEED);
    return got;
#else
    return readFully(fd, buffer, size, 0);
#endif
}

}  // namespace

algorithm::algorithm() : m_buffer(new unsigned char[kReadSize]) {}

algorithm::~algorithm() = default;

bool algorithm::getMD5_1K(fileAttrbItem& item) {
    const int fd = openForReading(item.filePathName);
    if (fd < 0) {
        qCInfo(lcDuplicate, "open file:%s failed", qUtf8Printable(item.filePathName));
        return false;
    }
    unsigned char* block = m_buffer.get();
    std::memset(block, 0, kFirstBlockSize);
    const ssize_t got = readFirstBlock(fd, block, kFirstBlockSize);
    close(fd);
    if (got < 0) return false;
    item.md5_1k = crc::crc64(block, kFirstBlockSize);
    if (got > 0 && size_t(got) < kFirstBlockSize) item.md5 = crc::crc64(block, uint32_t(got));
    return true;
}

bool algorithm::getMD5(fileAttrbItem& item) {
    uint64_t reg = crc::kInitial;
    quint64 offset = 0;
    for (;;) {
        const int fd = openForReading(item.filePathName);
        if (fd < 0) {
            qCInfo(lcDuplicate, "open file :%s failed", qUtf8Printable(item.filePathName));
            return false;
        }
        struct stat st;
        if (fstat(fd, &st) != 0 || (offset == 0 && st.st_size == 0)) {
            close(fd);
            return false;
        }
        const quint64 span = qMin(kDescriptorSpan, quint64(st.st_size) > offset ? quint64(st.st_size) - offset : 0);
        const PageCacheGuard guard(fd, offset, span);
        quint64 segment = 0;
        bool atEnd = false;
        while (segment < kDescriptorSpan) {
            const size_t want = size_t(qMin<quint64>(kReadSize, kDescriptorSpan - segment));
            const ssize_t n = readFully(fd, m_buffer.get(), want, offset + segment);
            if (n < 0) {
                guard.dropReadPages();
                close(fd);
                return false;
            }
            reg = crc::update(reg, m_buffer.get(), size_t(n));
            segment += quint64(n);
            if (size_t(n) < want) {
                atEnd = true;
                break;
            }
        }
        guard.dropReadPages();
        close(fd);
        offset += segment;
        if (atEnd) break;
    }
    item.md5 = reg;
    return true;
}

}  // namespace velmora
