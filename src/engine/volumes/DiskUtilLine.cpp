#include "engine/volumes/DiskUtilLine.h"

#include "engine/platform/StandardPaths.h"

#include <QFile>
#include <cstdarg>
#include <cstdio>
#include <unistd.h>

namespace velmora {
namespace {

constexpr char kProgramWord[] = "diskutil";

QByteArray shellQuoted(const QByteArray& word) {
    QByteArray quoted = word;
    quoted.replace('\'', "'\\''");
    return '\'' + quoted + '\'';
}

bool needsPkexec() {
#ifdef Q_OS_MACOS
    return false;
#else
    return geteuid() != 0;
#endif
}

}  // namespace

QByteArray diskUtilLine(size_t bufferSize, const char* format, ...) {
    QByteArray buffer(qsizetype(bufferSize), '\0');
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer.data(), bufferSize, format, arguments);
    va_end(arguments);
    QByteArray line(buffer.constData());  // up to the terminating zero
    if (line.startsWith(kProgramWord))
        line.replace(0, int(sizeof kProgramWord - 1), shellQuoted(QFile::encodeName(StandardPaths::diskUtilPath())));
    return line;
}

QByteArray asAdministrator(const QByteArray& shellLine) {
    return needsPkexec() ? "pkexec " + shellLine : shellLine;
}

DiskUtilCall diskUtilCall(const QStringList& arguments) {
    if (needsPkexec()) return {"pkexec", QStringList{StandardPaths::diskUtilPath()} + arguments};
    return {StandardPaths::diskUtilPath(), arguments};
}

}  // namespace velmora
