#include "support/TestFiles.h"

#include <cerrno>
#include <climits>
#include <random>
#include <stdexcept>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {

// Opens the folder that holds the last component of `path` (for the *at calls) and gives
// that component in `name`. A folder path longer than PATH_MAX is opened one component
// at a time, each relative to the last. -1 on failure.
int openParent(const std::string& path, std::string& name)
{
    const std::size_t slash = path.rfind('/');
    name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty())
        name = ".";
    const std::string folder = slash == std::string::npos ? "./" : path.substr(0, slash + 1);
    if (folder.size() < PATH_MAX)
        return open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    int fd = open(folder[0] == '/' ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (std::size_t start = 0, end; fd >= 0 && (end = folder.find('/', start)) != std::string::npos; start = end + 1) {
        if (end == start)
            continue;
        const int next = openat(fd, folder.substr(start, end - start).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        close(fd);
        fd = next;
    }
    return fd;
}

std::vector<std::string> namesIn(int folderFd)
{
    std::vector<std::string> names;
    DIR* dir = fdopendir(dup(folderFd));
    if (!dir)
        return names;
    while (const dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    closedir(dir);
    return names;
}

// Removes everything below the open folder, relative to descriptors and following no
// link; folders a test made read-only are made writable first.
void removeContents(int folderFd)
{
    for (const std::string& name : namesIn(folderFd)) {
        struct stat status;
        if (fstatat(folderFd, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode)) {
            fchmodat(folderFd, name.c_str(), 0755, 0);
            const int sub = openat(folderFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (sub >= 0) {
                removeContents(sub);
                close(sub);
            }
            unlinkat(folderFd, name.c_str(), AT_REMOVEDIR);
        } else {
            unlinkat(folderFd, name.c_str(), 0);
        }
    }
}

} // namespace

TempDir::TempDir()
{
    char pattern[] = "/tmp/velmora-test-XXXXXX";
    if (!mkdtemp(pattern))
        throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
    chmod(path_.c_str(), 0755); // unprivileged runs must reach their files
}

TempDir::~TempDir()
{
    chmod(path_.c_str(), 0755);
    const int fd = open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd >= 0) {
        removeContents(fd);
        close(fd);
    }
    rmdir(path_.c_str());
}

void writeFile(const std::string& path, const std::string& content)
{
    std::string name;
    const int folder = openParent(path, name);
    const int fd = folder < 0 ? -1 : openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    std::size_t written = 0;
    while (fd >= 0 && written < content.size()) {
        const ssize_t n = write(fd, content.data() + written, content.size() - written);
        if (n <= 0)
            break;
        written += static_cast<std::size_t>(n);
    }
    if (fd >= 0)
        close(fd);
    if (folder >= 0)
        close(folder);
    if (fd < 0 || written != content.size())
        throw std::runtime_error("cannot write " + path);
}

std::string readFile(const std::string& path)
{
    std::string name;
    const int folder = openParent(path, name);
    const int fd = folder < 0 ? -1 : openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC);
    std::string content;
    char buffer[65536];
    ssize_t n;
    while (fd >= 0 && (n = read(fd, buffer, sizeof buffer)) > 0)
        content.append(buffer, static_cast<std::size_t>(n));
    if (fd >= 0)
        close(fd);
    if (folder >= 0)
        close(folder);
    return content;
}

bool exists(const std::string& path)
{
    std::string name;
    const int folder = openParent(path, name);
    struct stat status;
    const bool found = folder >= 0 && fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (folder >= 0)
        close(folder);
    return found;
}

std::string makeDeepFolders(const std::string& root, int levels, const std::string& name)
{
    int fd = open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    std::string path = root;
    for (int level = 0; level < levels && fd >= 0; ++level) {
        if (mkdirat(fd, name.c_str(), 0755) != 0 && errno != EEXIST) {
            close(fd);
            fd = -1;
            break;
        }
        const int next = openat(fd, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        close(fd);
        fd = next;
        path += "/" + name;
    }
    if (fd < 0)
        throw std::runtime_error("cannot make " + path);
    close(fd);
    return path;
}

std::string randomBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t got = getrandom(bytes.data() + filled, count - filled, 0);
        if (got <= 0)
            throw std::runtime_error("getrandom failed");
        filled += static_cast<std::size_t>(got);
    }
    return bytes;
}

std::string uniqueMarker()
{
    static const char hex[] = "0123456789abcdef";
    std::string marker = "VELMORA-RESIDUE-";
    for (unsigned char byte : randomBytes(24)) {
        marker += hex[byte >> 4];
        marker += hex[byte & 15];
    }
    return marker;
}

} // namespace velmora::test
