#include "engine/uninstall/AppWalkers.h"

#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/DesktopEntry.h"
#include "engine/uninstall/FolderEntries.h"
#include "engine/uninstall/RelatedAppFilesScanner.h"

namespace velmora::AppWalkers {
namespace {

bool isLinuxLayout() { return StandardPaths::layout() == StandardPaths::Layout::Linux; }

QString extensionOf(const QString& name) { return name.contains('.') ? name.section('.', -1) : QString(); }

// What the walker does with one entry: take it as a record, walk into it, or pass it by.
enum class Step { Take, Enter, Skip };
using Rule = std::function<Step(const QString& path, const FolderEntry& entry)>;

void walk(int folderFd, const QString& folder, const Rule& rule, const Found& found) {
    for (const FolderEntry& entry : readFolderEntries(folderFd)) {
        const QString path = folder + "/" + entry.name;
        const Step step = rule(path, entry);
        if (step == Step::Take) {
            found(RelatedAppFilesScanner::constructItem(path, true));
        } else if (step == Step::Enter) {
            const FolderFd child(openFolderAt(folderFd, entry.name));
            if (child.valid()) walk(child.get(), path, rule, found);
        }
    }
}

void walkRoot(const QString& root, const Rule& rule, const Found& found) {
    const FolderFd folder(openFolder(root));
    if (folder.valid()) walk(folder.get(), root, rule, found);
}

// Self-contained application folders (with a .desktop launcher) count in these roots only;
// the others hold AppImages alone.
bool takesApplicationFolders(const QString& root) {
    const QString home = StandardPaths::homeDir();
    const QString systemRoot = StandardPaths::systemRoot();
    return root == home + "/Applications" || root == home + "/.local/opt" ||
           root == (systemRoot == "/" ? QString() : systemRoot) + "/opt";
}

}  // namespace

void applicationsInPath(const QString& root, const Found& found) {
    if (isLinuxLayout()) {
        const bool folders = takesApplicationFolders(root);
        walkRoot(root, [folders](const QString& path, const FolderEntry& entry) {
            if (entry.type == FolderEntry::File) return entry.name.endsWith(".AppImage", Qt::CaseInsensitive) ? Step::Take : Step::Skip;
            if (entry.type != FolderEntry::Folder) return Step::Skip;
            return folders && launcherInFolder(path).valid() ? Step::Take : Step::Enter;
        }, found);
        return;
    }
    walkRoot(root, [](const QString&, const FolderEntry& entry) {
        if (entry.type != FolderEntry::Folder) return Step::Skip;
        return extensionOf(entry.name) == "app" ? Step::Take : Step::Enter;
    }, [&found](const AMAppItemPtr& item) {
        if (!item->isSystemApp) found(item);
    });
}

void widgetsInPath(const QString& root, const Found& found) {
    walkRoot(root, [linux = isLinuxLayout()](const QString&, const FolderEntry& entry) {
        if (entry.type != FolderEntry::Folder) return Step::Skip;
        return linux || extensionOf(entry.name) == "wdgt" ? Step::Take : Step::Enter;
    }, found);
}

void pluginsInPath(const QString& root, const Found& found) {
    static const QStringList kExtensions = {"app", "plugin", "webplugin", "component", "mdimporter", "qlgenerator",
                                            "dictionary", "safariextz"};
    walkRoot(root, [linux = isLinuxLayout()](const QString&, const FolderEntry& entry) {
        if (linux) return entry.type == FolderEntry::Folder || entry.type == FolderEntry::File ? Step::Take : Step::Skip;
        if (kExtensions.contains(extensionOf(entry.name))) return Step::Take;
        return entry.type == FolderEntry::Folder ? Step::Enter : Step::Skip;
    }, found);
}

}  // namespace velmora::AppWalkers
