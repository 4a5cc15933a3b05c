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
//   VELMORA_BIN_DIR       where the helper tools (srm, velmora-diskutil, ...) live
//   VELMORA_LAYOUT        "macos" or "linux": which folder conventions apply
namespace StandardPaths {

enum class Layout { MacOS, Linux };
Layout layout();

QString dataDir();        // created when missing
// The per-user folder for temporary and output files: VELMORA_DATA_DIR/tmp when
// redirected, else XDG_RUNTIME_DIR/velmora, else a folder mkdtemp makes for this
// process. A candidate is used only when it is a real folder (not a link) owned
// by us with mode 0700 (a wider mode of our own folder is narrowed); one that
// another user prepared is refused with a warning and the mkdtemp folder is used
// instead. Empty (after a critical log line) when no private folder can be made:
// callers then write nothing. Files in it are created with O_EXCL|O_NOFOLLOW.
QString tempDir();
// True when `path` (made with mode 0700 first when `create`) is a folder, not a
// link, owned by the effective user, and private to it (narrowed to 0700 if it
// was wider); else false with the reason in `failure`.
bool ownPrivateFolder(const QString& path, bool create, QString* failure);
QString systemRoot();     // always ends without a slash, except "/" itself
QString homeDir();
QString volumesRoot();    // "/Volumes" on macOS; empty on Linux (mount points are used)
QString diskUtilPath();
// A helper tool shipped with the application ("srm", "velmora-diskutil"): in the
// installed tools folder (libexec/velmora) when there is one, else beside the program.
QString toolPath(const QString& name);
// The helper tools this platform's application runs.
QStringList helperToolNames();

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
