#include "srm/NoFollowPath.h"

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__linux__)
#include <linux/openat2.h>
#include <sys/syscall.h>
#endif

namespace velmora {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

int openComponentByComponent(const std::string& path)
{
    int fd = open(!path.empty() && path[0] == '/' ? "/" : ".", kFolderFlags);
    std::size_t start = 0;
    while (fd >= 0 && start < path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string::npos)
            end = path.size();
        const std::string component = path.substr(start, end - start);
        start = end + 1;
        if (component.empty() || component == ".")
            continue;
        const int next = openat(fd, component.c_str(), kFolderFlags | O_NOFOLLOW);
        const int error = errno;
        close(fd);
        errno = error;
        fd = next;
    }
    return fd;
}

} // namespace

int openFolderNoFollow(const std::string& path)
{
#if defined(__linux__) && defined(SYS_openat2)
    open_how how{};
    how.flags = kFolderFlags;
    how.resolve = RESOLVE_NO_SYMLINKS;
    const long fd = syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how);
    // Older kernels lack the call, and some sandboxes refuse it; a path longer than the
    // system's limit is opened one component at a time.
    if (fd >= 0 || (errno != ENOSYS && errno != EPERM && errno != ENAMETOOLONG))
        return static_cast<int>(fd);
#endif
    return openComponentByComponent(path);
}

bool onSameMount(int folderFd, int fd)
{
#if defined(__linux__) && defined(STATX_MNT_ID)
    struct statx folder;
    struct statx item;
    if (statx(folderFd, "", AT_EMPTY_PATH, STATX_MNT_ID, &folder) == 0 &&
        statx(fd, "", AT_EMPTY_PATH, STATX_MNT_ID, &item) == 0 && (folder.stx_mask & STATX_MNT_ID) != 0 &&
        (item.stx_mask & STATX_MNT_ID) != 0)
        return folder.stx_mnt_id == item.stx_mnt_id;
#endif
    struct stat folderStatus;
    struct stat itemStatus;
    return fstat(folderFd, &folderStatus) == 0 && fstat(fd, &itemStatus) == 0 &&
           folderStatus.st_dev == itemStatus.st_dev;
}

std::vector<std::string> folderEntries(int folderFd, int& error)
{
    std::vector<std::string> names;
    const int listingFd = dup(folderFd);
    DIR* listing = listingFd >= 0 ? fdopendir(listingFd) : nullptr;
    if (!listing) {
        error = errno;
        if (listingFd >= 0)
            close(listingFd);
        return names;
    }
    rewinddir(listing); // the copy shares its position with the folder's descriptor
    errno = 0;
    while (const dirent* entry = readdir(listing)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    error = errno;
    closedir(listing);
    return names;
}

} // namespace velmora
