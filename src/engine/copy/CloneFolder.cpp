#include "engine/copy/CloneFolder.h"

#include "engine/copy/TreeCopier.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QDir>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

QString CloneFolder::stamp(const QDateTime& time) { return time.toString("yyyy-MM-dd HH:mm:ss"); }

QString CloneFolder::cloneFolderPath(const QString& volumePath, const QString& stamp) {
    if (volumePath == "/") {
        const QString root = StandardPaths::systemRoot();
        return (root == "/" ? QString() : root) + QString("/VLclone(%1)").arg(stamp);
    }
    return QString("%1/VLclone(%2)").arg(volumePath, stamp);
}

QString CloneFolder::colonFreePath(const QString& path) {
    const qsizetype slash = path.lastIndexOf('/');
    return path.left(slash + 1) + path.mid(slash + 1).replace(':', '-');
}

QString CloneFolder::desktopFolderPath(const QString& stamp) {
    return QString("%1/VLclone(%2)").arg(StandardPaths::desktopDir(), stamp);
}

int CloneFolder::makeAndOpen(const QString& path) {
    QByteArray name;
    const QByteArray bytes = nativePath(path);
    const qsizetype slash = bytes.lastIndexOf('/');
    // The folders above are made as a file manager makes them; the last one is ours.
    if (slash > 0 && !QDir().mkpath(pathFromNative(bytes.left(slash)))) return -1;
    const UniqueFd folder(openContainingFolder(bytes, name));
    if (!folder.valid()) return -1;
    if (mkdirat(folder.get(), name.constData(), 0755) != 0 && errno != EEXIST) return -1;
    const int fd = openat(folder.get(), name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    // Accessible means searchable and writable by this user.
    if (fd >= 0 && faccessat(folder.get(), name.constData(), X_OK | W_OK, AT_EACCESS) != 0) {
        const int error = errno;
        close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

bool CloneFolder::create(const QString& volumePath, const QDateTime& time, QString* error) {
    const QString when = stamp(time);
    const QString onVolume = cloneFolderPath(volumePath, when);
    const QStringList candidates{onVolume, colonFreePath(onVolume), desktopFolderPath(when)};
    QStringList reasons;
    for (const QString& candidate : candidates) {
        const int fd = makeAndOpen(candidate);
        if (fd >= 0) {
            m_fd.reset(fd);
            m_path = candidate;
            m_onDesktop = candidate == candidates.last();
            return true;
        }
        reasons.append(QString("%1: %2").arg(displayPath(candidate), reasonOf(errno)));
    }
    if (error) *error = "The copy folder could not be made (" + reasons.join("; ") + ").";
    return false;
}

}  // namespace velmora
