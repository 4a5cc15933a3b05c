#include "engine/duplicate/DuplicateRemover.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PathNames.h"
#include "engine/erase/KxAuthorization.h"
#include "engine/erase/TreeRemoval.h"
#include "engine/platform/NativePath.h"
#include "srm/NoFollowPath.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace velmora {

namespace {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : m_fd(fd) {}
    Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~Descriptor() {
        if (m_fd >= 0) close(m_fd);
    }
    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }

private:
    int m_fd = -1;
};

int openRetrying(int folder, const char* name, int flags) {
    int fd;
    do fd = openat(folder, name, flags | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    return fd;
}

// A copy opened for comparison: the folder that holds it, checked to be the
// folder the search listed it in, and the copy itself, opened by name
// relative to that folder without following a link and checked to be
// unchanged since the search.
struct OpenedCopy {
    Descriptor folder;
    Descriptor item;
    QByteArray name;

    bool open(const DuplicateRemover::Copy& copy, bool isFolder) {
        // The folder may be reached through the link the user chose to
        // search; what counts is that it is the very folder listed. Paths of
        // any length are opened folder by folder.
        folder = Descriptor(openContainingFolder(nativePath(copy.path), name));
        struct stat st;
        if (!folder.valid() || fstat(folder.get(), &st) != 0 || !copy.identity.isFolderOf(st)) return false;
        item = Descriptor(openRetrying(folder.get(), name.constData(),
                                       O_RDONLY | O_NOFOLLOW | O_NONBLOCK | (isFolder ? O_DIRECTORY : 0)));
        if (!item.valid() || fstat(item.get(), &st) != 0) return false;
        return (isFolder ? S_ISDIR(st.st_mode) : S_ISREG(st.st_mode)) && copy.identity.isUnchanged(st);
    }

    // Still unchanged, and its name still leads to it.
    bool stillUnchanged(const DuplicateRemover::Copy& copy) const {
        struct stat held, named;
        return fstat(item.get(), &held) == 0 && copy.identity.isUnchanged(held) &&
               fstatat(folder.get(), name.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
               copy.identity.isUnchanged(named);
    }
};

ssize_t readAt(int fd, char* buffer, size_t size, off_t offset) {
    ssize_t n;
    do n = pread(fd, buffer, size, offset);
    while (n < 0 && errno == EINTR);
    return n;
}

// Both descriptors hold `size` bytes, equal byte for byte, and no more.
bool sameBytes(int first, int second, quint64 size) {
    constexpr size_t kChunk = 128 * 1024;
    std::unique_ptr<char[]> a(new char[kChunk]), b(new char[kChunk]);
    quint64 offset = 0;
    for (;;) {
        const ssize_t gotA = readAt(first, a.get(), kChunk, off_t(offset));
        const ssize_t gotB = readAt(second, b.get(), kChunk, off_t(offset));
        if (gotA < 0 || gotB < 0 || gotA != gotB) return false;
        if (gotA == 0) return offset == size;
        if (std::memcmp(a.get(), b.get(), size_t(gotA)) != 0) return false;
        offset += quint64(gotA);
    }
}

// ---- Bundles ----------------------------------------------------------------

// One entry below a bundle folder, as a path relative to it.
struct BundleEntry {
    QByteArray relative;
    bool isLink = false;
    quint64 size = 0;
    QByteArray linkTarget;
};

// Lists everything below the folder without following a link; false when
// a folder cannot be read or lies on another file system.
bool listBundle(int folderFd, dev_t device, const QByteArray& prefix, std::vector<BundleEntry>& out) {
    int error = 0;
    const std::vector<std::string> names = folderEntries(folderFd, error);
    if (error != 0) return false;
    std::vector<QByteArray> folders;
    bool ok = true;
    for (const std::string& entry : names) {
        const QByteArray name = QByteArray::fromStdString(entry);
        struct stat st;
        if (fstatat(folderFd, name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0 || st.st_dev != device) {
            ok = false;
            continue;
        }
        if (S_ISDIR(st.st_mode)) {
            folders.push_back(name);
        } else if (S_ISLNK(st.st_mode)) {
            QByteArray target(int(st.st_size) + 1, '\0');
            const ssize_t n = readlinkat(folderFd, name.constData(), target.data(), size_t(target.size()));
            target.truncate(n < 0 ? 0 : int(n));
            out.push_back({prefix + name, true, quint64(st.st_size), target});
        } else if (S_ISREG(st.st_mode)) {
            out.push_back({prefix + name, false, quint64(st.st_size), {}});
        } else {
            ok = false;  // a FIFO, socket or device is no part of an application to compare
        }
    }
    for (const QByteArray& name : folders) {
        const Descriptor sub(openRetrying(folderFd, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
        ok = ok && sub.valid() && listBundle(sub.get(), device, prefix + name + '/', out);
    }
    return ok;
}

// Opens a file below the folder, following no link on the way.
Descriptor openBelow(int folderFd, const QByteArray& relative) {
    const QList<QByteArray> parts = relative.split('/');
    Descriptor current(dup(folderFd));
    for (qsizetype i = 0; i < parts.size() && current.valid(); ++i) {
        const bool last = i + 1 == parts.size();
        current = Descriptor(openRetrying(current.get(), parts[i].constData(),
                                          O_RDONLY | O_NOFOLLOW | (last ? O_NONBLOCK : O_DIRECTORY)));
    }
    return current;
}

// The two bundles hold files that pair up one to one with equal bytes
// (names and places do not count, as in the search) and links that pair up
// by their targets.
bool sameBundleContent(int copyFd, int keptFd) {
    struct stat copyStat, keptStat;
    if (fstat(copyFd, &copyStat) != 0 || fstat(keptFd, &keptStat) != 0) return false;
    std::vector<BundleEntry> copy, kept;
    if (!listBundle(copyFd, copyStat.st_dev, {}, copy) || !listBundle(keptFd, keptStat.st_dev, {}, kept)) return false;
    if (copy.size() != kept.size()) return false;
    std::vector<bool> paired(kept.size(), false);
    for (const BundleEntry& entry : copy) {
        const Descriptor copyFile = entry.isLink ? Descriptor() : openBelow(copyFd, entry.relative);
        if (!entry.isLink && !copyFile.valid()) return false;
        bool found = false;
        for (size_t k = 0; k < kept.size() && !found; ++k) {
            const BundleEntry& other = kept[k];
            if (paired[k] || other.isLink != entry.isLink || other.size != entry.size) continue;
            if (entry.isLink) {
                found = other.linkTarget == entry.linkTarget;
            } else {
                const Descriptor keptFile = openBelow(keptFd, other.relative);
                found = keptFile.valid() && sameBytes(copyFile.get(), keptFile.get(), entry.size);
            }
            if (found) paired[k] = true;
        }
        if (!found) return false;
    }
    return true;
}

// Where the open folder is now, free of links (the kernel's own record).
QString currentPathOf(int folderFd) {
#if defined(__APPLE__)
    char path[PATH_MAX];
    if (fcntl(folderFd, F_GETPATH, path) == 0) return pathFromNative(path);
    return {};
#else
    QByteArray path(2 * PATH_MAX, Qt::Uninitialized);
    const ssize_t n = readlink(QByteArray("/proc/self/fd/" + QByteArray::number(folderFd)).constData(), path.data(),
                               size_t(path.size()));
    if (n <= 0 || n >= path.size()) return {};
    path.truncate(n);
    return pathFromNative(path);
#endif
}

DuplicateRemover::Verdict verdict(DuplicateRemover::Outcome outcome, const QString& reason) {
    return {outcome, reason};
}

// Removes the checked file by its name in the checked folder. Where the folder is
// not ours to change, the privileged removal is asked for the folder's own path,
// free of links, and the copy counts as removed only when its name is gone.
DuplicateRemover::Verdict unlinkFile(const OpenedCopy& opened) {
    if (unlinkat(opened.folder.get(), opened.name.constData(), 0) == 0) return verdict(DuplicateRemover::Outcome::Removed, {});
    const int error = errno;
    const DuplicateRemover::Verdict failed{DuplicateRemover::Outcome::Failed, QString::fromLocal8Bit(strerror(error))};
    if (error != EACCES && error != EPERM) return failed;
    const QString folderPath = currentPathOf(opened.folder.get());
    if (folderPath.isEmpty()) return failed;
    KxAuthorization::removeItemAtPath(PathNames::appendComponent(folderPath, pathFromNative(opened.name)));
    struct stat st;
    if (fstatat(opened.folder.get(), opened.name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT)
        return verdict(DuplicateRemover::Outcome::Removed, {});
    return failed;
}

// Empties the checked bundle folder with a walk that follows no link, then removes it.
DuplicateRemover::Verdict unlinkBundle(const OpenedCopy& opened, const QString& path) {
    if (const QByteArray left = TreeRemoval::removeContents(opened.item.get(), nativePath(path)); !left.isEmpty())
        return verdict(DuplicateRemover::Outcome::Failed, QString("partly removed: %1").arg(displayPath(pathFromNative(left))));
    if (unlinkat(opened.folder.get(), opened.name.constData(), AT_REMOVEDIR) != 0)
        return verdict(DuplicateRemover::Outcome::Failed, QString::fromLocal8Bit(strerror(errno)));
    return verdict(DuplicateRemover::Outcome::Removed, {});
}

}  // namespace

QList<DuplicateRemover::Removal> DuplicateRemover::plan(const DuplicateResults& results,
                                                        const QList<DuplicateResults::Copy>& selected) {
    QList<Removal> removals;
    removals.reserve(selected.size());
    for (DuplicateResults::Copy copy : selected) {
        const DuplicateResults::Group group = results.groupOf(copy);
        Removal removal;
        removal.copy = {results.path(copy), results.identity(copy)};
        removal.isBundle = results.isBundleGroup(group);
        QList<Copy> selectedOthers;
        if (!results.isDropped(group) && !results.isRemoved(copy)) {
            for (DuplicateResults::Copy sibling : results.copies(group)) {
                if (sibling == copy) continue;
                const Copy other{results.path(sibling), results.identity(sibling)};
                if (results.isSelected(sibling)) selectedOthers.append(other);
                else removal.others.append(other);
            }
        }
        removal.others.append(selectedOthers);
        removals.append(removal);
    }
    return removals;
}

DuplicateRemover::Verdict DuplicateRemover::remove(const Removal& removal) {
    const Verdict result = removeChecked(removal);
    if (result.removed()) m_removed.insert(Inode(removal.copy.identity.device, removal.copy.identity.inode));
    else qCInfo(lcDuplicate, "left %s: %s", qUtf8Printable(removal.copy.path), qUtf8Printable(result.reason));
    return result;
}

DuplicateRemover::Verdict DuplicateRemover::removeChecked(const Removal& removal) {
    const Copy& copy = removal.copy;
    OpenedCopy opened;
    if (!opened.open(copy, removal.isBundle)) return verdict(Outcome::CopyChanged, "it changed or moved after the search");
    bool anyOther = false;
    for (const Copy& other : removal.others) {
        if (other.identity.isSameFile(copy.identity) ||
            m_removed.contains(Inode(other.identity.device, other.identity.inode)))
            continue;
        anyOther = true;
        OpenedCopy kept;
        if (!kept.open(other, removal.isBundle)) continue;
        const bool equal =
            removal.isBundle
                ? sameBundleContent(opened.item.get(), kept.item.get()) && opened.stillUnchanged(copy)
                : sameBytes(opened.item.get(), kept.item.get(), copy.identity.size) && opened.stillUnchanged(copy) &&
                      kept.stillUnchanged(other);
        if (!equal) return verdict(Outcome::CopyChanged, QString("it no longer equals %1").arg(displayPath(other.path)));
        return removal.isBundle ? unlinkBundle(opened, copy.path) : unlinkFile(opened);
    }
    if (anyOther) return verdict(Outcome::KeptCopyChanged, "no other copy of it is left unchanged");
    return verdict(Outcome::LastCopy, "it is the last copy left");
}

}  // namespace velmora
