#include "diskutil/Program.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sstream>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace velmora::diskutil {

namespace {

bool isExecutable(const std::string& path) {
    return access(path.c_str(), X_OK) == 0;
}

std::string readAll(int fd) {
    std::string text;
    char buffer[4096];
    off_t offset = 0;
    for (;;) {
        const ssize_t count = pread(fd, buffer, sizeof buffer, offset);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        text.append(buffer, static_cast<size_t>(count));
        offset += count;
    }
    return text;
}

}  // namespace

std::string findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) return isExecutable(name) ? name : std::string();
    const char* path = std::getenv("PATH");
    std::string folders = path ? path : "";
    folders += ":/usr/local/sbin:/usr/sbin:/sbin:/usr/local/bin:/usr/bin:/bin";
    std::istringstream stream(folders);
    std::string folder;
    while (std::getline(stream, folder, ':')) {
        if (folder.empty()) continue;
        const std::string candidate = folder + "/" + name;
        if (isExecutable(candidate)) return candidate;
    }
    return {};
}

ProgramResult runProgram(const std::vector<std::string>& args) {
    const std::string path = args.empty() ? std::string() : findProgram(args[0]);
    if (path.empty()) return {127, (args.empty() ? std::string("(none)") : args[0]) + ": not found"};

    const int outputFd = memfd_create("velmora-diskutil-output", MFD_CLOEXEC);
    if (outputFd < 0) return {127, "cannot create an output buffer"};

    std::vector<char*> argv;
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outputFd, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, outputFd, STDERR_FILENO);
    pid_t pid = 0;
    const int spawnError = posix_spawn(&pid, path.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawnError != 0) {
        close(outputFd);
        return {127, args[0] + ": cannot be started"};
    }

    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    ProgramResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.output = readAll(outputFd);
    close(outputFd);
    return result;
}

}  // namespace velmora::diskutil
