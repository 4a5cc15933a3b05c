#include "engine/duplicate/getFileList.h"

#include "engine/duplicate/DescriptorBudget.h"
#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PathNames.h"
#include "engine/platform/NativePath.h"

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

int openFolderAt(int folderFd, const char* name) {
    int fd;
    do fd = openat(folderFd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    return fd;
}

// The open folder is what `seen` describes; otherwise it is closed (ESTALE).
int keepIfSame(int fd, const struct stat& seen) {
    struct stat st;
    if (fd >= 0 && fstat(fd, &st) == 0 && st.st_dev == seen.st_dev && st.st_ino == seen.st_ino) return fd;
    if (fd >= 0) {
        close(fd);
        errno = ESTALE;  // replaced since it was listed
    }
    return -1;
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
    int fd = openLongPath(nativePath(path), O_RDONLY | O_DIRECTORY);
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
    // Half of what is free now, so the reading threads that follow find theirs.
    m_heldFolderLimit = int(qBound<qsizetype>(1, DescriptorBudget::availableNow() / 2, qsizetype(kMaxHeldFolders)));
    if (!m_pseudoFileSystems.contains(st.st_dev)) listFolder(fd, st, path, true, 0, resultArray);
    if (fd >= 0) close(fd);
    return true;
}

int getFileList::openSeenFolder(int folderFd, const char* name, const struct stat& seen) {
    return keepIfSame(openFolderAt(folderFd, name), seen);
}

int getFileList::openParentAgain(int childFd, const struct stat& folderStat) {
    return keepIfSame(openFolderAt(childFd, ".."), folderStat);
}

void getFileList::reportUnreadable(const QString& folder) {
    qCInfo(lcDuplicate, "get contents Of Directory At Path failed%s: %s", qUtf8Printable(folder), strerror(errno));
    m_unreadableFolders.append(folder);
}

// The folder is read whole before its subfolders are entered, each opened by
// name relative to it without following a link and entered only if it is
// still the folder that was listed. No full path is handed to the system, so
// depth is no limit; the descriptors held are one per level up to the
// held-folder limit and two below it.
bool getFileList::listFolder(int& fd, const struct stat& folderStat, const QString& folder, bool topLevel, int depth,
                             QList<Entry>& out) {
    const int listingFd = dup(fd);
    DIR* dir = listingFd >= 0 ? fdopendir(listingFd) : nullptr;
    if (!dir) {
        if (listingFd >= 0) close(listingFd);
        return false;
    }
    m_CurrentPath.set(folder);
    struct Child {
        QByteArray name;
        struct stat st;
    };
    std::vector<Child> children;
    while (const dirent* entry = readdir(dir)) {
        if (isDotOrDotDot(entry->d_name)) continue;
        struct stat st;
        if (fstatat(dirfd(dir), entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
        // Links lead elsewhere; FIFOs, sockets and devices are no files to compare.
        if (!S_ISDIR(st.st_mode) && !S_ISREG(st.st_mode)) continue;
        children.push_back({QByteArray(entry->d_name), st});
    }
    closedir(dir);

    for (const Child& child : children) {
        if (stopped()) return false;
        const QString childPath = PathNames::appendComponent(folder, pathFromNative(child.name));
        const Entry entry{childPath, S_ISDIR(child.st.st_mode), quint64(child.st.st_size),
                          FileIdentity::of(child.st, folderStat)};
        if (!entry.isDirectory) {
            out.append(entry);
            continue;
        }
        if (topLevel) {
            if (!m_bSearchHiddenFile && IsHiddenFile(childPath)) continue;
            if (m_rootPath == "/" && !m_bSearchSystemDirectory && IsSystemDirectory(childPath)) continue;
            if (m_rootPath == "/" && PseudoFileSystems::isSkippedBelowRoot(childPath)) continue;
        }
        // A folder met again through a bind mount, or a pseudo file system, is not entered.
        if (m_pseudoFileSystems.contains(child.st.st_dev)) continue;
        if (m_seenFolders.contains(Inode(child.st.st_dev, child.st.st_ino))) continue;
        m_seenFolders.insert(Inode(child.st.st_dev, child.st.st_ino));
        int childFd = openSeenFolder(fd, child.name.constData(), child.st);
        if (childFd < 0) {
            reportUnreadable(childPath);
            continue;
        }
        const bool letGo = depth + 1 >= m_heldFolderLimit;
        if (letGo) {
            close(fd);
            fd = -1;
        }
        QList<Entry> below;
        const bool listed = listFolder(childFd, child.st, childPath, false, depth + 1, below);
        if (letGo && childFd >= 0) fd = openParentAgain(childFd, folderStat);
        if (childFd >= 0) close(childFd);
        if (listed) {
            out.append(below);
            if (!topLevel) out.append(entry);
        } else if (stopped()) {
            return false;
        } else {
            reportUnreadable(childPath);
        }
        if (fd < 0) {
            // Moved while a subfolder was listed: the rest of it cannot be reached safely.
            reportUnreadable(folder);
            return true;
        }
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
