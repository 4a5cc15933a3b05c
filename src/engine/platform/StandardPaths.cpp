#include "engine/platform/StandardPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

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
    const QString dir = fromEnv("VELMORA_DATA_DIR");
    if (!dir.isEmpty()) return ensured(dir + "/tmp");
    return ensured(QDir::tempPath() + QString("/velmora-%1").arg(QString::fromLocal8Bit(qgetenv("USER"))));
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
    if (QCoreApplication::instance()) return QCoreApplication::applicationDirPath() + "/" + name;
    return name;
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
