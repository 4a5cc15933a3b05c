#include "engine/inter/RunningBrowsers.h"

#include "engine/inter/CatalogueResource.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>
#include <cerrno>
#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_MACOS
#include <libproc.h>
#include <sys/proc_info.h>
#endif

namespace velmora::RunningBrowsers {
namespace {

struct Process {
    qint64 pid = 0;
    QString executable;  // full path, "" when unknown
    QString name;        // comm on Linux, the process name on macOS
};

// The current user's processes other than this one.
QList<Process> ownProcesses() {
    QList<Process> processes;
#ifdef Q_OS_MACOS
    QList<pid_t> pids(proc_listallpids(nullptr, 0) + 64);
    const int count = proc_listallpids(pids.data(), int(pids.size() * sizeof(pid_t)));
    for (int i = 0; i < count; ++i) {
        proc_bsdshortinfo info;
        if (pids[i] == ::getpid() || proc_pidinfo(pids[i], PROC_PIDT_SHORTBSDINFO, 0, &info, sizeof info) != sizeof info) continue;
        if (info.pbsi_uid != ::getuid()) continue;
        char path[PROC_PIDPATHINFO_MAXSIZE] = {};
        proc_pidpath(pids[i], path, sizeof path);
        const QString executable = pathFromNative(path);
        // An application's name is that of its bundle ("Google Chrome.app").
        const qsizetype bundle = executable.indexOf(".app/Contents/MacOS/");
        const QString name = bundle >= 0 ? executable.left(bundle).section('/', -1) : executable.section('/', -1);
        processes.append({pids[i], executable, name});
    }
#else
    const QStringList entries = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool isNumber = false;
        const qint64 pid = entry.toLongLong(&isNumber);
        if (!isNumber || pid == ::getpid()) continue;
        const QByteArray folder = "/proc/" + entry.toLatin1();
        struct stat info;
        if (::stat(folder.constData(), &info) != 0 || info.st_uid != ::getuid()) continue;
        char target[4096];
        const ssize_t length = ::readlink(folder + "/exe", target, sizeof target);
        QString executable = length > 0 ? pathFromNative(QByteArray(target, length)) : QString();
        if (executable.endsWith(" (deleted)")) executable.chop(10);
        QFile comm(QString::fromLatin1(folder + "/comm"));
        const QString name = comm.open(QIODevice::ReadOnly) ? QString::fromUtf8(comm.readAll()).trimmed() : QString();
        processes.append({pid, executable, name});
    }
#endif
    return processes;
}

// A program of the catalogue: an absolute path (a "*" standing for one folder name) is
// matched against the executable, a bare name against the executable's name and comm
// (which the kernel cuts to 15 bytes).
bool matches(const Process& process, const QString& program) {
    if (program.startsWith('/')) {
        QStringList parts = program.split('*');
        for (QString& part : parts) part = QRegularExpression::escape(part);
        const QRegularExpression pattern(QRegularExpression::anchoredPattern(parts.join("[^/]*")));
        return pattern.match(process.executable).hasMatch();
    }
    return process.executable.section('/', -1) == program || (!process.name.isEmpty() && process.name == program.left(15));
}

// The Part's test of an application name before scanning.
bool isKnownBrowserName(const QString& name) {
    return name.contains("Safari") || name == "Google Chrome" || name == "Opera" || name == "Firefox";
}

// A process that ended but was not yet reaped by its parent (a zombie) has ended.
bool isRunning(const RunningBrowser& browser) {
    if (::kill(pid_t(browser.pid), 0) != 0) return false;
#ifndef Q_OS_MACOS
    QFile stat(QString("/proc/%1/stat").arg(browser.pid));
    if (stat.open(QIODevice::ReadOnly)) {
        const QByteArray line = stat.readAll();
        const qsizetype end = line.lastIndexOf(')');
        if (end >= 0 && end + 2 < line.size() && (line[end + 2] == 'Z' || line[end + 2] == 'X')) return false;
    }
#endif
    return true;
}

}  // namespace

QList<RunningBrowser> checkOpenBrower() {
    QList<RunningBrowser> running;
    const QList<Process> processes = ownProcesses();
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        for (const Process& process : processes)
            if (isKnownBrowserName(process.name)) running.append({process.name, process.pid});
        return running;
    }
    const QList<CatalogueResource::Programs> catalogue = CatalogueResource::browserPrograms();
    for (const Process& process : processes) {
        for (const CatalogueResource::Programs& browser : catalogue) {
            if (std::any_of(browser.programs.cbegin(), browser.programs.cend(),
                            [&](const QString& program) { return matches(process, program); })) {
                running.append({browser.key, process.pid});
                break;
            }
        }
    }
    return running;
}

QList<RunningBrowser> checkOpenBrower(const BrowserArr& browserArr) {
    QList<RunningBrowser> running;
    const QList<Process> processes = ownProcesses();
    for (const Process& process : processes) {
        for (const BrowerObjPtr& browser : browserArr) {
            if (browser->isSelect == 0) continue;
            const bool match = StandardPaths::layout() == StandardPaths::Layout::MacOS
                                   ? process.name == browser->name
                                   : std::any_of(browser->programs.cbegin(), browser->programs.cend(),
                                                 [&](const QString& program) { return matches(process, program); });
            if (match) {
                running.append({browser->name, process.pid});
                break;
            }
        }
    }
    return running;
}

QString joinedNames(const QList<RunningBrowser>& running) {
    QStringList names;
    for (const RunningBrowser& browser : running) names.append(browser.name);
    return names.join(',');
}

bool closeBrowsers(const QList<RunningBrowser>& running, QString* failure) {
    QStringList failures;
    for (const RunningBrowser& browser : running) {
        QProcess kill;
        kill.start("/bin/kill", {QString::asprintf("%d", int(browser.pid))});
        if (!kill.waitForFinished(10000) || kill.exitStatus() != QProcess::NormalExit || kill.exitCode() != 0)
            failures.append(QString("%1 (process %2) could not be ended: %3")
                                .arg(browser.name).arg(browser.pid)
                                .arg(QString::fromLocal8Bit(kill.readAllStandardError()).trimmed()));
    }
    // The processes end on their own after the signal: wait up to two seconds for them.
    for (int waited = 0; waited < 20 && std::any_of(running.cbegin(), running.cend(), isRunning); ++waited)
        QThread::msleep(100);
    for (const RunningBrowser& browser : running)
        if (isRunning(browser)) failures.append(QString("%1 (process %2) still runs").arg(browser.name).arg(browser.pid));
    if (failure) *failure = failures.join("; ");
    return failures.isEmpty();
}

}  // namespace velmora::RunningBrowsers
