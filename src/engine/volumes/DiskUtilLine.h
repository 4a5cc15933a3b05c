#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstddef>

namespace velmora {

// A disk-utility command line built the way the screens build it: printf-style
// into a zeroed buffer of bufferSize bytes (a longer line is cut short). The
// line's first word "diskutil" stands for the platform's disk utility
// (StandardPaths::diskUtilPath), which is put in its place, quoted for the shell.
QByteArray diskUtilLine(size_t bufferSize, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The line run with administrator rights: on Linux, when not root, through
// pkexec; elsewhere unchanged (the macOS disk utility needs no rights to erase).
QByteArray asAdministrator(const QByteArray& shellLine);

// Program and arguments that run the disk utility as a child process, through
// pkexec on Linux when not root.
struct DiskUtilCall {
    QString program;
    QStringList arguments;
};
DiskUtilCall diskUtilCall(const QStringList& arguments);

}  // namespace velmora
