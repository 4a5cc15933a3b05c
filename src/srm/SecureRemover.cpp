#include "srm/SecureRemover.h"

#include "srm/DeviceIo.h"
#include "srm/Messages.h"
#include "srm/NoFollowPath.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace velmora {

namespace {

std::string reason(int error)
{
    return std::strerror(error);
}

constexpr int kMaxOverwriteRounds = 3;

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// A name of at least 12 random letters and digits, as long as the old one when that
// is longer, so the new name covers the old one where a folder entry is reused.
std::string randomName(std::size_t oldLength)
{
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::vector<unsigned char> bytes(std::max<std::size_t>(oldLength, 12));
    RandomSource::kernelBytes(bytes.data(), bytes.size());
    std::string name;
    for (unsigned char byte : bytes)
        name += alphabet[byte % (sizeof alphabet - 1)];
    return name;
}

} // namespace

SecureRemover::SecureRemover(const Options& options, int stopAfterPass)
    : options_(options)
    , overwriter_(random_, passesFor(options.mode, options.zeroPass), options.verbose, stopAfterPass)
{
}

bool SecureRemover::remove(const std::string& path)
{
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back(); // "link/" names the link itself here, never its target
    const std::size_t slash = trimmed.rfind('/');
    const std::string name = slash == std::string::npos ? trimmed : trimmed.substr(slash + 1);
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : trimmed.substr(0, slash);
    if (name.empty() || name == "." || name == "..") {
        printProblem(path, "refusing to remove '.', '..' or '/'");
        return false;
    }

    // No component of the way there may be a link: a folder swapped for a link must
    // not carry the erasure somewhere else.
    const int folderFd = openFolderNoFollow(folder);
    if (folderFd < 0) {
        if (errno == ENOENT && options_.force)
            return true;
        printProblem(path, errno == ELOOP || errno == ENOTDIR
                               ? "a folder on the way is a symbolic link or not a folder; not followed"
                               : reason(errno));
        return false;
    }
    const bool removed = removeEntry(folderFd, name, trimmed, false);
    close(folderFd);
    return removed;
}

bool SecureRemover::removeEntry(int dirfd, const std::string& name, const std::string& path, bool insideWalk)
{
    struct stat seen;
    if (fstatat(dirfd, name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT && options_.force)
            return true;
        printProblem(path, reason(errno));
        return false;
    }
    if (S_ISREG(seen.st_mode))
        return removeFile(dirfd, name, path, seen, insideWalk);
    if (S_ISDIR(seen.st_mode))
        return removeFolder(dirfd, name, path, seen, insideWalk);
    if (S_ISCHR(seen.st_mode) || S_ISBLK(seen.st_mode)) {
        printProblem(path, "is a device; not erased");
        return false;
    }
    // A symbolic link, FIFO or socket: nothing of its own to overwrite, and opening it
    // would follow the link or wait for a peer. Only the name goes.
    if (unlinkat(dirfd, name.c_str(), 0) != 0) {
        printProblem(path, "cannot remove: " + reason(errno));
        return false;
    }
    fsync(dirfd);
    progress("removed " + path + (S_ISLNK(seen.st_mode) ? " (symbolic link; its target is untouched)" : ""));
    return true;
}

bool SecureRemover::removeFile(int dirfd, const std::string& name, const std::string& path, const struct stat& seen,
                               bool insideWalk)
{
    if (seen.st_nlink > 1)
        return removeHardLinkedName(dirfd, name, path, seen.st_nlink);

    const int fd = openWritable(dirfd, name, seen);
    if (fd < 0) {
        if (errno == EACCES && !options_.force)
            printProblem(path, "write-protected; not erased (-f makes it writable)");
        else
            printProblem(path, "cannot open for writing: " + reason(errno));
        return false;
    }
    struct stat opened;
    if (fstat(fd, &opened) != 0 || !S_ISREG(opened.st_mode) || !sameFile(opened, seen) || opened.st_nlink > 1) {
        close(fd);
        printProblem(path, "changed while being erased; left alone");
        return false;
    }
    if (insideWalk && !onSameMount(dirfd, fd)) {
        close(fd);
        printProblem(path, kOnAnotherMount);
        return false;
    }
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);

    progress("erasing " + path + " (" + std::to_string(opened.st_size) + " bytes, " +
             std::to_string(overwriter_.passCount()) + " passes)");
    std::string failure = overwriteAll(fd, path);
    if (failure.empty() && ftruncate(fd, 0) != 0)
        failure = "cannot empty: " + reason(errno);
    if (failure.empty() && !syncToDevice(fd))
        failure = "sync: " + reason(errno);
    close(fd);
    if (failure.empty())
        failure = overwriteResourceFork(dirfd, name, path);
    if (!failure.empty()) {
        printProblem(path, failure + "; the file was not removed");
        return false;
    }
    return unlinkRenamed(dirfd, name, path);
}

