#include "engine/uninstall/PackageManagerApps.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QProcess>
#include <QStandardPaths>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::PackageManagerApps {
namespace {

constexpr int kListTimeoutMs = 15000;
constexpr int kRemoveTimeoutMs = 10 * 60 * 1000;

QString underRoot(const QString& absolute) {
    const QString root = StandardPaths::systemRoot();
    return root == "/" ? absolute : root + absolute;
}

QByteArray toolOutput(const QString& tool, const QStringList& arguments) {
    const QString program = QStandardPaths::findExecutable(tool);
    if (program.isEmpty()) return {};
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(kListTimeoutMs) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        process.kill();
        process.waitForFinished(1000);
        qCWarning(lcUninstall, "%s %s failed", qUtf8Printable(tool), qUtf8Printable(arguments.join(' ')));
        return {};
    }
    return process.readAllStandardOutput();
}

bool exists(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

}  // namespace

AMAppItemList parseFlatpakList(const QByteArray& output) {
    AMAppItemList apps;
    for (const QByteArray& line : output.split('\n')) {
        const QList<QByteArray> columns = line.split('\t');
        if (columns.size() < 4 || columns[0].trimmed().isEmpty() || columns[0] == "Application ID") continue;
        auto item = AMAppItemPtr::create();
        item->kind = AppKind::Flatpak;
        item->bundleID = QString::fromUtf8(columns[0].trimmed());
        item->name = QString::fromUtf8(columns[1].trimmed());
        if (item->name.isEmpty()) item->name = item->bundleID;
        item->bundleVersion = QString::fromUtf8(columns[2].trimmed());
        item->installation = QString::fromUtf8(columns[3].trimmed()) == "user" ? "user" : "system";
        item->path = item->installation == "user"
                         ? StandardPaths::applicationSupportDir() + "/flatpak/app/" + item->bundleID
                         : underRoot("/var/lib/flatpak/app/") + item->bundleID;
        item->image = item->bundleID;
        apps.append(item);
    }
    return apps;
}

AMAppItemList parseSnapList(const QByteArray& output) {
    AMAppItemList apps;
    for (const QByteArray& line : output.split('\n')) {
        const QList<QByteArray> columns = line.simplified().split(' ');
        if (columns.size() < 3 || columns[0] == "Name") continue;
        const QByteArray notes = columns.size() >= 6 ? columns[5] : QByteArray();
        // Bases, the core snaps and snapd itself are the system's, not applications.
        if (notes.contains("base") || notes.contains("core") || notes.contains("snapd") || columns[0] == "snapd") continue;
        auto item = AMAppItemPtr::create();
        item->kind = AppKind::Snap;
        item->name = QString::fromUtf8(columns[0]);
        item->bundleID = item->name;
        item->bundleVersion = QString::fromUtf8(columns[1]);
        item->path = underRoot("/snap/") + item->name;
        item->image = item->name;
        apps.append(item);
    }
    return apps;
}

AMAppItemList flatpakApplications() {
    return parseFlatpakList(toolOutput("flatpak", {"list", "--app", "--columns=application,name,version,installation"}));
}

AMAppItemList snapApplications() { return parseSnapList(toolOutput("snap", {"list"})); }

bool isFlatpakRunning(const QString& applicationId) {
    for (const QByteArray& line : toolOutput("flatpak", {"ps", "--columns=application"}).split('\n'))
        if (QString::fromUtf8(line.trimmed()) == applicationId) return true;
    return false;
}

QStringList removalArguments(const AMAppItem& item) {
    if (item.kind == AppKind::Flatpak)
        return {"flatpak", "uninstall", item.installation == "user" ? "--user" : "--system", "--noninteractive", "--",
                item.bundleID};
    if (item.kind == AppKind::Snap) return {"snap", "remove", "--", item.bundleID};
    return {};
}

bool removeApplication(const AMAppItem& item, QString* reason) {
    QStringList arguments = removalArguments(item);
    if (arguments.isEmpty()) return false;
    const QString program = QStandardPaths::findExecutable(arguments.first());
    if (program.isEmpty()) {
        *reason = arguments.first() + " is not installed";
        return false;
    }
    arguments.first() = program;
    // Flatpak asks for rights itself through polkit; snap needs them from us.
    if (::geteuid() != 0 && item.kind == AppKind::Snap) arguments.prepend("pkexec");
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(arguments.takeFirst(), arguments);
    if (!process.waitForFinished(kRemoveTimeoutMs) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished(1000);
        *reason = "the package manager did not finish";
        return false;
    }
    if (process.exitCode() != 0) {
        *reason = QString::fromUtf8(process.readAll()).trimmed().section('\n', -1);
        if (reason->isEmpty()) *reason = QString("the package manager failed with status %1").arg(process.exitCode());
        return false;
    }
    if (exists(item.path)) {
        *reason = "the package manager reported success but the application is still installed";
        return false;
    }
    return true;
}

}  // namespace velmora::PackageManagerApps
