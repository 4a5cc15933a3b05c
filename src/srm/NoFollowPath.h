#pragma once

#include <string>
#include <vector>

namespace velmora {

// Opens the folder at `path` for reading without following a symbolic link in any of
// its components (openat2 with RESOLVE_NO_SYMLINKS where the kernel has it, else one
// component at a time with O_NOFOLLOW, also for paths longer than PATH_MAX). A link on
// the way fails with ELOOP or ENOTDIR.
// Returns -1 with errno set on failure.
int openFolderNoFollow(const std::string& path);

// Whether the open item `fd` lies on the same mount as the open folder `folderFd`. A
// bind mount of the same file system counts as another mount where the kernel tells
// mounts apart (Linux); elsewhere the device numbers decide.
bool onSameMount(int folderFd, int fd);

// What a walk says of an entry on another mount inside the folder it walks.
inline constexpr char kOnAnotherMount[] = "lies on another file system (a mount inside the folder); left alone";

// The names in the open folder, "." and ".." left out, listed from its start even when
// the descriptor was read before. `error` is 0, or the errno of a failed listing.
std::vector<std::string> folderEntries(int folderFd, int& error);

} // namespace velmora
