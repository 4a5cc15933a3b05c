#include "engine/duplicate/algorithm.h"

#include "engine/duplicate/BatchedFirstPages.h"
#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PageCacheGuard.h"
#include "engine/duplicate/crc.h"
#include "engine/platform/NativePath.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace velmora {

namespace {

// Opens without following a link (in the last component) and without waiting
// on what is no regular file, at any path length. A process short of descriptors (other threads hold some for a
// moment) tries again for a while rather than calling the file unreadable.
int openForReading(const QByteArray& name) {
    int fd = -1;
    for (int attempt = 0; attempt < 200; ++attempt) {
        fd = openLongPath(name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
        if (fd >= 0 || (errno != EMFILE && errno != ENFILE)) break;
        usleep(10000);
    }
    return fd;
}

// The open file must be a regular file and, when the item was listed, still
// the file listed: its bytes then stand for that file.
bool isListedFile(int fd, const FileIdentity& listed) {
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) return false;
    return listed.inode == 0 || listed.isSameFile(st);
}

// One read at `offset`; fewer bytes than asked mean the end of the file.
ssize_t readOnce(int fd, unsigned char* buffer, size_t size, quint64 offset) {
    ssize_t n;
    do n = pread(fd, buffer, size, off_t(offset));
    while (n < 0 && errno == EINTR);
    return n;
}

// Reads the first block. The answer `cached` tells whether it came from the
// page cache: a non-blocking read succeeds only from there.
ssize_t readFirstBlock(int fd, unsigned char* buffer, size_t size, bool& cached) {
    cached = true;
#if defined(__APPLE__)
    fcntl(fd, F_NOCACHE, 1);
#elif defined(__linux__) && defined(RWF_NOWAIT)
    // No read-ahead: a page missing from the cache starts its own read even
    // in the non-blocking attempt, and only that page is to be dropped later.
    posix_fadvise(fd, 0, 0, POSIX_FADV_RANDOM);
    iovec vector{buffer, size};
    const ssize_t fromCache = preadv2(fd, &vector, 1, 0, RWF_NOWAIT);
    if (fromCache >= 0) return fromCache;
    if (errno == EAGAIN) {
        cached = false;
        return readOnce(fd, buffer, size, 0);
    }
#endif
    return readOnce(fd, buffer, size, 0);
}

void dropFirstBlock(int fd) {
#if defined(__linux__)
    posix_fadvise(fd, 0, off_t(algorithm::kFirstPageSize), POSIX_FADV_DONTNEED);
#else
    Q_UNUSED(fd);
#endif
}

}  // namespace

OpenedFile::~OpenedFile() { close(); }

void OpenedFile::close() {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = -1;
}

bool OpenedFile::open(const QByteArray& path, const FileIdentity& listed) {
    close();
    m_fd = openForReading(path);
    if (m_fd >= 0 && !isListedFile(m_fd, listed)) close();
    return m_fd >= 0;
}

void OpenedFile::adopt(int fd) {
    close();
    m_fd = fd;
}

algorithm::algorithm() : m_buffer(new unsigned char[kReadSize]) {}

algorithm::~algorithm() = default;

BatchedFirstPages* algorithm::batchedFirstPages(DescriptorBudget& budget) {
    if (!m_batchedTried) {
        m_batchedTried = true;
        auto batched = std::make_unique<BatchedFirstPages>(budget);
        if (batched->ready()) m_batched = std::move(batched);
    }
    return m_batched.get();
}

bool algorithm::getMD5_1K(fileAttrbItem& item, OpenedFile* file) {
    Fingerprints found;
    if (!getFirstBlock(nativePath(item.filePathName), item.identity, found, file)) return false;
    item.md5_1k = found.firstBlock;
    if (found.whole != 0) item.md5 = found.whole;
    return true;
}

bool algorithm::getFirstBlock(const QByteArray& path, const FileIdentity& listed, Fingerprints& out,
                              OpenedFile* file) {
    OpenedFile own;
    OpenedFile& opened = file ? *file : own;
    if (!opened.open(path, listed)) {
        qCInfo(lcDuplicate, "open file:%s failed", qUtf8Printable(displayPath(pathFromNative(path))));
        return false;
    }
    unsigned char* page = m_buffer.get();
    std::memset(page, 0, kFirstPageSize);
    const ssize_t got = readFirstBlock(opened.fd(), page, kFirstPageSize, opened.firstBlockWasCached);
    if (!file) forgetFirstBlock(opened);
    if (got < 0) return false;
    fingerprintFirstPage(page, got, out, opened);
    return true;
}

void algorithm::fingerprintFirstPage(const unsigned char* page, ssize_t got, Fingerprints& out, OpenedFile& file) {
    out.firstBlock = crc::crc64(page, kFirstBlockSize);
    file.firstPageCrc = crc::crc64(page, kFirstPageSize);
    if (got > 0 && size_t(got) < kFirstPageSize) out.whole = crc::crc64(page, uint32_t(got));
}

void algorithm::forgetFirstBlock(const OpenedFile& file) {
    if (!file.firstBlockWasCached && file.fd() >= 0) dropFirstBlock(file.fd());
}

bool algorithm::getMD5(fileAttrbItem& item, const OpenedFile* file) {
    Fingerprints found;
    if (!getWhole(nativePath(item.filePathName), item.identity, found, file)) return false;
    item.md5 = found.whole;
    return true;
}

bool algorithm::getWhole(const QByteArray& path, const FileIdentity& listed, Fingerprints& out,
                         const OpenedFile* file) {
    uint64_t reg = crc::kInitial;
    quint64 offset = 0;
    for (;;) {
        OpenedFile own;
        const bool reuse = file && offset == 0 && file->fd() >= 0;
        if (!reuse && !own.open(path, listed)) {
            qCInfo(lcDuplicate, "open file :%s failed", qUtf8Printable(displayPath(pathFromNative(path))));
            return false;
        }
        const int fd = reuse ? file->fd() : own.fd();
        struct stat st;
        if (fstat(fd, &st) != 0 || (offset == 0 && st.st_size == 0)) return false;
        const quint64 span = qMin(kDescriptorSpan, quint64(st.st_size) > offset ? quint64(st.st_size) - offset : 0);
        // The first block read through `file` is ours to drop as well.
        const bool firstBlockIsOurs = reuse && !file->firstBlockWasCached;
        const PageCacheGuard guard(fd, offset, span, firstBlockIsOurs);
        quint64 segment = 0;
        bool atEnd = false;
        while (segment < kDescriptorSpan) {
            const size_t want = size_t(qMin<quint64>(kReadSize, kDescriptorSpan - segment));
            const ssize_t n = readOnce(fd, m_buffer.get(), want, offset + segment);
            if (n < 0) {
                guard.dropReadPages();
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
        offset += segment;
        if (atEnd) break;
    }
    out.whole = reg;
    return true;
}

}  // namespace velmora
