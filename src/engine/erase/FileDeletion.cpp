#include "engine/erase/FileDeletion.h"

#include "engine/erase/TreeRemoval.h"
#include "engine/platform/NativePath.h"
#include "srm/NoFollowPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::FileDeletion {

bool isDeletableFileAtPath(const QString& path) {
    // The folder is reached by descriptor, so the path may be of any length.
    QByteArray name;
    const int folderFd = openContainingFolder(nativePath(path), name);
    if (folderFd < 0) return false;
    struct stat folderInfo;
    struct stat itemInfo;
    bool deletable = faccessat(folderFd, ".", W_OK | X_OK, 0) == 0 && fstat(folderFd, &folderInfo) == 0;
    if (deletable && (folderInfo.st_mode & S_ISVTX) != 0 && geteuid() != 0 &&
        fstatat(folderFd, name.constData(), &itemInfo, AT_SYMLINK_NOFOLLOW) == 0)
        deletable = itemInfo.st_uid == geteuid() || folderInfo.st_uid == geteuid();
    close(folderFd);
    return deletable;
}

bool removeItemAtPath(const QString& path) {
    return TreeRemoval::remove(TreeRemoval::withResolvedFolder(nativePath(path))).isEmpty();
}

bool addOwnerWrite(const QString& path) {
    const QByteArray resolved = TreeRemoval::withResolvedFolder(nativePath(path));
    const qsizetype slash = resolved.lastIndexOf('/');
    const std::string folder = slash < 0 ? "." : slash == 0 ? "/" : resolved.left(slash).toStdString();
    const int folderFd = openFolderNoFollow(folder);
    if (folderFd < 0) return false;
    const QByteArray name = resolved.mid(slash + 1);
    struct stat status;
    bool changed = false;
    if (fstatat(folderFd, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        changed = false;
    } else if (S_ISLNK(status.st_mode)) {
        errno = ELOOP;
    } else {
        changed = fchmodat(folderFd, name.constData(), (status.st_mode & 07777) | S_IWUSR, AT_SYMLINK_NOFOLLOW) == 0;
    }
    const int error = errno;
    close(folderFd);
    errno = error;
    return changed;
}

}  // namespace velmora::FileDeletion
