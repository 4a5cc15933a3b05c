#pragma once

#include <QString>

namespace velmora {

// The keys of a .desktop file's [Desktop Entry] group that the uninstaller reads
// (unlocalised values only).
struct DesktopEntry {
    QString id;  // desktop-file id: the file name without ".desktop"
    QString name;
    QString exec;
    QString tryExec;
    QString icon;
    QString appImageVersion;  // X-AppImage-Version

    bool valid() const { return !name.isEmpty(); }
    // Whether the entry starts the given program path (Exec or TryExec name it).
    bool launches(const QString& program) const;
};

DesktopEntry readDesktopEntry(const QString& path);
// The first .desktop file among the folder's direct entries, or an invalid entry.
DesktopEntry launcherInFolder(const QString& folder);
// The entry of ~/.local/share/applications that starts this AppImage (its integration), if any.
DesktopEntry integratedEntryOf(const QString& appImagePath);

}  // namespace velmora
