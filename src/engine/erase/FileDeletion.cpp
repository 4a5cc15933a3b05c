#include "engine/erase/FileDeletion.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
    const QByteArray name = QFile::encodeName(path);
    struct stat info;
    if (lstat(name.constData(), &info) != 0) return false;
    if (S_ISDIR(info.st_mode)) return QDir(path).removeRecursively();
    return unlink(name.constData()) == 0;
}

}  // namespace velmora::FileDeletion
