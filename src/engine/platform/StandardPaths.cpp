#include "engine/platform/StandardPaths.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::StandardPaths {
namespace {

QString fromEnv(const char* name) { return qEnvironmentVariable(name); }

QString ensured(const QString& path) {
    QDir().mkpath(path);
    return path;
}

QString xdg(const char* variable, const QString& fallbackBelowHome) {
    const QString value = fromEnv(variable);
    if (!value.isEmpty() && fromEnv("VELMORA_HOME").isEmpty()) return value;
    return homeDir() + "/" + fallbackBelowHome;
}

// The folder that holds ours: a real folder of the effective user that no one
// else may write to, so our folder in it cannot be swapped. Left as it is.
bool trustedParent(const QString& path, QString* failure) {
    struct stat info;
    if (::lstat(nativePath(path).constData(), &info) != 0) {
        *failure = QString("cannot read %1: %2").arg(path, std::strerror(errno));
        return false;
    }
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::geteuid() || (info.st_mode & 022) != 0) {
        *failure = QString("%1 is not a folder that only we can write to").arg(path);
        return false;
    }
    return true;
}

QMutex freshTempDirMutex;
QString freshTempDirPath;

// Removes the files of the mkdtemp folder and the folder, when the process ends.
void removeFreshTempDir() {
    const QMutexLocker lock(&freshTempDirMutex);
    if (freshTempDirPath.isEmpty()) return;
    const QByteArray name = nativePath(freshTempDirPath);
    const int fd = ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (DIR* folder = fd >= 0 ? ::fdopendir(fd) : nullptr) {
        while (const dirent* entry = ::readdir(folder)) {
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
                ::unlinkat(fd, entry->d_name, 0);
        }
        ::closedir(folder);
    } else if (fd >= 0) {
        ::close(fd);
    }
    ::rmdir(name.constData());
}

// A folder that mkdtemp made for this process, under the system's temporary
// folder; made again when it is gone or no longer ours, removed at exit. Its
// name cannot be guessed, so no one can prepare it in advance. Empty when none
// can be made.
QString freshTempDir() {
    static const bool removedAtExit = std::atexit(removeFreshTempDir) == 0;
    Q_UNUSED(removedAtExit);
    const QMutexLocker lock(&freshTempDirMutex);
    QString& made = freshTempDirPath;
    QString failure;
    if (!made.isEmpty() && StandardPaths::ownPrivateFolder(made, false, &failure)) return made;
    made.clear();
    const QString user = QString::fromLocal8Bit(qgetenv("USER")).remove('/');
    for (const QString& parent : {QDir::tempPath(), QString("/tmp")}) {
        QByteArray pattern = nativePath(parent + "/velmora-" + user + "-XXXXXX");
        if (::mkdtemp(pattern.data())) {
            made = pathFromNative(pattern);
            return made;
        }
        qCWarning(lcPlatform, "cannot make a temporary folder in %s: %s", qUtf8Printable(parent), std::strerror(errno));
    }
    qCritical("no private temporary folder can be made: temporary and output files cannot be written");
    return {};
}

}  // namespace

Layout layout() {
    const QString requested = fromEnv("VELMORA_LAYOUT").toLower();
    if (requested == "macos") return Layout::MacOS;
    if (requested == "linux") return Layout::Linux;
#ifdef Q_OS_MACOS
    return Layout::MacOS;
#else
    return Layout::Linux;
#endif
}

QString dataDir() {
    QString dir = fromEnv("VELMORA_DATA_DIR");
    if (dir.isEmpty()) {
        dir = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Velmora Data Eraser";
    }
    return ensured(dir);
}

QString tempDir() {
    QString failure;
    const QString dataDir = fromEnv("VELMORA_DATA_DIR");
    if (!dataDir.isEmpty()) {
        const QString dir = ensured(dataDir) + "/tmp";
        if (ownPrivateFolder(dir, true, &failure)) return dir;
        qCWarning(lcPlatform, "refusing the temporary folder %s: %s", qUtf8Printable(dir), qUtf8Printable(failure));
        return freshTempDir();
    }
    const QString runtimeDir = fromEnv("XDG_RUNTIME_DIR");
    if (!runtimeDir.isEmpty()) {
        const QString dir = runtimeDir + "/velmora";
        if (trustedParent(runtimeDir, &failure) && ownPrivateFolder(dir, true, &failure)) return dir;
        qCWarning(lcPlatform, "refusing the temporary folder %s: %s", qUtf8Printable(dir), qUtf8Printable(failure));
    }
    return freshTempDir();
}

