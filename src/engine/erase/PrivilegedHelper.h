#pragma once

#include "engine/erase/TreeRemoval.h"

#include <QByteArray>

namespace velmora::PrivilegedHelper {

// The program velmora-privileged-helper (started through pkexec) serves removal
// requests from the process that started it, so that a batch asks for the
// administrator password once.

// What the helper sends once it runs with its rights, before any request.
constexpr const char* kGreeting = "velmora-helper ready";

// Why a removal request is refused, or empty when it may proceed. Only absolute
// paths without "." or ".." components are served, and never "/" itself.
QByteArray refusalFor(const QByteArray& path);

// Removes exactly the item of that identity at the path, a folder with all its
// contents, without following any link and without entering a mount inside it
// (TreeRemoval). Answers an empty text on success, else the refusal or why
// something is left.
QByteArray removeExactly(const QByteArray& path, const TreeRemoval::Identity& identity);

// A removal request names the item by its identity and its path:
// "DEVICE INODE PATH", the numbers in decimal.
QByteArray removalRequest(const QByteArray& path, const TreeRemoval::Identity& identity);
// Serves one request: the answer of removeExactly, or a refusal of a malformed one.
QByteArray answer(const QByteArray& request);

// The helper's loop: greets on outFd, then answers each request read from inFd
// until the requesting side closes. Messages are NUL-terminated byte strings.
int serve(int inFd, int outFd);

}  // namespace velmora::PrivilegedHelper
