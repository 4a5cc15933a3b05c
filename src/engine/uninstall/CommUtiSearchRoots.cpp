// The uninstaller's part of the common utilities: search roots, running applications and
// total sizes.
#include "engine/volumes/CommUti.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/FolderEntries.h"

#include <QFile>
#include <unistd.h>
#include <sys/stat.h>

namespace velmora {
namespace {

using StandardPaths::Layout;

// A machine-wide folder below the (possibly redirected) system root.
QString underRoot(const QString& absolute) {
    const QString root = StandardPaths::systemRoot();
    return root == "/" ? absolute : root + absolute;
}

QString home() { return StandardPaths::homeDir(); }

QStringList libraryFolders() { return {home() + "/Library", underRoot("/Library")}; }

QStringList linuxPluginFolders() {
    QFile list(":/uninstall/PluginFolders-linux.txt");
    QStringList folders;
    if (!list.open(QIODevice::ReadOnly)) return folders;
    for (const QByteArray& line : list.readAll().split('\n')) {
        const QString folder = QString::fromUtf8(line.trimmed());
        if (!folder.isEmpty() && !folder.startsWith('#')) folders.append(home() + "/" + folder);
    }
    return folders;
}

qint64 treeSize(int folderFd) {
    qint64 total = 0;
    for (const FolderEntry& entry : readFolderEntries(folderFd)) {
        if (entry.type == FolderEntry::File) total += entry.size;
        if (entry.type != FolderEntry::Folder) continue;
        const FolderFd child(openFolderAt(folderFd, entry.name));
        if (child.valid()) total += treeSize(child.get());
    }
    return total;
}

// The identifier of the application bundle an executable lies in, or empty.
QString bundleIdentifierOfExecutable(const QString& executable) {
    const qsizetype contents = executable.lastIndexOf(".app/Contents/");
    if (contents < 0) return {};
    const QString bundle = executable.left(contents + 4);
    return propertyListFromFile(bundle + "/Contents/Info.plist").toMap().value("CFBundleIdentifier").toString();
}

}  // namespace

QStringList CommUti::applicationPaths() {
    if (StandardPaths::layout() == Layout::MacOS)
        return {home() + "/Applications", underRoot("/Applications"), underRoot("/Network/Applications"),
                underRoot("/Developer/Applications")};
    return {home() + "/Applications", home() + "/.local/bin", home() + "/bin", StandardPaths::downloadsDir(),
            home() + "/.local/opt", underRoot("/opt")};
}

QStringList CommUti::widgetPaths() {
    if (StandardPaths::layout() == Layout::MacOS) return {home() + "/Library/Widgets", underRoot("/Library/Widgets")};
    const QString data = StandardPaths::applicationSupportDir();
    return {data + "/gnome-shell/extensions", data + "/plasma/plasmoids", underRoot("/usr/share/gnome-shell/extensions"),
            underRoot("/usr/share/plasma/plasmoids")};
}

QStringList CommUti::pluginPaths() {
    if (StandardPaths::layout() == Layout::Linux) return linuxPluginFolders();
    static const char* const kPluginFolders[] = {"Address Book Plug-Ins", "Contextual Menu Items", "Dictionaries", "iTunes",
                                                 "Spotlight", "Screen Savers", "QuickLook", "QuickTime",
                                                 "Internet Plug-Ins", "Safari"};
    QStringList paths;
    for (const QString& library : libraryFolders())
        for (const char* folder : kPluginFolders) paths.append(library + "/" + folder);
    for (const QString& library : libraryFolders()) paths.append(library + "/Input Methods");
    return paths;
}

QStringList CommUti::preferencePanePaths() {
    if (StandardPaths::layout() == Layout::Linux) return {};
    QStringList paths;
    for (const QString& library : libraryFolders()) paths.append(library + "/PreferencePanes");
    return paths;
}

bool CommUti::isBelongRunningApp(const QString& bundleID) {
    if (bundleID.isEmpty()) return false;
    const uid_t user = ::getuid();
    for (const FolderEntry& entry : folderEntries("/proc")) {
        bool isPid = false;
        entry.name.toLongLong(&isPid);
        if (!isPid) continue;
        const QByteArray folder = "/proc/" + entry.name.toLatin1();
        struct stat info;
        if (::stat(folder.constData(), &info) != 0 || info.st_uid != user) continue;
        char target[4096];
        const ssize_t length = ::readlink((folder + "/exe").constData(), target, sizeof target - 1);
        if (length <= 0) continue;
        if (bundleIdentifierOfExecutable(pathFromNative(QByteArray(target, length))) == bundleID) return true;
    }
    return false;
}

qint64 CommUti::sizeOfFileRef(const QString& path) {
    struct stat info;
    const QByteArray native = nativePath(path);
    if (::lstat(native.constData(), &info) != 0) return 0;
    if (S_ISREG(info.st_mode)) return info.st_size;
    if (!S_ISDIR(info.st_mode)) return 0;
    const FolderFd folder(openFolder(path));
    return folder.valid() ? treeSize(folder.get()) : 0;
}

}  // namespace velmora
