#include "engine/uninstall/FolderEntries.h"

#include "engine/platform/NativePath.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

FolderFd::~FolderFd() {
    if (m_fd >= 0) ::close(m_fd);
}

int openFolder(const QString& path) {
    return openLongPath(nativePath(path), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

int openFolderAt(int parentFd, const QString& name) {
    return ::openat(parentFd, nativePath(name).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

QList<FolderEntry> readFolderEntries(int folderFd) {
    QList<FolderEntry> entries;
    // fdopendir takes the descriptor it is given, so it reads a duplicate.
    const int listingFd = ::dup(folderFd);
    DIR* folder = listingFd >= 0 ? ::fdopendir(listingFd) : nullptr;
    if (!folder) {
        if (listingFd >= 0) ::close(listingFd);
        return entries;
    }
    ::rewinddir(folder);
    while (const dirent* entry = ::readdir(folder)) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
        FolderEntry item;
        item.name = pathFromNative(entry->d_name);
        struct stat info;
        if (::fstatat(folderFd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0) {
            if (S_ISDIR(info.st_mode)) item.type = FolderEntry::Folder;
            else if (S_ISREG(info.st_mode)) item.type = FolderEntry::File, item.size = info.st_size;
            else if (S_ISLNK(info.st_mode)) item.type = FolderEntry::Link;
        }
        entries.append(item);
    }
    ::closedir(folder);
    return entries;
}

QList<FolderEntry> folderEntries(const QString& path) {
    const FolderFd folder(openFolder(path));
    return folder.valid() ? readFolderEntries(folder.get()) : QList<FolderEntry>{};
}

}  // namespace velmora
