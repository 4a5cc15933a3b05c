#pragma once

#include <QString>
#include <QStringList>

namespace velmora {

// Every folder the engine reads or writes, in one place. Each root can be
// redirected through the environment so tests and scripts run on fake trees:
//   VELMORA_DATA_DIR      per-user data folder (history database, settings)
//   VELMORA_ROOT          system root ("/" unless redirected)
//   VELMORA_HOME          the user's home folder ($HOME unless redirected)
//   VELMORA_VOLUMES_ROOT  where volumes are mounted on the macOS layout
//   VELMORA_DISKUTIL      the disk-utility program
//   VELMORA_BIN_DIR       where the helper tools (srm, velmora-diskutil) live
//   VELMORA_LAYOUT        "macos" or "linux": which folder conventions apply
namespace StandardPaths {

enum class Layout { MacOS, Linux };
Layout layout();

QString dataDir();        // created when missing
QString tempDir();        // per-user temporary folder, created when missing
QString systemRoot();     // always ends without a slash, except "/" itself
QString homeDir();
QString volumesRoot();    // "/Volumes" on macOS; empty on Linux (mount points are used)
QString diskUtilPath();
// A helper tool shipped beside the application ("srm", "velmora-diskutil").
QString toolPath(const QString& name);

// Standard folders of the user domain for the current layout.
QStringList applicationsDirs();
QString preferencesDir();
QString cachesDir();
QString applicationSupportDir();
QString logsDir();
QString savedStateDir();
QString downloadsDir();
QString desktopDir();

}  // namespace StandardPaths
}  // namespace velmora
