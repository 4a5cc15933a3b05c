#pragma once

#include "engine/erase/TreeRemoval.h"

#include <QByteArray>
#include <QStringList>
#include <memory>
#include <sys/types.h>

#ifndef Q_OS_MACOS

namespace velmora {

class MessageChannel;

// Holds administrator rights on Linux as one running privileged helper
// (velmora-privileged-helper, started through pkexec): the password is asked
// when the helper starts, and every later request of this holder goes to the
// same helper without asking again. One thread at a time may use it.
class PrivilegedHelperClient {
public:
    // pkexec with the helper program's absolute path.
    static QStringList defaultLaunchCommand();

    explicit PrivilegedHelperClient(QStringList launchCommand = defaultLaunchCommand());
    ~PrivilegedHelperClient();
    PrivilegedHelperClient(const PrivilegedHelperClient&) = delete;
    PrivilegedHelperClient& operator=(const PrivilegedHelperClient&) = delete;

    // Starts the helper unless it runs; true once it greeted. On failure
    // *exitStatus (when given) holds the launcher's exit status (pkexec: 126
    // when the prompt was dismissed, 127 when not authorised).
    bool start(int* exitStatus = nullptr);
    bool isRunning() const;
    // Asks the helper to remove exactly the item of that identity at the path, with
    // all its contents. False when the helper is not running or went away;
    // otherwise *reply is empty on success, else the refusal or failure.
    bool removeExactly(const QByteArray& path, const TreeRemoval::Identity& identity, QByteArray* reply);
    // Lets the helper end and collects it; answers its exit status (0 when none ran).
    int stop();

private:
    const QStringList m_launchCommand;
    int m_socket = -1;
    pid_t m_pid = -1;
    std::unique_ptr<MessageChannel> m_channel;
};

}  // namespace velmora

#endif
