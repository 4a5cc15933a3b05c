#include "engine/erase/EraseList.h"

#include "engine/erase/TreeRemoval.h"
#include "engine/platform/NativePath.h"
#include "srm/NoFollowPath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::EraseList {
namespace {

// The entries below the open folder, each folder entered through its descriptor, so
// the depth of the tree is no limit; links are counted, not followed, and a folder on
// another mount counts as one, as the tool leaves it.
int entriesBelow(int folderFd) {
    int error = 0;
    int count = 0;
    for (const std::string& name : folderEntries(folderFd, error)) {
        ++count;
        struct stat status;
        if (fstatat(folderFd, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(status.st_mode)) continue;
        const int fd = openat(folderFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0) continue;
        if (onSameMount(folderFd, fd)) count += entriesBelow(fd);
        close(fd);
    }
    return count;
}

}  // namespace

FileObjList build(const FileObjList& records) {
    FileObjList list;
    for (FileObj record : records) {
        if (!record.isSelect) continue;
        const QByteArray path = TreeRemoval::withResolvedFolder(nativePath(record.url));
        record.url = pathFromNative(path);
        if (const std::optional<TreeRemoval::Identity> identity = TreeRemoval::identityOf(path)) {
            record.device = quint64(identity->device);
            record.inode = quint64(identity->inode);
        }
        list.append(record);
    }
    return list;
}

int itemCount(const FileObj& record) {
    QByteArray name;
    const int parentFd = openContainingFolder(nativePath(record.url), name);
    if (parentFd < 0) return 1;
    const int fd = openat(parentFd, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    close(parentFd);
    if (fd < 0) return 1;
    const int count = 1 + entriesBelow(fd);
    close(fd);
    return count;
}

}  // namespace velmora::EraseList
