#include "srm/DeviceIo.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

namespace {

constexpr int kOpenFlags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

} // namespace

int openForOverwrite(int dirfd, const char* name)
{
#if defined(__APPLE__)
    const int fd = openat(dirfd, name, kOpenFlags);
    if (fd >= 0)
        fcntl(fd, F_NOCACHE, 1);
    return fd;
#else
    const int fd = openat(dirfd, name, kOpenFlags | O_DIRECT);
    if (fd >= 0 || errno != EINVAL)
        return fd;
    return openat(dirfd, name, kOpenFlags); // the file system has no direct I/O
#endif
}

int writeFully(int fd, const std::uint8_t* data, std::size_t length, std::uint64_t offset,
               std::size_t& written)
{
    written = 0;
    while (written < length) {
        const ssize_t result = pwrite(fd, data + written, length - written, static_cast<off_t>(offset + written));
        if (result > 0) {
            written += static_cast<std::size_t>(result);
            continue;
        }
        if (result < 0 && errno == EINTR)
            continue;
#if !defined(__APPLE__)
        const int flags = fcntl(fd, F_GETFL);
        if (result < 0 && errno == EINVAL && (flags & O_DIRECT) != 0) {
            // Direct I/O needs aligned requests; a file system may want more than we give.
            if (fcntl(fd, F_SETFL, flags & ~O_DIRECT) == 0)
                continue;
        }
#endif
        return result < 0 ? errno : EIO;
    }
    return 0;
}

bool syncToDevice(int fd)
{
#if defined(__APPLE__)
    if (fcntl(fd, F_FULLFSYNC) == 0)
        return true;
    return fsync(fd) == 0; // file systems without F_FULLFSYNC support
#else
    return fdatasync(fd) == 0;
#endif
}

void dropCachedPages(int fd)
{
#if !defined(__APPLE__)
    posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
#else
    (void)fd; // F_NOCACHE kept the pages out in the first place
#endif
}

bool renameWithoutReplacing(int dirfd, const char* from, const char* to)
{
#if defined(__APPLE__)
    if (renameatx_np(dirfd, from, dirfd, to, RENAME_EXCL) == 0)
        return true;
    if (errno != ENOTSUP && errno != EINVAL)
        return false;
#else
    if (renameat2(dirfd, from, dirfd, to, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
#endif
    // The file system cannot refuse to replace: check first (the names are random, so
    // a clash is already unlikely).
    struct stat existing;
    if (fstatat(dirfd, to, &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return renameat(dirfd, from, dirfd, to) == 0;
}

} // namespace velmora
