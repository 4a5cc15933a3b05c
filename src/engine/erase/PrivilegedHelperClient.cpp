#include "engine/erase/PrivilegedHelperClient.h"

// Linux only: on macOS, Authorization Services hold the rights.
#ifndef Q_OS_MACOS

#include "engine/erase/MessageChannel.h"
#include "engine/erase/PrivilegedHelper.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QFileInfo>
#include <cerrno>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace velmora {
namespace {

int exitStatusOf(int waitStatus) {
    if (WIFEXITED(waitStatus)) return WEXITSTATUS(waitStatus);
    if (WIFSIGNALED(waitStatus)) return 128 + WTERMSIG(waitStatus);
    return -1;
}

int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return exitStatusOf(status);
}

}  // namespace

QStringList PrivilegedHelperClient::defaultLaunchCommand() {
    // pkexec runs only programs given by absolute path.
    return {"pkexec", QFileInfo(StandardPaths::toolPath("velmora-privileged-helper")).absoluteFilePath()};
}

PrivilegedHelperClient::PrivilegedHelperClient(QStringList launchCommand) : m_launchCommand(std::move(launchCommand)) {}

PrivilegedHelperClient::~PrivilegedHelperClient() { stop(); }

bool PrivilegedHelperClient::start(int* exitStatus) {
    if (m_channel) return true;
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) return false;
    // The helper reads requests on its standard input and answers on its standard
    // output, both one end of the socket pair; its standard error stays ours.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, sockets[1], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, sockets[1], STDOUT_FILENO);
    QList<QByteArray> encoded;
    for (const QString& argument : m_launchCommand) encoded.append(nativePath(argument));
    QList<char*> arguments;
    for (QByteArray& argument : encoded) arguments.append(argument.data());
    arguments.append(nullptr);
    pid_t pid = -1;
    const int spawned = posix_spawnp(&pid, arguments.first(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(sockets[1]);
    if (spawned != 0) {
        close(sockets[0]);
        if (exitStatus) *exitStatus = 127;
        return false;
    }
    m_socket = sockets[0];
    m_pid = pid;
    m_channel = std::make_unique<MessageChannel>(m_socket, m_socket);
    QByteArray greeting;
    if (m_channel->receive(&greeting) && greeting == PrivilegedHelper::kGreeting) return true;
    const int status = stop();
    if (exitStatus) *exitStatus = status;
    return false;
}

bool PrivilegedHelperClient::isRunning() const { return m_channel != nullptr; }

bool PrivilegedHelperClient::removeExactly(const QByteArray& path, const TreeRemoval::Identity& identity,
                                           QByteArray* reply) {
    if (!m_channel) return false;
    if (m_channel->send(PrivilegedHelper::removalRequest(path, identity)) && m_channel->receive(reply)) return true;
    stop();
    return false;
}

int PrivilegedHelperClient::stop() {
    if (m_pid < 0) return 0;
    m_channel.reset();
    // Closing our end is the helper's signal to finish.
    close(m_socket);
    m_socket = -1;
    const int status = waitFor(m_pid);
    m_pid = -1;
    return status;
}

}  // namespace velmora

#endif
