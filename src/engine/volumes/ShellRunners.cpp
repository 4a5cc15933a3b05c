#include "engine/volumes/ShellRunners.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "engine/platform/WriteAll.h"

#include <QHash>
#include <QMutex>
#include <QProcess>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

// The output file, new and ours: a file or link someone else left under the name
// is removed first, and O_EXCL|O_NOFOLLOW refuse one that appears in between.
int createOutputFile(const QByteArray& path, QString* failure) {
    if (::unlink(path.constData()) != 0 && errno != ENOENT) {
        *failure = QString("cannot remove the old output file %1: %2").arg(pathFromNative(path), std::strerror(errno));
        return -1;
    }
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) *failure = QString("cannot create the output file %1: %2").arg(pathFromNative(path), std::strerror(errno));
    return fd;
}

// One lock per output file name.
QMutex& outputFileLock(const char* outputFileName) {
    static QMutex guard;
    static QHash<QByteArray, QMutex*> locks;
    QMutexLocker lock(&guard);
    QMutex*& fileLock = locks[outputFileName];
    if (!fileLock) fileLock = new QMutex;
    return *fileLock;
}

CommandResult runWithOutputFile(const CommandLine& command, const char* outputFileName) {
    CommandResult result;
    if (command.program.isEmpty()) return result;
    QMutexLocker lock(&outputFileLock(outputFileName));
    const QString folder = StandardPaths::tempDir();
    if (folder.isEmpty()) {
        result.failure = "no private temporary folder for the output of " + command.program;
        return result;
    }
    result.outputPath = folder + "/" + outputFileName;
    const int fd = createOutputFile(nativePath(result.outputPath), &result.failure);
    if (fd < 0) return result;

    QProcess child;
    child.setProgram(command.program);
    child.setArguments(command.arguments);
    child.setStandardInputFile(QProcess::nullDevice());
    child.start();
    result.started = child.waitForStarted(-1);
    if (!result.started) {
        result.failure = QString("%1 could not be started: %2").arg(command.program, child.errorString());
        ::close(fd);
        return result;
    }
    child.waitForFinished(-1);
    result.exitedNormally = child.exitStatus() == QProcess::NormalExit;
    result.exitCode = result.exitedNormally ? child.exitCode() : -1;
    result.output = child.readAllStandardOutput();
    const bool written = writeAll(fd, result.output) == 0;
    ::close(fd);
    const QString errorText = QString::fromUtf8(child.readAllStandardError()).trimmed();
    if (!result.exitedNormally)
        result.failure = QString("%1 was killed").arg(command.program);
    else if (result.exitCode != 0)
        result.failure = QString("%1 exited with status %2").arg(command.program).arg(result.exitCode);
    else if (!written)
        result.failure = "cannot write the output file " + result.outputPath;
    if (!errorText.isEmpty() && !result.failure.isEmpty()) result.failure += ": " + errorText;
    return result;
}

}  // namespace

CommandResult execCommand(const CommandLine& command) { return runWithOutputFile(command, "SteadyWiperTemp.plist"); }

CommandResult eraserDiskCommand(const CommandLine& command) { return runWithOutputFile(command, "eraserVolumeTemp.plist"); }

CommandResult eraserExecCommand(const CommandLine& command) { return runWithOutputFile(command, "eraserVolumeTemp.plist"); }

CommandResult aepairExecCommand(const CommandLine& command) {
    return runWithOutputFile(command, "SteadyWiperRepairTemp.plist");
}

CommandResult diskExecCommand(const CommandLine& command) {
    return runWithOutputFile(command, "VelmoraDataEraserTemp.plist");
}

}  // namespace velmora
