#include "engine/copy/TreeCopier.h"

#include "engine/copy/CopyReport.h"
#include "engine/copy/UniqueFd.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/WriteAll.h"
#include "srm/NoFollowPath.h"

#include <QString>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr size_t kBufferSize = 4 * 1024 * 1024;

QString textOf(const QByteArray& path) { return pathFromNative(path); }

QByteArray joined(const QByteArray& folder, const QByteArray& name) { return folder + '/' + name; }

bool sameTime(const timespec& a, const timespec& b) {
    // FAT keeps modification times to two seconds.
    return qAbs(qint64(a.tv_sec) - qint64(b.tv_sec)) <= 2;
}

}  // namespace

QString reasonOf(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

TreeCopier::TreeCopier(CopyReport& report, const std::atomic<bool>& cancel) : m_report(report), m_cancel(cancel) {}

void TreeCopier::copyEntry(int sourceFolder, const QByteArray& name, const QByteArray& sourcePath, int destinationFolder,
                           const QByteArray& destinationName, const QByteArray& destinationPath) {
    if (cancelled()) return;
    struct stat status {};
    if (fstatat(sourceFolder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        m_report.fail(textOf(sourcePath), "could not be read: " + reasonOf(errno));
        return;
    }
    switch (status.st_mode & S_IFMT) {
    case S_IFREG: return copyFile(sourceFolder, name, status, sourcePath, destinationFolder, destinationName, destinationPath);
    case S_IFDIR: return copyFolder(sourceFolder, name, status, sourcePath, destinationFolder, destinationName, destinationPath);
    case S_IFLNK: return copyLink(sourceFolder, name, status, sourcePath, destinationFolder, destinationName, destinationPath);
    case S_IFIFO: m_report.fail(textOf(sourcePath), "a FIFO (a special file): not copied"); return;
    case S_IFSOCK: m_report.fail(textOf(sourcePath), "a socket (a special file): not copied"); return;
    default: m_report.fail(textOf(sourcePath), "a device (a special file): not copied"); return;
    }
}

void TreeCopier::copyFolder(int sourceFolder, const QByteArray& name, const struct stat& status,
                            const QByteArray& sourcePath, int destinationFolder, const QByteArray& destinationName,
                            const QByteArray& destinationPath) {
    const UniqueFd source(openat(sourceFolder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat opened {};
    if (!source.valid() || fstat(source.get(), &opened) != 0 || opened.st_ino != status.st_ino) {
        m_report.fail(textOf(sourcePath), "could not be opened: " + reasonOf(source.valid() ? ESTALE : errno));
        return;
    }
    if (!onSameMount(sourceFolder, source.get())) {
        m_report.note("another volume is mounted inside the source there: it was not copied", textOf(sourcePath));
        return;
    }
    if (mkdirat(destinationFolder, destinationName.constData(), 0700) != 0) {
        m_report.fail(textOf(sourcePath), "the folder could not be made: " + reasonOf(errno));
        return;
    }
    const UniqueFd destination(openat(destinationFolder, destinationName.constData(),
                                      O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!destination.valid()) {
        m_report.fail(textOf(sourcePath), "the folder could not be opened: " + reasonOf(errno));
        return;
    }
    m_report.copiedItems.fetch_add(1, std::memory_order_relaxed);
    int error = 0;
    for (const std::string& entry : folderEntries(source.get(), error)) {
        if (cancelled()) return;
        const QByteArray entryName = QByteArray::fromStdString(entry);
        copyEntry(source.get(), entryName, joined(sourcePath, entryName), destination.get(), entryName,
                  joined(destinationPath, entryName));
    }
    if (error != 0) m_report.fail(textOf(sourcePath), "the folder could not be listed to its end: " + reasonOf(error));
    applyAttributes(source.get(), destination.get(), status, sourcePath);
}

bool TreeCopier::linkToFirstCopy(const struct stat& status, const QByteArray& sourcePath, int destinationFolder,
                                 const QByteArray& destinationName) {
    const std::optional<QByteArray> first = m_report.firstCopyOf(status.st_dev, status.st_ino);
    if (!first) return false;
    QByteArray firstName;
    const UniqueFd firstFolder(openContainingFolder(*first, firstName));
    if (firstFolder.valid() &&
        linkat(firstFolder.get(), firstName.constData(), destinationFolder, destinationName.constData(), 0) == 0) {
        m_report.copiedItems.fetch_add(1, std::memory_order_relaxed);
        return true;
    }
    m_report.note("hard links could not be kept: the names were copied as separate files (" + reasonOf(errno) + ")",
                  textOf(sourcePath));
    return false;
}

void TreeCopier::copyFile(int sourceFolder, const QByteArray& name, const struct stat& status,
                          const QByteArray& sourcePath, int destinationFolder, const QByteArray& destinationName,
                          const QByteArray& destinationPath) {
    // O_NONBLOCK: an entry swapped for a FIFO after the check must not hang the copy.
    const UniqueFd in(openat(sourceFolder, name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened {};
    if (!in.valid() || fstat(in.get(), &opened) != 0 || opened.st_ino != status.st_ino || !S_ISREG(opened.st_mode)) {
        m_report.fail(textOf(sourcePath), "could not be opened: " + reasonOf(in.valid() ? ESTALE : errno));
        return;
    }
    const bool linked = opened.st_nlink > 1;
    if (linked && linkToFirstCopy(opened, sourcePath, destinationFolder, destinationName)) {
        m_report.copied(sourcePath, destinationPath);
        return;
    }
    const UniqueFd out(openat(destinationFolder, destinationName.constData(),
                              O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!out.valid()) {
        m_report.fail(textOf(sourcePath), "the copy could not be made: " + reasonOf(errno));
        return;
    }
    if (const int error = copyContents(in.get(), out.get(), opened); error != 0) {
        unlinkat(destinationFolder, destinationName.constData(), 0);
        m_report.fail(textOf(sourcePath), "could not be copied: " + reasonOf(error));
        return;
    }
    applyAttributes(in.get(), out.get(), opened, sourcePath);
    m_report.copiedItems.fetch_add(1, std::memory_order_relaxed);
    if (linked) m_report.rememberCopy(opened.st_dev, opened.st_ino, destinationPath);
    m_report.copied(sourcePath, destinationPath);
}

int TreeCopier::copyContents(int in, int out, const struct stat& status) {
    const off_t size = status.st_size;
    if (size == 0) return 0;
    if (m_tryClone) {
        if (ioctl(out, FICLONE, in) == 0) {
            m_report.copiedBytes.fetch_add(quint64(size), std::memory_order_relaxed);
            return 0;
        }
        m_tryClone = false;  // not the same file system, or one without shared extents
    }
    posix_fadvise(in, 0, 0, POSIX_FADV_SEQUENTIAL);
    // Only a file with fewer blocks than its size can have holes to keep.
    const bool mayHaveHoles = off_t(status.st_blocks) * 512 < size;
    off_t offset = 0;
    while (offset < size) {
        if (cancelled()) return ECANCELED;
        off_t data = offset;
        off_t end = size;
        if (mayHaveHoles) {
            data = lseek(in, offset, SEEK_DATA);
            if (data < 0 && errno == ENXIO) break;  // the rest is a hole
            if (data < 0) data = offset;
            end = lseek(in, data, SEEK_HOLE);
            if (end < 0 || end > size) end = size;
        }
        if (const int error = copyRange(in, out, data, end - data); error != 0) return error;
        offset = end;
    }
    // A hole at the end is made by the size alone, or written as zeros where the file
    // system cannot set a size (some FUSE drivers).
    struct stat written {};
    if (fstat(out, &written) != 0) return errno;
    if (written.st_size >= size || ftruncate(out, size) == 0) return 0;
    if (m_buffer.empty()) m_buffer.resize(kBufferSize);
    std::fill(m_buffer.begin(), m_buffer.end(), '\0');
    for (off_t at = written.st_size; at < size;) {
        const size_t chunk = size_t(qMin<off_t>(size - at, off_t(m_buffer.size())));
        if (lseek(out, at, SEEK_SET) < 0) return errno;
        if (const int error = writeAll(out, m_buffer.data(), qsizetype(chunk)); error != 0) return error;
        at += off_t(chunk);
    }
    return 0;
}

int TreeCopier::copyRange(int in, int out, off_t offset, off_t length) {
    off_t done = 0;
    while (done < length && m_tryCopyRange) {
        loff_t inOffset = offset + done;
        loff_t outOffset = inOffset;
        const ssize_t copied = copy_file_range(in, &inOffset, out, &outOffset, size_t(length - done), 0);
        if (copied > 0) {
            done += copied;
            m_report.copiedBytes.fetch_add(quint64(copied), std::memory_order_relaxed);
            continue;
        }
        if (copied == 0) return 0;  // the source got shorter meanwhile
        if (errno == EINTR) continue;
        if (errno != EXDEV && errno != EINVAL && errno != EOPNOTSUPP && errno != ENOSYS && errno != EBADF) return errno;
        m_tryCopyRange = false;  // the kernel cannot copy between these two: copy through the buffer
    }
    if (done < length && m_buffer.empty()) m_buffer.resize(kBufferSize);
    while (done < length) {
        if (cancelled()) return ECANCELED;
        const size_t chunk = size_t(qMin<off_t>(length - done, off_t(m_buffer.size())));
        const ssize_t got = pread(in, m_buffer.data(), chunk, offset + done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (got == 0) return 0;
        if (lseek(out, offset + done, SEEK_SET) < 0) return errno;
        if (const int error = writeAll(out, m_buffer.data(), got); error != 0) return error;
        done += got;
        m_report.copiedBytes.fetch_add(quint64(got), std::memory_order_relaxed);
    }
    return 0;
}

void TreeCopier::copyLink(int sourceFolder, const QByteArray& name, const struct stat& status,
                          const QByteArray& sourcePath, int destinationFolder, const QByteArray& destinationName,
                          const QByteArray& destinationPath) {
    QByteArray target(qMax<qsizetype>(status.st_size, 255) + 1, '\0');
    ssize_t length = -1;
    for (;;) {
        length = readlinkat(sourceFolder, name.constData(), target.data(), size_t(target.size()));
        if (length < 0 || length < target.size()) break;
        target.resize(target.size() * 2);
    }
    if (length < 0) {
        m_report.fail(textOf(sourcePath), "the symbolic link could not be read: " + reasonOf(errno));
        return;
    }
    target.truncate(length);
    if (symlinkat(target.constData(), destinationFolder, destinationName.constData()) != 0) {
        m_report.fail(textOf(sourcePath), "the symbolic link could not be made here: " + reasonOf(errno));
        return;
    }
    m_report.copiedItems.fetch_add(1, std::memory_order_relaxed);
    m_report.copied(sourcePath, destinationPath);
    if (geteuid() == 0 &&
        fchownat(destinationFolder, destinationName.constData(), status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW) != 0)
        m_report.note("owners could not be kept", textOf(sourcePath));
    const timespec times[2] = {status.st_atim, status.st_mtim};
    if (utimensat(destinationFolder, destinationName.constData(), times, AT_SYMLINK_NOFOLLOW) != 0)
        m_report.note("modification times could not be kept", textOf(sourcePath));
}

void TreeCopier::applyAttributes(int sourceFd, int destinationFd, const struct stat& source,
                                 const QByteArray& sourcePath) {
    const QString path = textOf(sourcePath);
    // The owner first: changing it clears the set-user-ID and set-group-ID bits.
    if (geteuid() == 0) fchown(destinationFd, source.st_uid, source.st_gid);
    fchmod(destinationFd, source.st_mode & 07777);
    copyExtendedAttributes(sourceFd, destinationFd, sourcePath);
    const timespec times[2] = {source.st_atim, source.st_mtim};
    futimens(destinationFd, times);
    // What the destination holds now, whatever the calls answered (some file systems
    // take a change and drop it).
    struct stat kept {};
    if (fstat(destinationFd, &kept) != 0) return;
    if (geteuid() == 0 && (kept.st_uid != source.st_uid || kept.st_gid != source.st_gid))
        m_report.note("owners could not be kept", path);
    if ((kept.st_mode & 07777) != (source.st_mode & 07777)) m_report.note("permissions could not be kept", path);
    if (!sameTime(kept.st_mtim, source.st_mtim)) m_report.note("modification times could not be kept", path);
}

void TreeCopier::copyExtendedAttributes(int in, int out, const QByteArray& sourcePath) {
    ssize_t listSize = flistxattr(in, nullptr, 0);
    if (listSize <= 0) return;
    QByteArray names(listSize, '\0');
    listSize = flistxattr(in, names.data(), size_t(names.size()));
    if (listSize <= 0) return;
    names.truncate(listSize);
    for (const QByteArray& attribute : names.split('\0')) {
        if (attribute.isEmpty()) continue;
        const ssize_t valueSize = fgetxattr(in, attribute.constData(), nullptr, 0);
        if (valueSize < 0) continue;
        QByteArray value(valueSize, '\0');
        const ssize_t got = fgetxattr(in, attribute.constData(), value.data(), size_t(value.size()));
        if (got < 0) continue;
        if (fsetxattr(out, attribute.constData(), value.constData(), size_t(got), 0) != 0)
            m_report.note("extended attributes could not be kept (" + reasonOf(errno) + ")", textOf(sourcePath));
    }
}

}  // namespace velmora
