#include "engine/erase/ImmutableFlag.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifndef Q_OS_MACOS
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace velmora::ImmutableFlag {

#ifdef Q_OS_MACOS

bool isSet(const QString& path) {
    struct stat info;
    if (statWithoutFollowing(nativePath(path), &info) != 0) return false;
    return (info.st_flags & UF_IMMUTABLE) != 0;
}

bool clear(const QString& path) {
    const QByteArray name = nativePath(path);
    struct stat info;
    if (lstat(name.constData(), &info) != 0) return false;
    return lchflags(name.constData(), info.st_flags & ~UF_IMMUTABLE) == 0;
}

#else

namespace {

// The flags are read and written through a descriptor; symbolic links carry none.
int openForFlags(const QString& path) {
    return openLongPath(nativePath(path), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY);
}

}  // namespace

bool isSet(const QString& path) {
    const int fd = openForFlags(path);
    if (fd < 0) return false;
    int flags = 0;
    const bool set = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0 && (flags & FS_IMMUTABLE_FL) != 0;
    close(fd);
    return set;
}

bool clear(const QString& path) {
    const int fd = openForFlags(path);
    if (fd < 0) return false;
    int flags = 0;
    bool cleared = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    if (cleared && (flags & FS_IMMUTABLE_FL) != 0) {
        flags &= ~FS_IMMUTABLE_FL;
        cleared = ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    close(fd);
    return cleared;
}

#endif

}  // namespace velmora::ImmutableFlag
