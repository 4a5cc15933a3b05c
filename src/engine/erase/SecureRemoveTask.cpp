#include "engine/erase/SecureRemoveTask.h"

#include "engine/erase/ImmutableFlag.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QDebug>
#include <QProcess>

namespace velmora {

QProcess* startSecureRemoveTask(QObject* owner, const QString& options, const QString& path,
                                const std::function<void(bool exitedNormally, int exitCode)>& onEnd) {
    if (ImmutableFlag::isSet(path)) ImmutableFlag::clear(path);
    const QString tool = StandardPaths::toolPath("srm");
    auto* task = new QProcess(owner);
    QObject::connect(task, &QProcess::finished, owner, [onEnd](int exitCode, QProcess::ExitStatus status) {
        const bool normal = status == QProcess::NormalExit;
        onEnd(normal, normal ? exitCode : -1);
    });
    // A tool that cannot start sends no finished. Queued, so that the caller has
    // finished its own step before onEnd runs.
    QObject::connect(
        task, &QProcess::errorOccurred, owner,
        [tool, onEnd](QProcess::ProcessError error) {
            if (error != QProcess::FailedToStart) return;
            qCWarning(lcErase, "cannot start %s", qUtf8Printable(tool));
            onEnd(false, -1);
        },
        Qt::QueuedConnection);
    // The path goes to the tool's standard input as its bytes, ended by NUL: an argument
    // list would pass through QProcess's text encoding, which loses every byte of a name
    // that is not UTF-8, and could not hold a path longer than the system's limit. "-0"
    // ends the tool's output lines with NUL, so a name with a line break stays one line.
    task->start(tool, {options, "-0", "--files0-from=-"});
    task->write(nativePath(path) + '\0');
    task->closeWriteChannel();
    return task;
}

}  // namespace velmora
