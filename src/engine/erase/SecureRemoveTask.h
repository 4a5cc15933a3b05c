#pragma once

#include <QString>
#include <functional>

class QObject;
class QProcess;

namespace velmora {

// Clears the item's immutable flag and starts the secure-remove tool with the option
// string; the path reaches the tool as its bytes on standard input. Its progress lines
// come on standard output, its reasons for failing on standard error, each line ended
// by NUL. onEnd runs once, in owner's thread, when the tool
// ends or could not start, with whether it exited normally and its exit status (false
// and -1 when it could not start or was killed). The returned process is a child of
// owner; the caller disconnects and deletes it after onEnd.
QProcess* startSecureRemoveTask(QObject* owner, const QString& options, const QString& path,
                                const std::function<void(bool exitedNormally, int exitCode)>& onEnd);

}  // namespace velmora
