#include "engine/volumes/DiskUtilLine.h"

#include "engine/platform/StandardPaths.h"

#include <unistd.h>

namespace velmora {
namespace {

constexpr char kPkexec[] = "pkexec";

bool needsPkexec() {
#ifdef Q_OS_MACOS
    return false;
#else
    return geteuid() != 0;
#endif
}

}  // namespace

CommandLine diskUtilLine(const QStringList& arguments) { return {StandardPaths::diskUtilPath(), arguments}; }

CommandLine asAdministrator(const CommandLine& command) {
    if (!needsPkexec()) return command;
    return {kPkexec, QStringList{command.program} + command.arguments};
}

QString diskUtilFailure(const CommandLine& command, int exitCode, const QString& details) {
    QString text;
    if (command.program == kPkexec && exitCode == 126)
        text = "administrator rights were refused (pkexec declined)";
    else if (command.program == kPkexec && exitCode == 127)
        text = "administrator rights could not be obtained (pkexec: not authorised or the program is missing)";
    else
        text = QString("the disk utility exited with status %1").arg(exitCode);
    return details.isEmpty() ? text : text + ": " + details;
}

}  // namespace velmora