bool ownPrivateFolder(const QString& path, bool create, QString* failure) {
    const QByteArray name = nativePath(path);
    if (create && ::mkdir(name.constData(), 0700) != 0 && errno != EEXIST) {
        *failure = QString("cannot create it: %1").arg(std::strerror(errno));
        return false;
    }
    // Opened without following a link, so what is checked is the folder itself.
    const int fd = ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        *failure = errno == ELOOP || errno == ENOTDIR ? QString("it is not a folder (a link or a file)")
                                                       : QString("cannot open it: %1").arg(std::strerror(errno));
        return false;
    }
    struct stat info;
    bool own = false;
    if (::fstat(fd, &info) != 0)
        *failure = QString("cannot read its owner: %1").arg(std::strerror(errno));
    else if (info.st_uid != ::geteuid())
        *failure = QString("it belongs to user %1").arg(info.st_uid);
    else if ((info.st_mode & 07777) != 0700 && ::fchmod(fd, 0700) != 0)
        *failure = QString("cannot make it private: %1").arg(std::strerror(errno));
    else
        own = true;
    ::close(fd);
    return own;
}

QString systemRoot() {
    QString root = fromEnv("VELMORA_ROOT");
    if (root.isEmpty()) return "/";
    while (root.size() > 1 && root.endsWith('/')) root.chop(1);
    return root;
}

QString homeDir() {
    const QString home = fromEnv("VELMORA_HOME");
    return home.isEmpty() ? QDir::homePath() : home;
}

QString volumesRoot() {
    const QString root = fromEnv("VELMORA_VOLUMES_ROOT");
    if (!root.isEmpty()) return root;
    return layout() == Layout::MacOS ? "/Volumes" : QString();
}

QString diskUtilPath() {
    const QString path = fromEnv("VELMORA_DISKUTIL");
    if (!path.isEmpty()) return path;
    return layout() == Layout::MacOS ? "/usr/sbin/diskutil" : toolPath("velmora-diskutil");
}

QString toolPath(const QString& name) {
    const QString binDir = fromEnv("VELMORA_BIN_DIR");
    if (!binDir.isEmpty()) return binDir + "/" + name;
    if (!QCoreApplication::instance()) return name;
    // Installed, the tools have a folder of their own (libexec/velmora, found relative to
    // the programs' folder); when it exists it is the only place they are taken from, so a
    // missing tool is never replaced by a program of that name beside ours (/usr/bin/srm).
    // In the build folder and in a macOS bundle the tools lie beside the programs.
    const QString programs = QCoreApplication::applicationDirPath();
    const QString installedTools = QDir::cleanPath(programs + "/" VELMORA_TOOLS_FROM_PROGRAMS);
    if (QFileInfo(installedTools).isDir()) return installedTools + "/" + name;
    return programs + "/" + name;
}

QStringList helperToolNames() {
#ifdef Q_OS_MACOS
    return {"srm"};
#else
    return {"srm", "velmora-diskutil", "velmora-privileged-helper"};
#endif
}

QStringList applicationsDirs() {
    if (layout() == Layout::MacOS) return {systemRoot() == "/" ? "/Applications" : systemRoot() + "/Applications", homeDir() + "/Applications"};
    return {xdg("XDG_DATA_HOME", ".local/share") + "/applications", homeDir() + "/Applications"};
}

QString preferencesDir() {
    if (layout() == Layout::MacOS) return homeDir() + "/Library/Preferences";
    return xdg("XDG_CONFIG_HOME", ".config");
}

QString cachesDir() {
    if (layout() == Layout::MacOS) return homeDir() + "/Library/Caches";
    return xdg("XDG_CACHE_HOME", ".cache");
}

QString applicationSupportDir() {
    if (layout() == Layout::MacOS) return homeDir() + "/Library/Application Support";
    return xdg("XDG_DATA_HOME", ".local/share");
}

QString logsDir() {
    if (layout() == Layout::MacOS) return homeDir() + "/Library/Logs";
    return xdg("XDG_STATE_HOME", ".local/state") + "/log";
}

QString savedStateDir() {
    if (layout() == Layout::MacOS) return homeDir() + "/Library/Saved Application State";
    return xdg("XDG_STATE_HOME", ".local/state");
}

QString downloadsDir() { return homeDir() + "/Downloads"; }

QString desktopDir() { return homeDir() + "/Desktop"; }

}  // namespace velmora::StandardPaths
