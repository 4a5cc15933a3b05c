#include "diskutil/Program.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace velmora::diskutil {

namespace {

// The only folders programs are taken from: the tool runs as root, so a PATH or a
// folder that someone else can write to must not pick what it runs.
const char* const systemFolders[] = {"/usr/sbin", "/sbin", "/usr/bin", "/bin"};
const char* const childPath = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";

// An executable file of root's that no one else may change (followed through links,
// as mkfs.vfat -> mkfs.fat).
bool isTrustedProgram(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == 0
        && (info.st_mode & (S_IWGRP | S_IWOTH)) == 0 && (info.st_mode & S_IXUSR) != 0;
}

// The environment for a child: ours, with PATH pinned to the system folders, so a
// program that starts helpers of its own finds the system's.
std::vector<char*> childEnvironment() {
    std::vector<char*> variables;
    for (char** variable = environ; *variable; ++variable) {
        if (std::strncmp(*variable, "PATH=", 5) != 0) variables.push_back(*variable);
    }
    variables.push_back(const_cast<char*>(childPath));
    variables.push_back(nullptr);
    return variables;
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
    if (name.empty() || name.find('/') != std::string::npos) return {};
    for (const char* folder : systemFolders) {
        const std::string candidate = std::string(folder) + "/" + name;
        if (isTrustedProgram(candidate)) return candidate;
    }
    return {};
}

ProgramResult runProgram(const std::vector<std::string>& args) {
    const std::string path = args.empty() ? std::string() : findProgram(args[0]);
    if (path.empty()) return {127, {}, (args.empty() ? std::string("(none)") : args[0]) + ": not found"};

    const int outputFd = memfd_create("velmora-diskutil-output", MFD_CLOEXEC);
    const int errorFd = memfd_create("velmora-diskutil-errors", MFD_CLOEXEC);
    if (outputFd < 0 || errorFd < 0) {
        if (outputFd >= 0) close(outputFd);
        if (errorFd >= 0) close(errorFd);
        return {127, {}, "cannot create an output buffer"};
    }

    std::vector<char*> argv;
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outputFd, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errorFd, STDERR_FILENO);
    pid_t pid = 0;
    std::vector<char*> environment = childEnvironment();
    const int spawnError = posix_spawn(&pid, path.c_str(), &actions, nullptr, argv.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawnError != 0) {
        close(outputFd);
        close(errorFd);
        return {127, {}, args[0] + ": cannot be started"};
    }

    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    ProgramResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.output = readAll(outputFd);
    result.errors = readAll(errorFd);
    close(outputFd);
    close(errorFd);
    return result;
}

}  // namespace velmora::diskutil
