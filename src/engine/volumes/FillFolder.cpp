#include "engine/volumes/FillFolder.h"

#include "engine/platform/NativePath.h"

#include <QList>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmora {
namespace {

QString errnoText(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

// The mount point, opened without following a link; -1 with the reason when it
// is not a folder on the pinned device.
int openMountPoint(const QString& mountPoint, quint64 device, QString* problem) {
    if (mountPoint.isEmpty()) {
        *problem = "the volume has no mount point";
        return -1;
    }
    if (device == 0) {
        *problem = "the volume " + mountPoint + " is not pinned to its device";
        return -1;
    }
    const int fd = ::open(nativePath(mountPoint).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        *problem = QString("cannot open the mount point %1: %2").arg(mountPoint, errnoText(errno));
        return -1;
    }
    struct stat info;
    if (::fstat(fd, &info) != 0 || quint64(info.st_dev) != device) {
        ::close(fd);
        *problem = mountPoint + " no longer lies on the chosen volume";
        return -1;
    }
    return fd;
}

// The names in an open folder, read through a descriptor of its own so the
// folder's descriptor keeps its position; false when it cannot be read.
bool listEntries(int folderFd, QList<QByteArray>* names) {
    const int fd = ::openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = fd >= 0 ? ::fdopendir(fd) : nullptr;
    if (!dir) {
        if (fd >= 0) ::close(fd);
        return false;
    }
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") names->append(name);
    }
    ::closedir(dir);
    return true;
}

bool sameFile(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

// Unlinks the fill files in the open folder, then the folder itself, but only
// while its name in the mount point still leads to that very folder.
bool removeFolder(int mountFd, int folderFd, QString* problem) {
    QList<QByteArray> names;
    if (!listEntries(folderFd, &names)) {
        *problem = "cannot read the fill folder: " + errnoText(errno);
        return false;
    }
    for (const QByteArray& name : names) {
        if (!FillFolder::isFillFileName(name)) {
            *problem = "the fill folder holds \"" + displayPath(pathFromNative(name)) + "\", which the fill did not write";
            return false;
        }
        if (::unlinkat(folderFd, name.constData(), 0) != 0) {
            *problem = "cannot remove a fill file: " + errnoText(errno);
            return false;
        }
    }
    struct stat folder, named;
    if (::fstat(folderFd, &folder) != 0 || ::fstatat(mountFd, FillFolder::kName, &named, AT_SYMLINK_NOFOLLOW) != 0 ||
        !sameFile(folder, named)) {
        *problem = "the fill folder was replaced during the wipe";
        return false;
    }
    if (::unlinkat(mountFd, FillFolder::kName, AT_REMOVEDIR) != 0) {
        *problem = "cannot remove the fill folder: " + errnoText(errno);
        return false;
    }
    return true;
}

// A ".Velmora" in the open mount point is removed when a killed run left it:
// a real folder on the device, owned by us, with nothing but fill files in it.
bool removeLeftoverAt(int mountFd, quint64 device, QString* problem) {
    const int folderFd = ::openat(mountFd, FillFolder::kName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folderFd < 0) {
        if (errno == ENOENT) return true;
        *problem = errno == ELOOP || errno == ENOTDIR
                       ? QString("\".Velmora\" on the volume is a link or not a folder; it is left as it is")
                       : "cannot open \".Velmora\" on the volume: " + errnoText(errno);
        return false;
    }
    struct stat info;
    QList<QByteArray> names;
    bool ours = ::fstat(folderFd, &info) == 0 && S_ISDIR(info.st_mode) && quint64(info.st_dev) == device &&
                info.st_uid == ::geteuid() && listEntries(folderFd, &names);
    for (const QByteArray& name : names) {
        struct stat file;
        ours = ours && FillFolder::isFillFileName(name) &&
               ::fstatat(folderFd, name.constData(), &file, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(file.st_mode) &&
               file.st_nlink == 1;
    }
    bool removed = false;
    if (!ours) *problem = "\".Velmora\" on the volume is a folder the wipe did not make; it is left as it is";
    else removed = removeFolder(mountFd, folderFd, problem);
    ::close(folderFd);
    return removed;
}

void flushVolume(int mountFd) {
#ifdef Q_OS_LINUX
    if (::syncfs(mountFd) == 0) return;
#else
    Q_UNUSED(mountFd);
#endif
    ::sync();
}

}  // namespace

FillFolder::FillFolder(const QString& mountPoint, quint64 device) : m_path(mountPoint + "/" + kName) {
    m_mountFd = openMountPoint(mountPoint, device, &m_problem);
    if (m_mountFd < 0 || !removeLeftoverAt(m_mountFd, device, &m_problem)) return;
    if (::mkdirat(m_mountFd, kName, 0700) != 0) {
        m_problem = QString("cannot make the fill folder %1: %2").arg(m_path, errnoText(errno));
        return;
    }
    m_folderFd = ::openat(m_mountFd, kName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat info;
    if (m_folderFd >= 0 && ::fstat(m_folderFd, &info) == 0 && quint64(info.st_dev) == device &&
        info.st_uid == ::geteuid())
        return;
    m_problem = "the fill folder " + m_path + " was replaced as soon as it was made";
    if (m_folderFd >= 0) ::close(m_folderFd);
    m_folderFd = -1;
}

FillFolder::~FillFolder() {
    remove();
    if (m_mountFd >= 0) ::close(m_mountFd);
}

qint64 FillFolder::freeBytes() const {
    struct statvfs volume;
    if (m_folderFd < 0 || ::fstatvfs(m_folderFd, &volume) != 0) return 0;
    return qint64(volume.f_bfree) * qint64(volume.f_frsize);
}

bool FillFolder::remove() {
    if (m_folderFd < 0) return m_problem.isEmpty();
    const bool removed = removeFolder(m_mountFd, m_folderFd, &m_problem);
    ::close(m_folderFd);
    m_folderFd = -1;
    flushVolume(m_mountFd);
    return removed;
}

bool FillFolder::removeLeftover(const QString& mountPoint, quint64 device, QString* problem) {
    const int mountFd = openMountPoint(mountPoint, device, problem);
    if (mountFd < 0) return false;
    const bool removed = removeLeftoverAt(mountFd, device, problem);
    ::close(mountFd);
    return removed;
}

bool FillFolder::isVolumeRoot(const QString& mountPoint, quint64 device, QString* problem) {
    const int mountFd = openMountPoint(mountPoint, device, problem);
    if (mountFd < 0) return false;
    struct stat root, parent;
    const bool isRoot = ::fstat(mountFd, &root) == 0 && ::fstatat(mountFd, "..", &parent, AT_SYMLINK_NOFOLLOW) == 0 &&
                        (parent.st_dev != root.st_dev || parent.st_ino == root.st_ino);
    ::close(mountFd);
    if (!isRoot) *problem = mountPoint + " is not the root of a mounted volume";
    return isRoot;
}

bool FillFolder::isFillFileName(const QByteArray& name) {
    static constexpr char kPrefix[] = ".velmora_";
    if (!name.startsWith(kPrefix) || name.size() == qsizetype(sizeof kPrefix) - 1) return false;
    return std::all_of(name.cbegin() + sizeof kPrefix - 1, name.cend(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace velmora
