#include "engine/uninstall/RunningApplications.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/FolderEntries.h"
#include "engine/uninstall/PackageManagerApps.h"
#include "engine/volumes/CommUti.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::RunningApplications {
namespace {

bool runsFrom(const QString& path, const QStringList& executables) {
    return std::any_of(executables.begin(), executables.end(), [&path](const QString& executable) {
        return executable == path || executable.startsWith(path + "/");
    });
}

}  // namespace

QStringList runningExecutables() {
    QStringList executables;
    const uid_t user = ::getuid();
    for (const FolderEntry& entry : folderEntries("/proc")) {
        bool isPid = false;
        const qint64 pid = entry.name.toLongLong(&isPid);
        if (!isPid || pid == ::getpid()) continue;
        const QByteArray folder = "/proc/" + entry.name.toLatin1();
        struct stat info;
        if (::stat(folder.constData(), &info) != 0 || (user != 0 && info.st_uid != user)) continue;
        char target[4096];
        const ssize_t length = ::readlink((folder + "/exe").constData(), target, sizeof target - 1);
        if (length > 0) executables.append(pathFromNative(QByteArray(target, length)));
    }
    return executables;
}

bool isRunning(const AMAppItem& application) { return isRunning(application, runningExecutables()); }

bool isRunning(const AMAppItem& application, const QStringList& executables) {
    if (application.path.isEmpty()) return false;
    // A Flatpak application runs in its sandbox from the runtime's files, not its own folder.
    if (application.kind == AppKind::Flatpak) return PackageManagerApps::isFlatpakRunning(application.bundleID);
    if (runsFrom(application.path, executables)) return true;
    return StandardPaths::layout() == StandardPaths::Layout::MacOS && CommUti::isBelongRunningApp(application.bundleID);
}

}  // namespace velmora::RunningApplications
