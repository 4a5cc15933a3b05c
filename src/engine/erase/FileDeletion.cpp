#include "engine/erase/FileDeletion.h"

#include "engine/erase/TreeRemoval.h"
#include "srm/NoFollowPath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::FileDeletion {

bool isDeletableFileAtPath(const QString& path) {
    const QByteArray folder = QFile::encodeName(QFileInfo(QDir::cleanPath(path)).absolutePath());
    if (access(folder.constData(), W_OK | X_OK) != 0) return false;
    struct stat folderInfo;
    if (stat(folder.constData(), &folderInfo) != 0) return false;
    if ((folderInfo.st_mode & S_ISVTX) == 0 || geteuid() == 0) return true;
    struct stat itemInfo;
    if (lstat(QFile::encodeName(path).constData(), &itemInfo) != 0) return true;
    return itemInfo.st_uid == geteuid() || folderInfo.st_uid == geteuid();
}

bool removeItemAtPath(const QString& path) {
    return TreeRemoval::remove(TreeRemoval::withResolvedFolder(QFile::encodeName(path))).isEmpty();
}

bool addOwnerWrite(const QString& path) {
    const QByteArray resolved =
        TreeRemoval::withResolvedFolder(QFile::encodeName(QDir::cleanPath(QFileInfo(path).absoluteFilePath())));
    const qsizetype slash = resolved.lastIndexOf('/');
    const int folderFd = openFolderNoFollow(slash == 0 ? std::string("/") : resolved.left(slash).toStdString());
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
