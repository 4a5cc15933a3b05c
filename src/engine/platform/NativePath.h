#pragma once

#include <QByteArray>
#include <QString>
#include <sys/types.h>

namespace velmora {

// File names are bytes: only "/" and NUL are excluded, and a name from another system
// need not be UTF-8. Paths travel through the program as QString in a form that gives
// back the same bytes: valid UTF-8 is decoded as usual, and every byte that is not part
// of valid UTF-8 is kept as the lone surrogate U+DC80..U+DCFF (valid UTF-8 never decodes
// to a surrogate, so nothing is ambiguous). Qt's own file classes do not know this form:
// turn such a QString into bytes with nativePath() and use the system calls.

// The QString of file-system bytes (a name or a path).
QString pathFromNative(const QByteArray& bytes);
inline QString pathFromNative(const char* bytes) { return pathFromNative(QByteArray(bytes)); }

// The file-system bytes of a QString made by pathFromNative (or of any text).
QByteArray nativePath(const QString& path);

// Whether the path holds a byte that is not text.
bool hasNonTextBytes(const QString& path);

// For the eye (pages, history, report): every byte that is not text becomes U+FFFD.
QString displayPath(const QString& path);

// For terminals and JSON, the one escape used everywhere: a path that is valid text
// without control characters is printed as it is; any other is printed in the shell's
// $'...' quoting (the way `ls` quotes such names), with \xHH for a byte that is not text
// or a control character, \n \t \r for those, and \\ and \' for backslash and quote, so
// that pasting it into a shell gives back the same bytes. A path that itself starts with
// "$'" is quoted too, so that the printed form is never ambiguous.
QString escapedPath(const QString& path);

// open() for a path of any length: paths longer than the system's limit are opened
// folder by folder, each step relative to the last (leading folders are followed as
// open() follows them). Returns the descriptor, or -1 with errno.
int openLongPath(const QByteArray& path, int flags, mode_t mode = 0);

// Opens the folder that holds the last component of a path of any length (O_PATH, for
// the *at calls) and gives that component in `name`. "/" and paths ending in "/" have
// no last component: -1 with EINVAL.
int openContainingFolder(const QByteArray& path, QByteArray& name);

}  // namespace velmora
