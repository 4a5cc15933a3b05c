#pragma once

#include <QString>
#include <functional>

class QObject;
class QProcess;

namespace velmora {

// Clears the item's immutable flag and starts the secure-remove tool with exactly
// two arguments, the option string and the path. Its output goes to one pipe that
// nobody reads. onEnd runs once, in owner's thread, when the tool ends or could
// not start. The returned process is a child of owner; the caller disconnects and
// deletes it after onEnd.
QProcess* startSecureRemoveTask(QObject* owner, const QString& options, const QString& path,
                                const std::function<void()>& onEnd);

}  // namespace velmora
