#include "engine/duplicate/getFileList.h"

#include "engine/duplicate/DescriptorBudget.h"
#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/FingerprintPool.h"
#include "engine/duplicate/PathNames.h"
#include "engine/platform/NativePath.h"

#include <QThread>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <numeric>
#include <strings.h>
#include <tuple>
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

QString bundleOfPath(const QString& path) {
    qsizetype start = 0;
    while (start < path.size()) {
        qsizetype end = path.indexOf('/', start);
        if (end < 0) end = path.size();
        if (PathNames::pathExtension(path.mid(start, end - start)).compare(QLatin1String("app"), Qt::CaseInsensitive) == 0)
            return path.left(end);
        start = end + 1;
    }
    return {};
}

bool isBundleName(const QString& name) {
    return PathNames::pathExtension(name).compare(QLatin1String("app"), Qt::CaseInsensitive) == 0;
}

}  // namespace

bool getFileList::getListAtPath(const QString& path, FileListing& fileArray, QStringList& directoryArray,
                                quint64 limittedSize) {
    m_stop.store(false, std::memory_order_relaxed);
    if (path.isEmpty()) return false;
    // The chosen folder itself is opened as chosen, through a link or not.
    const QByteArray native = nativePath(path);
    int fd = openLongPath(native, O_RDONLY | O_DIRECTORY);
    struct stat st;
    if (fd < 0 || fstat(fd, &st) != 0) {
        qCInfo(lcDuplicate, "get contents Of Directory At Path failed%s: %s", qUtf8Printable(path), strerror(errno));
        if (fd >= 0) close(fd);
        return false;
    }
    m_listing = &fileArray;
    m_bundles = &directoryArray;
    m_limit = limittedSize;
    m_rootPath = path;
    m_seenFolders = {Inode(st.st_dev, st.st_ino)};
    m_unreadableFolders.clear();
    m_pseudoFileSystems = PseudoFileSystems::mountedNow();
    // Half of what is free now, so the reading threads that follow find theirs.
    m_statThreads = QThread::idealThreadCount();
    m_heldFolderLimit = int(qBound<qsizetype>(1, DescriptorBudget::availableNow() / 2, qsizetype(kMaxHeldFolders)));
    const Folder root{path, native, IsHiddenFile(path), bundleOfPath(path)};
    if (!m_pseudoFileSystems.contains(st.st_dev)) listFolder(fd, st, root, true, 0);
    if (fd >= 0) close(fd);
    dropFurtherLinks();
    m_listing = nullptr;
    m_bundles = nullptr;
    return true;
}

void getFileList::takeEntry(const Folder& folder, quint32 folderIndex, const char* name, const struct stat& st) {
    if (!m_bSearchHiddenFile && (folder.hidden || name[0] == '.')) return;
    if (!folder.bundle.isEmpty()) {
        recordBundle(folder.bundle, quint64(st.st_size));
        return;
    }
    const size_t length = strlen(name);
    // Most names have no "app" extension: the display name is built only for those that may.
    if (length > 4 && strncasecmp(name + length - 4, ".app", 4) == 0) {
        const QString shown = pathFromNative(name);
        if (isBundleName(shown)) {
            recordBundle(PathNames::appendComponent(folder.path, shown), quint64(st.st_size));
            return;
        }
    }
    if (S_ISDIR(st.st_mode) || quint64(st.st_size) <= m_limit) return;
    if (!m_listing->addFile(folderIndex, name, length, st)) {
        errno = EOVERFLOW;  // on more devices than a listing tells apart
        reportUnreadable(PathNames::appendComponent(folder.path, pathFromNative(name)));
    }
}

void getFileList::recordBundle(const QString& bundle, quint64 size) {
    if (size <= m_limit || m_recordedBundles.contains(bundle)) return;
    m_recordedBundles.insert(bundle);
    m_bundles->append(bundle);
}

