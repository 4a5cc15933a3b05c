#include "engine/copy/NodeTreeOperator.h"

#include "engine/copy/FileNode.h"
#include "engine/copy/UniqueFd.h"
#include "engine/platform/NativePath.h"
#include "srm/NoFollowPath.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace velmora {

quint64 NodeTreeOperator::getOneFileSizeWithPath(const QString& path) const {
    QByteArray name;
    const UniqueFd folder(openContainingFolder(nativePath(path), name));
    struct stat status {};
    if (!folder.valid() || fstatat(folder.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) return 0;
    return quint64(status.st_size);
}

bool NodeTreeOperator::getFileSizeWithPat(const QString& path, quint64& totalSize) const {
    QByteArray name;
    const UniqueFd folder(openContainingFolder(nativePath(path), name));
    struct stat status {};
    if (!folder.valid() || fstatat(folder.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) return true;
    if (S_ISREG(status.st_mode)) totalSize += quint64(status.st_size);
    if (!S_ISDIR(status.st_mode)) return true;
    const UniqueFd inner(openat(folder.get(), name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!inner.valid()) return true;
    return sizeBelow(inner.get(), m_stopped, totalSize);
}

bool NodeTreeOperator::sizeBelow(int folderFd, const std::atomic<bool>& stopped, quint64& totalSize) {
    int error = 0;
    for (const std::string& entry : folderEntries(folderFd, error)) {
        if (stopped.load(std::memory_order_relaxed)) return false;
        struct stat status {};
        if (fstatat(folderFd, entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (S_ISREG(status.st_mode)) {
            totalSize += quint64(status.st_size);
        } else if (S_ISDIR(status.st_mode)) {
            const UniqueFd inner(openat(folderFd, entry.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (!inner.valid() || !onSameMount(folderFd, inner.get())) continue;
            if (!sizeBelow(inner.get(), stopped, totalSize)) return false;
        }
    }
    return true;
}

void NodeTreeOperator::measure(FileNode& node) const {
    quint64 total = 0;
    bool complete = true;
    if (node.isDirectory)
        complete = getFileSizeWithPat(node.path, total);
    else
        total = getOneFileSizeWithPath(node.path);
    node.size = total;
    node.sizeKnown = complete;
}

}  // namespace velmora