bool SecureRemover::removeFolder(int dirfd, const std::string& name, const std::string& path,
                                 const struct stat& seen, bool insideWalk)
{
    if (!options_.recursive) {
        printProblem(path, "is a folder; not removed (-r removes folders)");
        return false;
    }
    const int folderFd = openat(dirfd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folderFd < 0) {
        printProblem(path, "cannot open folder: " + reason(errno));
        return false;
    }
    struct stat opened;
    if (fstat(folderFd, &opened) != 0 || !sameFile(opened, seen)) {
        close(folderFd);
        printProblem(path, "changed while being erased; left alone");
        return false;
    }
    if (insideWalk && !onSameMount(dirfd, folderFd)) {
        close(folderFd);
        printProblem(path, kOnAnotherMount);
        return false;
    }
    int listError = 0;
    const std::vector<std::string> entries = folderEntries(folderFd, listError);
    bool allRemoved = listError == 0;
    if (listError != 0)
        printProblem(path, "cannot list folder: " + reason(listError));
    for (const std::string& entry : entries)
        allRemoved = removeEntry(folderFd, entry, path + "/" + entry, true) && allRemoved;
    close(folderFd);

    if (unlinkat(dirfd, name.c_str(), AT_REMOVEDIR) != 0) {
        printProblem(path, "cannot remove folder: " + reason(errno));
        return false;
    }
    fsync(dirfd);
    progress("removed " + path);
    return allRemoved;
}

std::string SecureRemover::overwriteAll(int fd, const std::string& path)
{
    // Data appended while the passes ran would be freed unwritten by the truncation, so
    // a file that grew is overwritten again, up to its new size.
    for (int round = 1;; ++round) {
        const std::string failure = overwriter_.overwrite(fd, path);
        if (!failure.empty())
            return failure;
        struct stat after;
        if (fstat(fd, &after) != 0)
            return reason(errno);
        if (static_cast<std::uint64_t>(after.st_size) <= overwriter_.coveredBytes())
            return {};
        if (round == kMaxOverwriteRounds)
            return "kept growing while being erased";
        progress(path + ": grew while being erased; overwriting again");
    }
}

bool SecureRemover::removeHardLinkedName(int dirfd, const std::string& name, const std::string& path, nlink_t links)
{
    // Overwriting would change the data seen through the other names without removing
    // it, so only this name goes and the caller learns that the data survives.
    if (unlinkat(dirfd, name.c_str(), 0) != 0) {
        printProblem(path, "cannot remove: " + reason(errno));
        return false;
    }
    fsync(dirfd);
    printProblem(path, "has " + std::to_string(links) +
                           " hard links; not overwritten: this name was removed, but the data remains on "
                           "the device under the other names");
    return false;
}

bool SecureRemover::unlinkRenamed(int dirfd, const std::string& name, const std::string& path)
{
    std::string hidden;
    for (int attempt = 0; hidden.empty(); ++attempt) {
        const std::string candidate = randomName(name.size());
        if (renameWithoutReplacing(dirfd, name.c_str(), candidate.c_str()))
            hidden = candidate;
        else if (errno != EEXIST || attempt == 8) {
            printProblem(path, "overwritten and emptied, but the name cannot be removed: " + reason(errno) +
                                   "; an empty file is left behind");
            return false;
        }
    }
    fsync(dirfd);
    if (unlinkat(dirfd, hidden.c_str(), 0) != 0) {
        printProblem(path, "overwritten, emptied and renamed to " + hidden + ", but cannot be unlinked: " +
                               reason(errno));
        return false;
    }
    fsync(dirfd);
    progress("removed " + path);
    return true;
}

int SecureRemover::openWritable(int dirfd, const std::string& name, const struct stat& seen)
{
    const int fd = openForOverwrite(dirfd, name.c_str());
    if (fd >= 0 || errno != EACCES || !options_.force)
        return fd;
    if (fchmodat(dirfd, name.c_str(), (seen.st_mode & 07777) | S_IWUSR, AT_SYMLINK_NOFOLLOW) != 0) {
        errno = EACCES;
        return -1;
    }
    return openForOverwrite(dirfd, name.c_str());
}

std::string SecureRemover::overwriteResourceFork(int dirfd, const std::string& name, const std::string& path)
{
#if defined(__APPLE__)
    // The resource fork is a second stream of the same file, reached through this name.
    const std::string fork = name + "/..namedfork/rsrc";
    const int fd = openat(dirfd, fork.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return {};
    std::string failure = overwriter_.overwrite(fd, path + " (resource fork)");
    if (failure.empty() && ftruncate(fd, 0) != 0)
        failure = reason(errno);
    close(fd);
    return failure.empty() ? failure : "resource fork: " + failure;
#else
    (void)dirfd;
    (void)name;
    (void)path;
    return {};
#endif
}

void SecureRemover::progress(const std::string& line) const
{
    if (options_.verbose)
        printProgress(line);
}

} // namespace velmora
