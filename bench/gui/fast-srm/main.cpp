// A fast stand-in for srm, for the responsiveness benchmark: it speaks the tool's
// protocol (the options, "-0", "--files0-from=-", a "removed PATH" line per item with
// -v, "srm: PATH: reason" on failure, exit 0 only when every path is gone) and really
// removes what it is given, folders depth first, without following links, but it does
// not overwrite anything, so that the disk does not set the pace of the page.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

char lineEnd = '\n';
bool verbose = false;

// As the tool does: a line goes out only when the pipe has room, so a slow reader
// never holds up the removal.
void say(int fd, std::string line) {
    line += lineEnd;
    pollfd ready{fd, POLLOUT, 0};
    if (poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return;
    for (std::size_t written = 0; written < line.size();) {
        const ssize_t count = write(fd, line.data() + written, line.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        written += std::size_t(count);
    }
}

bool problem(const std::string& path, const char* reason) {
    say(STDERR_FILENO, "srm: " + path + ": " + reason);
    return false;
}

bool removeEntry(int folderFd, const std::string& name, const std::string& path);

bool removeContents(int fd, const std::string& path) {
    DIR* folder = fdopendir(fd);
    if (!folder) {
        close(fd);
        return problem(path, std::strerror(errno));
    }
    std::vector<std::string> names;
    while (const dirent* entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    bool removed = true;
    for (const std::string& name : names) removed = removeEntry(dirfd(folder), name, path + "/" + name) && removed;
    closedir(folder);
    return removed;
}

bool removeEntry(int folderFd, const std::string& name, const std::string& path) {
    struct stat seen;
    if (fstatat(folderFd, name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0) return problem(path, std::strerror(errno));
    if (S_ISDIR(seen.st_mode)) {
        const int fd = openat(folderFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0 || !removeContents(fd, path)) return fd < 0 ? problem(path, std::strerror(errno)) : false;
    }
    if (unlinkat(folderFd, name.c_str(), S_ISDIR(seen.st_mode) ? AT_REMOVEDIR : 0) != 0)
        return problem(path, std::strerror(errno));
    const char* link = S_ISLNK(seen.st_mode) ? " (symbolic link; its target is untouched)" : "";
    if (verbose) say(STDOUT_FILENO, "removed " + path + link);
    return true;
}

bool removePath(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash + 1 == path.size()) return problem(path, "needs an absolute path");
    const std::string folder = slash == 0 ? "/" : path.substr(0, slash);
    const int folderFd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd < 0) return problem(path, std::strerror(errno));
    const bool removed = removeEntry(folderFd, path.substr(slash + 1), path);
    close(folderFd);
    return removed;
}

}  // namespace

int main(int argc, char** argv) {
    bool fromInput = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--files0-from=-") fromInput = true;
        else if (argument.size() > 1 && argument[0] == '-' && argument[1] != '-') {
            if (argument.find('v') != std::string::npos) verbose = true;
            if (argument.find('0') != std::string::npos) lineEnd = '\0';
        } else {
            std::fprintf(stderr, "srm: this stand-in takes its paths only with --files0-from=-\n");
            return 2;
        }
    }
    if (!fromInput) return 2;
    std::string input;
    char chunk[65536];
    for (ssize_t count; (count = read(STDIN_FILENO, chunk, sizeof chunk)) != 0;) {
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return 2;
        input.append(chunk, std::size_t(count));
    }
    bool allRemoved = true;
    std::size_t start = 0;
    for (std::size_t end; (end = input.find('\0', start)) != std::string::npos; start = end + 1)
        allRemoved = removePath(input.substr(start, end - start)) && allRemoved;
    return allRemoved ? 0 : 1;
}
