#include "engine/uninstall/RelatedAppFilesScanner.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/DesktopEntry.h"
#include "engine/uninstall/FolderEntries.h"
#include "engine/uninstall/LeftoverMatch.h"

#include <QDebug>
#include <functional>
#include <sys/stat.h>

namespace velmora {
namespace {

using StandardPaths::Layout;

bool isMacLayout() { return StandardPaths::layout() == Layout::MacOS; }

QString home() { return StandardPaths::homeDir(); }

QString localLibrary() {
    const QString root = StandardPaths::systemRoot();
    return (root == "/" ? QString() : root) + "/Library";
}

// Folders of the Linux layout that hold what many programs share; a term never takes them.
bool isSharedLinuxFolder(const QString& path) {
    const QString data = StandardPaths::applicationSupportDir();
    const QString config = StandardPaths::preferencesDir();
    static const char* const kDataFolders[] = {"applications", "icons", "flatpak", "Trash", "mime", "fonts", "themes",
                                               "gnome-shell", "plasma", "systemd", "keyrings", "recently-used.xbel"};
    for (const char* folder : kDataFolders)
        if (path == data + "/" + folder) return true;
    return path == config + "/autostart" || path == config + "/systemd" || path == config + "/user-dirs.dirs";
}

// Runs the matcher with the name, then with the identifier (once on the Linux layout when
// both are the same text, where the identifier often is the name).
void searchFolder(AMAppItemList& list, const QString& folder, const QString& name, const QString& bundleID) {
    AddPathIfExists(list, folder, name);
    if (isMacLayout() || bundleID.compare(name, Qt::CaseInsensitive) != 0) AddPathIfExists(list, folder, bundleID);
}

bool exists(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

void addWhole(AMAppItemList& list, const QString& path) {
    if (exists(path)) list.append(RelatedAppFilesScanner::aConstructItem(path, false));
}

// What integrating an AppImage into the desktop leaves: launchers in
// ~/.local/share/applications and the icons they name under ~/.local/share/icons. A
// launcher that starts this AppImage (and its icons) is certain; one that only has the
// name in its file name is a possible match.
void GetAppImageIntegrationPaths(AMAppItemList& list, const QString& appImagePath, const QString& name) {
    const QString data = StandardPaths::applicationSupportDir();
    const QString applications = data + "/applications";
    QStringList icons;
    for (const FolderEntry& entry : folderEntries(applications)) {
        if (entry.type != FolderEntry::File || !entry.name.endsWith(".desktop")) continue;
        const DesktopEntry launcher = readDesktopEntry(applications + "/" + entry.name);
        const bool launchesIt = launcher.launches(appImagePath);
        if (!launchesIt && !entry.name.contains(name, Qt::CaseInsensitive)) continue;
        AMAppItemPtr item = RelatedAppFilesScanner::aConstructItem(applications + "/" + entry.name);
        item->isPossibleMatch = !launchesIt;
        list.append(item);
        if (launchesIt && !launcher.icon.isEmpty() && !launcher.icon.contains('/')) icons.append(launcher.icon);
    }
    if (icons.isEmpty()) return;
    // The icon theme folders: icons/<theme>/<size>/<context>/<icon>.<extension>.
    std::function<void(const QString&, int)> walk = [&](const QString& folder, int depth) {
        for (const FolderEntry& entry : folderEntries(folder)) {
            const QString path = folder + "/" + entry.name;
            if (entry.type == FolderEntry::Folder && depth < 4) walk(path, depth + 1);
            else if (entry.type == FolderEntry::File && icons.contains(entry.name.section('.', 0, -2)))
                list.append(RelatedAppFilesScanner::aConstructItem(path));
        }
    };
    walk(data + "/icons", 0);
}

}  // namespace

void GetPreferencePaths(AMAppItemList& list, const QString& name, const QString& bundleID) {
    if (!isMacLayout()) {
        searchFolder(list, StandardPaths::preferencesDir(), name, bundleID);
        searchFolder(list, StandardPaths::preferencesDir() + "/autostart", name, bundleID);
        return;
    }
    for (const QString& library : {home() + "/Library", localLibrary()}) searchFolder(list, library + "/Preferences", name, bundleID);
}

void GetCachePaths(AMAppItemList& list, const QString& name, const QString& bundleID) {
    if (!isMacLayout()) return searchFolder(list, StandardPaths::cachesDir(), name, bundleID);
    for (const QString& library : {home() + "/Library", localLibrary()}) searchFolder(list, library + "/Caches", name, bundleID);
}

void GetLogPaths(AMAppItemList& list, const QString& name, const QString& bundleID) {
    if (!isMacLayout()) return searchFolder(list, StandardPaths::savedStateDir(), name, bundleID);
    for (const QString& library : {home() + "/Library", localLibrary()}) searchFolder(list, library + "/Logs", name, bundleID);
}

void GetSavedStatePaths(AMAppItemList& list, const QString& name, const QString& bundleID) {
    if (isMacLayout()) searchFolder(list, home() + "/Library/Saved Application State", name, bundleID);
}

void GetAppSupportPaths(AMAppItemList& list, const QString& name, const QString& bundleID) {
    if (!isMacLayout()) return searchFolder(list, StandardPaths::applicationSupportDir(), name, bundleID);
    for (const QString& library : {home() + "/Library", localLibrary()})
        searchFolder(list, library + "/Application Support", name, bundleID);
}

void GetDownloadPaths(AMAppItemList& list, const QString& name, const QString& bundleID) {
    searchFolder(list, StandardPaths::downloadsDir(), name, bundleID);
}

void GetGrowlPaths(AMAppItemList& list, const QString& name) {
    if (isMacLayout()) AddPathIfExists(list, home() + "/Library/Application Support/Growl/Tickets", name + ".growlTicket");
}

void AddPathIfExists(AMAppItemList& list, const QString& folder, const QString& term) {
    for (const FolderEntry& entry : folderEntries(folder)) {
        if (LeftoverMatch::matchedLength(entry.name, term) < 0) {
            if (entry.name == "FlashPlayerInstallManager.log") qCDebug(lcUninstall, "Break here!");
            continue;
        }
        const QString path = folder + "/" + entry.name;
        if (!isMacLayout() && isSharedLinuxFolder(path)) continue;
        AMAppItemPtr item = RelatedAppFilesScanner::aConstructItem(path, false);
        item->isPossibleMatch = !LeftoverMatch::isExactMatch(entry.name, term);
        list.append(item);
    }
}

AMAppItemList RelatedAppFilesScanner::relatedFilesToApplicationAtPath(const QString& path, const AMAppItemList& installed) {
    if (path.isEmpty()) qCDebug(lcUninstall, ".......");
    return relatedFilesToApplication(*getAppItemWithFilePath(path), installed);
}

AMAppItemList RelatedAppFilesScanner::relatedFilesToApplication(const AMAppItem& application, const AMAppItemList& installed) {
    AMAppItemList list;
    AMAppItemPtr own = aConstructItem(application.path, true);
    // The inventory's record knows what the path alone may not (a manager's installation).
    own->kind = application.kind;
    own->installation = application.installation;
    if (!application.name.isEmpty()) own->name = application.name;
    if (!application.bundleID.isEmpty()) own->bundleID = application.bundleID;
    list.append(own);

    QString name = own->name;
    QString bundleID = own->bundleID;
    if (isMacLayout()) {
        const QVariantMap info = propertyListFromFile(application.path + "/Contents/Info.plist").toMap();
        name = info.value("CFBundleName").toString();
        if (name.isEmpty()) name = info.value("CFBundleExecutable").toString();
        bundleID = info.value("CFBundleIdentifier").toString();
    }
    if (name.isEmpty() || bundleID.isEmpty() || bundleID == " ") return list;

    GetPreferencePaths(list, name, bundleID);
    GetCachePaths(list, name, bundleID);
    GetLogPaths(list, name, bundleID);
    GetSavedStatePaths(list, name, bundleID);
    GetAppSupportPaths(list, name, bundleID);
    if (own->kind == AppKind::Flatpak) addWhole(list, home() + "/.var/app/" + bundleID);
    if (own->kind == AppKind::Snap) addWhole(list, home() + "/snap/" + bundleID);
    GetDownloadPaths(list, name, bundleID);
    GetGrowlPaths(list, name);
    if (own->kind == AppKind::AppImage) GetAppImageIntegrationPaths(list, own->path, name);
    LeftoverMatch::markTicks(list, name, bundleID, installed);
    return list;
}

}  // namespace velmora
