#include "engine/erase/SecureRemoveTask.h"

#include "engine/erase/ImmutableFlag.h"
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
            qWarning("cannot start %s", qUtf8Printable(tool));
            onEnd(false, -1);
        },
        Qt::QueuedConnection);
    // "--": a path that starts with a dash is a path, not options.
    task->start(tool, {options, "--", path});
    return task;
}

}  // namespace velmora
