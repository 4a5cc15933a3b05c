#include "engine/volumes/FillFileWriter.h"

#include "engine/platform/WriteAll.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmora {
namespace {

// Large enough that the fill runs at the device's speed, small next to any fill.
constexpr qsizetype kGatherBytes = 4 * 1024 * 1024;
// The write sizes of the last fill file once the volume first reports it is
// full: a file system that refuses a large write may still take a smaller one.
constexpr qsizetype kShrinkingWrites[] = {kGatherBytes, 256 * 1024, 16 * 1024, 4096, 512};

int flushToDevice(int fd) {
#ifdef Q_OS_MACOS
    return ::fsync(fd) == 0 ? 0 : errno;
#else
    return ::fdatasync(fd) == 0 ? 0 : errno;
#endif
}

}  // namespace

int createFileWithContents(int folderFd, const QByteArray& name, const QByteArray& contents) {
    const int fd = ::openat(folderFd, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) return errno;
    const int error = writeAll(fd, contents.constData(), contents.size());
    ::close(fd);
    return error;
}

bool isVolumeFull(int error, int fd) {
    if (error == ENOSPC) return true;
    struct statvfs volume;
    return ::fstatvfs(fd, &volume) == 0 && volume.f_bavail == 0;
}

FillFileWriter::FillFileWriter(int folderFd, const QByteArray& name) {
    m_fd = ::openat(folderFd, name.constData(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (m_fd >= 0) m_gathered = std::unique_ptr<char[]>(new char[kGatherBytes]);
    else m_error = errno;
}

FillFileWriter::~FillFileWriter() { close(); }

void FillFileWriter::fail(int error) {
    if (m_error == 0) m_error = error;
}

bool FillFileWriter::seekToEndOfFile() {
    if (m_fd < 0) return false;
    if (m_gatheredSize > 0) return true;
    const off_t end = ::lseek(m_fd, 0, SEEK_END);
    if (end < 0) {
        fail(errno);
        return false;
    }
    m_offset = end;
    return true;
}

bool FillFileWriter::truncateFileAtOffset() {
    if (m_fd < 0) return false;
    m_cutAtEnd = true;
    return true;
}

bool FillFileWriter::writeData(const char* data, qsizetype size) {
    if (m_fd < 0 || m_error != 0) return false;
    while (size > 0) {
        if (m_gatheredSize == kGatherBytes && !flush()) return false;
        const qsizetype part = qMin(size, kGatherBytes - m_gatheredSize);
        std::memcpy(m_gathered.get() + m_gatheredSize, data, size_t(part));
        m_gatheredSize += part;
        data += part;
        size -= part;
    }
    return true;
}

bool FillFileWriter::writeZerosUntilFull(const std::atomic<bool>& cancel) {
    if (!flush()) return false;
    if (::lseek(m_fd, 0, SEEK_END) < 0) {
        fail(errno);
        return false;
    }
    std::memset(m_gathered.get(), 0, size_t(kGatherBytes));
    for (const qsizetype size : kShrinkingWrites) {
        for (;;) {
            if (cancel) return false;
            const ssize_t written = ::write(m_fd, m_gathered.get(), size_t(size));
            if (written > 0 || (written < 0 && errno == EINTR)) continue;
            const int error = written < 0 ? errno : EIO;
            if (isVolumeFull(error, m_fd)) break;
            fail(error);
            return false;
        }
    }
    m_offset = ::lseek(m_fd, 0, SEEK_CUR);
    return true;
}

bool FillFileWriter::flush() {
    if (m_gatheredSize == 0) return m_error == 0;
    if (::lseek(m_fd, m_offset, SEEK_SET) < 0) fail(errno);
    else if (const int error = writeAll(m_fd, m_gathered.get(), m_gatheredSize)) fail(error);
    m_offset = ::lseek(m_fd, 0, SEEK_CUR);
    m_gatheredSize = 0;
    return m_error == 0;
}

bool FillFileWriter::close() {
    if (m_fd < 0) return m_error == 0;
    flush();
    struct stat file;
    if (m_cutAtEnd && ::fstat(m_fd, &file) == 0 && file.st_size > m_offset && ::ftruncate(m_fd, m_offset) != 0) fail(errno);
    if (const int error = flushToDevice(m_fd)) fail(error);
    ::close(m_fd);
    m_fd = -1;
    return m_error == 0;
}

}  // namespace velmora
