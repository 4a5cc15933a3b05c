#include "engine/duplicate/getFileList.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PathNames.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace velmora {

namespace {

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

int openFolder(const QString& path, int extraFlags) {
    int fd;
    do fd = open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | extraFlags);
    while (fd < 0 && errno == EINTR);
    return fd;
}

const char* const kSystemDirectories[] = {"Library", "Developer", "System", "Volumes", "bin", "sbin"};

}  // namespace

bool getFileList::getListAtPath(const QString& path, QList<fileAttrbItem>& fileArray, QStringList& directoryArray,
                                quint64 limittedSize) {
    m_stop.store(false, std::memory_order_relaxed);
    QList<Entry> listing;
    const bool listed = getDirectoryAtPath(path, listing);
    if (!listed) return false;
    for (const Entry& entry : listing) {
        if (stopped()) break;
        if (!m_bSearchHiddenFile && IsHiddenFile(entry.path)) continue;
        if (getAppDirectory(entry, directoryArray, limittedSize)) continue;
        if (entry.isDirectory) continue;
        // A further hard link of a file listed already is the same file.
        const Inode inode(entry.identity.device, entry.identity.inode);
        if (entry.size > limittedSize && !m_seenFiles.contains(inode)) {
            m_seenFiles.insert(inode);
            qCDebug(lcDuplicate, "file:%s filesize:%llu", qUtf8Printable(entry.path), entry.size);
            fileAttrbItem item;
            item.fileSize = entry.size;
            item.filePathName = entry.path;
            item.fileName = PathNames::lastComponent(entry.path);
            item.ModificationDate = QDateTime::fromMSecsSinceEpoch(entry.identity.modificationMSecs(), Qt::UTC);
            item.identity = entry.identity;
            fileArray.append(std::move(item));
        }
    }
    return listed;
}

bool getFileList::getDirectoryAtPath(const QString& path, QList<Entry>& resultArray) {
    if (path.isEmpty()) return false;
    // The chosen folder itself is opened as chosen, through a link or not.
    const int fd = openFolder(path, 0);
    struct stat st;
    if (fd < 0 || fstat(fd, &st) != 0) {
        qCInfo(lcDuplicate, "get contents Of Directory At Path failed%s: %s", qUtf8Printable(path), strerror(errno));
        if (fd >= 0) close(fd);
        return false;
    }
    m_rootPath = path;
    m_seenFiles.clear();
    m_seenFolders = {Inode(st.st_dev, st.st_ino)};
    m_unreadableFolders.clear();
    m_pseudoFileSystems = PseudoFileSystems::mountedNow();
    if (m_pseudoFileSystems.contains(st.st_dev)) {
        close(fd);
        return true;
    }
    listFolder(fd, path, true, resultArray);
    return true;
}

int getFileList::openSeenFolder(const QString& path, const struct stat& seen) {
    const int fd = openFolder(path, O_NOFOLLOW);
    struct stat st;
    if (fd >= 0 && fstat(fd, &st) == 0 && st.st_dev == seen.st_dev && st.st_ino == seen.st_ino) return fd;
    if (fd >= 0) {
        close(fd);
        errno = ESTALE;  // replaced since it was listed
    }
    return -1;
}

// The folder is read whole and closed before its subfolders are entered, so
// the walk holds one descriptor at any depth; a subfolder is opened again by
// its path, without following a link, and entered only if it is still the
// folder that was listed.
bool getFileList::listFolder(int fd, const QString& folder, bool topLevel, QList<Entry>& out) {
    struct stat folderStat;
    DIR* dir = fstat(fd, &folderStat) == 0 ? fdopendir(fd) : nullptr;
    if (!dir) {
        close(fd);
        return false;
    }
    m_CurrentPath.set(folder);
    struct Child {
        QString path;
        struct stat st;
    };
    std::vector<Child> children;
    while (const dirent* entry = readdir(dir)) {
        if (isDotOrDotDot(entry->d_name)) continue;
        struct stat st;
        if (fstatat(dirfd(dir), entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
        // Links lead elsewhere; FIFOs, sockets and devices are no files to compare.
        if (!S_ISDIR(st.st_mode) && !S_ISREG(st.st_mode)) continue;
        children.push_back({PathNames::appendComponent(folder, QFile::decodeName(entry->d_name)), st});
    }
    closedir(dir);

    for (const Child& child : children) {
        if (stopped()) return false;
        const Entry entry{child.path, S_ISDIR(child.st.st_mode), quint64(child.st.st_size),
                          FileIdentity::of(child.st, folderStat)};
        if (!entry.isDirectory) {
            out.append(entry);
            continue;
        }
        if (topLevel) {
            if (!m_bSearchHiddenFile && IsHiddenFile(child.path)) continue;
            if (m_rootPath == "/" && !m_bSearchSystemDirectory && IsSystemDirectory(child.path)) continue;
            if (m_rootPath == "/" && PseudoFileSystems::isSkippedBelowRoot(child.path)) continue;
        }
        // A folder met again through a bind mount, or a pseudo file system, is not entered.
        if (m_pseudoFileSystems.contains(child.st.st_dev)) continue;
        if (m_seenFolders.contains(Inode(child.st.st_dev, child.st.st_ino))) continue;
        m_seenFolders.insert(Inode(child.st.st_dev, child.st.st_ino));
        const int childFd = openSeenFolder(child.path, child.st);
        QList<Entry> below;
        if (childFd < 0 || !listFolder(childFd, child.path, false, below)) {
            if (stopped()) return false;
            qCInfo(lcDuplicate, "get contents Of Directory At Path failed%s: %s", qUtf8Printable(child.path),
                   strerror(errno));
            m_unreadableFolders.append(child.path);
            continue;
        }
        out.append(below);
        if (!topLevel) out.append(entry);
    }
    return true;
}

bool getFileList::IsHiddenFile(const QString& path) {
    return path.startsWith('.') || path.contains(QLatin1String("/."));
}

bool getFileList::IsSystemDirectory(const QString& path) {
    const QStringList components = path.split('/', Qt::SkipEmptyParts);
    if (components.isEmpty()) return false;
    for (const char* name : kSystemDirectories)
        if (components.first().compare(QLatin1String(name), Qt::CaseInsensitive) == 0) return true;
    return false;
}

bool getFileList::getAppDirectory(const Entry& entry, QStringList& outArray, quint64 limitSize) {
    const QString& path = entry.path;
    if (!path.contains(QLatin1String(".app"), Qt::CaseInsensitive)) return false;
    qsizetype start = 0;
    while (start < path.size()) {
        qsizetype end = path.indexOf('/', start);
        if (end < 0) end = path.size();
        const QString component = path.mid(start, end - start);
        if (PathNames::pathExtension(component).compare(QLatin1String("app"), Qt::CaseInsensitive) == 0) {
            const QString bundlePath = path.left(end);
            if (!m_recordedBundles.contains(bundlePath) && entry.size > limitSize) {
                m_recordedBundles.insert(bundlePath);
                outArray.append(bundlePath);
            }
            return true;
        }
        start = end + 1;
    }
    return false;
}

}  // namespace velmora
