#include "engine/erase/TreeRemoval.h"

#include "engine/platform/PathStatus.h"
#include "srm/NoFollowPath.h"

#include <string>
#include <vector>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::TreeRemoval {
namespace {

QByteArray failure(const QByteArray& path, const char* what, int error = 0) {
    QByteArray text = path + ": " + what;
    if (error != 0) text += QByteArray(": ") + std::strerror(error);
    return text;
}

Identity identityOfStatus(const struct stat& status) { return {status.st_dev, status.st_ino}; }

QByteArray removeEntry(int folderFd, const QByteArray& name, const QByteArray& path, bool insideWalk,
                       const std::optional<Identity>& expected) {
    struct stat seen;
    if (fstatat(folderFd, name.constData(), &seen, AT_SYMLINK_NOFOLLOW) != 0)
        return failure(path, "cannot look at it", errno);
    if (expected && identityOfStatus(seen) != *expected)
        return failure(path, "refused: the item there is not the one asked about");
    if (!S_ISDIR(seen.st_mode)) {
        // A file, a link (the link goes, not its target), or any other kind of entry.
        if (unlinkat(folderFd, name.constData(), 0) != 0) return failure(path, "cannot remove it", errno);
        return {};
    }
    const int fd = openat(folderFd, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return failure(path, "cannot open the folder", errno);
    struct stat opened;
    QByteArray result;
    if (fstat(fd, &opened) != 0 || identityOfStatus(opened) != identityOfStatus(seen))
        result = failure(path, "changed while being removed; left alone");
    else if (insideWalk && !onSameMount(folderFd, fd))
        result = failure(path, kOnAnotherMount);
    else
        result = removeContents(fd, path);
    close(fd);
    if (!result.isEmpty()) return result;
    if (unlinkat(folderFd, name.constData(), AT_REMOVEDIR) != 0) return failure(path, "cannot remove the folder", errno);
    return {};
}

}  // namespace

QByteArray removeContents(int folderFd, const QByteArray& path) {
    int error = 0;
    const std::vector<std::string> names = folderEntries(folderFd, error);
    if (error != 0) return failure(path, "cannot list the folder", error);
    QByteArray firstFailure;
    for (const std::string& entry : names) {
        const QByteArray name = QByteArray::fromStdString(entry);
        const QByteArray result = removeEntry(folderFd, name, path + "/" + name, true, std::nullopt);
        if (firstFailure.isEmpty()) firstFailure = result;
    }
    return firstFailure;
}

std::optional<Identity> identityOf(const QByteArray& path) {
    struct stat status;
    if (statWithoutFollowing(path, &status) != 0) return std::nullopt;
    return identityOfStatus(status);
}

QByteArray withResolvedFolder(const QByteArray& path) {
    const qsizetype slash = path.lastIndexOf('/');
    if (slash < 0 || slash == path.size() - 1) return path;
    const QByteArray folder = slash == 0 ? QByteArray("/") : path.left(slash);
    char resolved[PATH_MAX];
    if (!realpath(folder.constData(), resolved)) return path;
    const QByteArray resolvedFolder(resolved);
    return (resolvedFolder == "/" ? QByteArray() : resolvedFolder) + path.mid(slash);
}

QByteArray remove(const QByteArray& path, const std::optional<Identity>& expected) {
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArray folder = slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
    const QByteArray name = path.mid(slash + 1);
    if (name.isEmpty() || name == "." || name == "..") return failure(path, "refused: not the name of an item");
    const int folderFd = openFolderNoFollow(folder.toStdString());
    if (folderFd < 0) {
        const int error = errno;
        return error == ELOOP || error == ENOTDIR
                   ? failure(path, "a folder on the way is a symbolic link or not a folder; not followed")
                   : failure(path, "cannot open its folder", error);
    }
    const QByteArray result = removeEntry(folderFd, name, path, false, expected);
    close(folderFd);
    return result;
}

}  // namespace velmora::TreeRemoval
