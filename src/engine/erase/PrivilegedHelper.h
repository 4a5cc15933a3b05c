#pragma once

#include <QByteArray>

namespace velmora::PrivilegedHelper {

// velmora-cli runs as the privileged helper when started with this single
// argument (through pkexec). It then serves removal requests from the process
// that started it, so that a batch asks for the administrator password once.
constexpr const char* kCommandLineFlag = "--privileged-helper";

// What the helper sends once it runs with its rights, before any request.
constexpr const char* kGreeting = "velmora-helper ready";

// Why a removal request is refused, or empty when it may proceed. Only absolute
// paths without "." or ".." components are served, and never "/" itself.
QByteArray refusalFor(const QByteArray& path);

// Runs "/bin/rm -rf PATH" and answers what it printed (at most the first 128
// bytes), so an empty answer means success; a refused path answers its refusal.
QByteArray removeRecursively(const QByteArray& path);

// The helper's loop: greets on outFd, then answers each request read from inFd
// until the requesting side closes. Messages are NUL-terminated byte strings.
int serve(int inFd, int outFd);

}  // namespace velmora::PrivilegedHelper
