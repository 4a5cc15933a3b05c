#include "engine/uninstall/DesktopEntry.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/FolderEntries.h"

#include <QFile>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr qint64 kMaxEntryBytes = 1 << 20;

QByteArray readSmallFile(const QString& path) {
    const int fd = openLongPath(nativePath(path), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return {};
    QFile file;
    QByteArray bytes;
    if (file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) bytes = file.read(kMaxEntryBytes);
    else ::close(fd);
    return bytes;
}

}  // namespace

bool DesktopEntry::launches(const QString& program) const {
    const auto names = [&program](const QString& command) {
        const QString unquoted = command.trimmed().startsWith('"') ? command.trimmed().mid(1).section('"', 0, 0)
                                                                   : command.trimmed().section(' ', 0, 0);
        return unquoted == program;
    };
    return names(exec) || names(tryExec);
}

DesktopEntry readDesktopEntry(const QString& path) {
    DesktopEntry entry;
    const QString fileName = path.section('/', -1);
    if (!fileName.endsWith(".desktop")) return entry;
    entry.id = fileName.chopped(8);
    bool inMainGroup = false;
    for (const QByteArray& rawLine : readSmallFile(path).split('\n')) {
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inMainGroup || equals <= 0) continue;
        const QString key = line.left(equals).trimmed();
        const QString value = line.mid(equals + 1).trimmed();
        if (key == "Name") entry.name = value;
        else if (key == "Exec") entry.exec = value;
        else if (key == "TryExec") entry.tryExec = value;
        else if (key == "Icon") entry.icon = value;
        else if (key == "X-AppImage-Version") entry.appImageVersion = value;
    }
    return entry;
}

DesktopEntry launcherInFolder(const QString& folder) {
    for (const FolderEntry& entry : folderEntries(folder))
        if (entry.type == FolderEntry::File && entry.name.endsWith(".desktop")) {
            const DesktopEntry launcher = readDesktopEntry(folder + "/" + entry.name);
            if (launcher.valid()) return launcher;
        }
    return {};
}

DesktopEntry integratedEntryOf(const QString& appImagePath) {
    const QString applications = StandardPaths::applicationSupportDir() + "/applications";
    for (const FolderEntry& entry : folderEntries(applications)) {
        if (entry.type != FolderEntry::File || !entry.name.endsWith(".desktop")) continue;
        const DesktopEntry launcher = readDesktopEntry(applications + "/" + entry.name);
        if (launcher.valid() && launcher.launches(appImagePath)) return launcher;
    }
    return {};
}

}  // namespace velmora
