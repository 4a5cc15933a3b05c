#include "engine/volumes/FillFileWriter.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

// Large enough that the fill runs at the device's speed, small next to any fill.
constexpr qsizetype kGatherBytes = 4 * 1024 * 1024;

bool writeAll(int fd, const char* data, qsizetype size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        data += written;
        size -= written;
    }
    return true;
}

void flushToDevice(int fd) {
#ifdef Q_OS_MACOS
    ::fsync(fd);
#else
    ::fdatasync(fd);
#endif
}

}  // namespace

bool createFileWithContents(const QString& path, const QByteArray& contents) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    const bool written = writeAll(fd, contents.constData(), contents.size());
    ::close(fd);
    return written;
}

FillFileWriter::FillFileWriter(const QString& path) {
    m_fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC);
    if (m_fd >= 0) m_gathered = std::unique_ptr<char[]>(new char[kGatherBytes]);
}

FillFileWriter::~FillFileWriter() { close(); }

bool FillFileWriter::seekToEndOfFile() {
    if (m_fd < 0) return false;
    if (m_gatheredSize > 0) return true;
    const off_t end = ::lseek(m_fd, 0, SEEK_END);
    if (end < 0) return false;
    m_offset = end;
    return true;
}

bool FillFileWriter::truncateFileAtOffset() {
    if (m_fd < 0) return false;
    m_cutAtEnd = true;
    return true;
}

bool FillFileWriter::writeData(const char* data, qsizetype size) {
    if (m_fd < 0 || m_failed) return false;
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

bool FillFileWriter::flush() {
    if (m_gatheredSize == 0) return !m_failed;
    if (::lseek(m_fd, m_offset, SEEK_SET) < 0 || !writeAll(m_fd, m_gathered.get(), m_gatheredSize)) m_failed = true;
    m_offset = ::lseek(m_fd, 0, SEEK_CUR);
    m_gatheredSize = 0;
    return !m_failed;
}

bool FillFileWriter::close() {
    if (m_fd < 0) return !m_failed;
    flush();
    struct stat file;
    if (m_cutAtEnd && ::fstat(m_fd, &file) == 0 && file.st_size > m_offset && ::ftruncate(m_fd, m_offset) != 0) m_failed = true;
    flushToDevice(m_fd);
    ::close(m_fd);
    m_fd = -1;
    return !m_failed;
}

}  // namespace velmora
