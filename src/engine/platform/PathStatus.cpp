#include "engine/platform/PathStatus.h"

#include "engine/platform/NativePath.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {

int statWithoutFollowing(const QByteArray& path, struct stat* status) {
    if (path.size() < PATH_MAX) return lstat(path.constData(), status);
    QByteArray name;
    const int folder = openContainingFolder(path, name);
    if (folder < 0) return -1;
    const int result = fstatat(folder, name.constData(), status, AT_SYMLINK_NOFOLLOW);
    const int error = errno;
    close(folder);
    errno = error;
    return result;
}

bool itemExists(const QString& path) {
    struct stat status;
    return statWithoutFollowing(nativePath(path), &status) == 0;
}

}  // namespace velmora
