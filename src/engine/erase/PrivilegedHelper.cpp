#include "engine/erase/PrivilegedHelper.h"

#include "engine/erase/MessageChannel.h"

#include <QList>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::PrivilegedHelper {
namespace {

constexpr qsizetype kMaxOutput = 128;

bool openCloseOnExecPipe(int fds[2]) {
#ifdef Q_OS_MACOS
    if (pipe(fds) != 0) return false;
    fcntl(fds[0], F_SETFD, FD_CLOEXEC);
    fcntl(fds[1], F_SETFD, FD_CLOEXEC);
    return true;
#else
    return pipe2(fds, O_CLOEXEC) == 0;
#endif
}

// Runs the tool with its standard output and error on one pipe; returns the
// first kMaxOutput bytes of what it printed. The rest is drained so the tool
// never blocks on a full pipe.
QByteArray runCollectingOutput(const char* tool, char* const arguments[]) {
    int pipeFds[2];
    if (!openCloseOnExecPipe(pipeFds)) return "cannot create a pipe";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDERR_FILENO);
    // A fixed environment: the helper runs as root and must not take one from the caller.
    char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    char locale[] = "LC_ALL=C";
    char* environment[] = {path, locale, nullptr};
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, tool, &actions, nullptr, arguments, environment);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    if (spawned != 0) {
        close(pipeFds[0]);
        return QByteArray("cannot run ") + tool;
    }
    QByteArray output;
    char chunk[512];
    for (;;) {
        const ssize_t count = read(pipeFds[0], chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        if (output.size() < kMaxOutput) output.append(chunk, qMin<qsizetype>(count, kMaxOutput - output.size()));
    }
    close(pipeFds[0]);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {}
    return output;
}

}  // namespace

QByteArray refusalFor(const QByteArray& path) {
    if (!path.startsWith('/')) return "refused: not an absolute path";
    if (path.size() >= PATH_MAX) return "refused: path too long";
    bool onlySlashes = true;
    for (const QByteArray& component : path.split('/')) {
        if (component == "." || component == "..") return "refused: the path holds a . or .. component";
        if (!component.isEmpty()) onlySlashes = false;
    }
    if (onlySlashes) return "refused: will not remove /";
    return {};
}

QByteArray removeRecursively(const QByteArray& path) {
    const QByteArray refusal = refusalFor(path);
    if (!refusal.isEmpty()) return refusal;
    QByteArray target = path;
    char tool[] = "/bin/rm";
    char options[] = "-rf";
    char* arguments[] = {tool, options, target.data(), nullptr};
    return runCollectingOutput(tool, arguments);
}

int serve(int inFd, int outFd) {
    MessageChannel channel(inFd, outFd);
    if (!channel.send(kGreeting)) return 1;
    QByteArray request;
    while (channel.receive(&request))
        if (!channel.send(removeRecursively(request))) return 1;
    return 0;
}

}  // namespace velmora::PrivilegedHelper