void getFileList::dropFurtherLinks() {
    std::vector<quint32> byIdentity(size_t(m_listing->size()));
    std::iota(byIdentity.begin(), byIdentity.end(), 0u);
    const auto identityOf = [&](quint32 i) {
        const FileListing::File& file = m_listing->file(i);
        return std::tuple(file.device, file.inode, i);
    };
    std::sort(byIdentity.begin(), byIdentity.end(), [&](quint32 x, quint32 y) { return identityOf(x) < identityOf(y); });
    std::vector<bool> further(byIdentity.size(), false);
    for (size_t k = 1; k < byIdentity.size(); ++k) {
        const FileListing::File& previous = m_listing->file(byIdentity[k - 1]);
        const FileListing::File& file = m_listing->file(byIdentity[k]);
        if (file.device == previous.device && file.inode == previous.inode) further[byIdentity[k]] = true;
    }
    m_listing->filter([&](qsizetype i) { return !further[size_t(i)]; });
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
bool getFileList::listFolder(int& fd, const struct stat& folderStat, const Folder& folder, bool topLevel, int depth) {
    const int listingFd = dup(fd);
    DIR* dir = listingFd >= 0 ? fdopendir(listingFd) : nullptr;
    if (!dir) {
        if (listingFd >= 0) close(listingFd);
        return false;
    }
    m_CurrentPath.set(folder.path);
    const quint32 folderIndex = m_listing->addFolder(folder.nativePath, folderStat);
    struct Child {
        QByteArray name;
        struct stat st;
    };
    std::vector<Child> children;
    while (const dirent* entry = readdir(dir))
        if (!isDotOrDotDot(entry->d_name)) children.push_back({QByteArray(entry->d_name), {}});
    closedir(dir);
    // The entries of a large folder are looked at on several threads.
    const qsizetype chunks = (qsizetype(children.size()) + kStatChunk - 1) / kStatChunk;
    FingerprintPool::forEach(chunks, [&](qsizetype chunk) {
        const size_t end = std::min(children.size(), size_t((chunk + 1) * kStatChunk));
        for (size_t i = size_t(chunk * kStatChunk); i < end; ++i)
            if (fstatat(fd, children[i].name.constData(), &children[i].st, AT_SYMLINK_NOFOLLOW) != 0)
                children[i].st.st_mode = 0;
    }, m_statThreads);
    // Links lead elsewhere; FIFOs, sockets and devices are no files to compare.
    std::erase_if(children, [](const Child& child) { return !S_ISDIR(child.st.st_mode) && !S_ISREG(child.st.st_mode); });

    // Files and the contents of subfolders are listed in the folder's order.
    for (const Child& child : children) {
        if (stopped()) return false;
        if (!S_ISDIR(child.st.st_mode)) {
            takeEntry(folder, folderIndex, child.name.constData(), child.st);
            continue;
        }
        const QString name = pathFromNative(child.name);
        const QString childPath = PathNames::appendComponent(folder.path, name);
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
        QByteArray childNative = folder.nativePath;
        if (!childNative.endsWith('/')) childNative.append('/');
        childNative.append(child.name);
        const Folder below{childPath, childNative, folder.hidden || name.startsWith('.'),
                           folder.bundle.isEmpty() && isBundleName(name) ? childPath : folder.bundle};
        const bool listed = listFolder(childFd, child.st, below, false, depth + 1);
        if (letGo && childFd >= 0) fd = openParentAgain(childFd, folderStat);
        if (childFd >= 0) close(childFd);
        if (listed) {
            if (!topLevel) takeEntry(folder, folderIndex, child.name.constData(), child.st);
        } else if (stopped()) {
            return false;
        } else {
            reportUnreadable(childPath);
        }
        if (fd < 0) {
            // Moved while a subfolder was listed: the rest of it cannot be reached safely.
            reportUnreadable(folder.path);
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

}  // namespace velmora
