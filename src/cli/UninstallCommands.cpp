#include "cli/UninstallCommands.h"

#include "cli/Terminal.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/ApplicationInventory.h"
#include "engine/uninstall/RelatedAppFilesScanner.h"
#include "engine/uninstall/UninstallSession.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <sys/stat.h>

namespace velmora::cli {
namespace {

constexpr const char* kAppsUsage = "usage: velmora-cli apps [--json] [--tab applications|widgets|plugins]";
constexpr const char* kRelatedUsage = "usage: velmora-cli related [--json] APP";
constexpr const char* kUninstallUsage = "usage: velmora-cli uninstall [--yes] [--include-possible] [--json] APP...";
const QStringList kTabNames = {"applications", "widgets", "plugins"};

QString kindText(AppKind kind) {
    switch (kind) {
    case AppKind::File: return "file";
    case AppKind::Bundle: return "bundle";
    case AppKind::AppImage: return "appimage";
    case AppKind::AppFolder: return "folder";
    case AppKind::Flatpak: return "flatpak";
    case AppKind::Snap: return "snap";
    case AppKind::Widget: return "widget";
    case AppKind::Plugin: return "plugin";
    }
    return {};
}

bool exists(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

QJsonObject appJson(const AMAppItem& item) {
    return {{"name", displayPath(item.name)}, {"path", escapedPath(item.path)}, {"bundleID", item.bundleID},
            {"version", item.bundleVersion}, {"kind", kindText(item.kind)}, {"size", item.size},
            {"isSystemApp", item.isSystemApp}};
}

QJsonObject relatedJson(const AMAppItem& item, bool preTicked) {
    QJsonObject entry{{"path", escapedPath(item.path)}, {"name", displayPath(item.name)}, {"size", item.size},
                      {"preTicked", preTicked}, {"possibleMatch", item.isPossibleMatch}};
    if (!item.sharedWith.isEmpty()) entry["sharedWith"] = displayPath(item.sharedWith);
    return entry;
}

// The pre-ticked mark of the listing: [x] ticked, [?] possible match, [ ] left for another application.
QString tickMark(const AMAppItem& item, bool preTicked) {
    if (preTicked) return "[x]";
    return item.sharedWith.isEmpty() ? "[?]" : "[ ]";
}

QString noteOf(const AMAppItem& item) {
    if (!item.sharedWith.isEmpty()) return QString("  (also matches %1)").arg(printable(displayPath(item.sharedWith)));
    return item.isPossibleMatch ? "  (possible match)" : QString();
}

struct Resolved {
    AMAppItem application;
    bool found = false;
};

// An operand is a path (on a fake system root also the path below that root) or a name
// or identifier that the inventory lists; a name that several entries carry is refused.
Resolved resolve(const QString& operand, const AMAppItemList& inventory) {
    Resolved resolved;
    QString path = operand;
    const QString root = StandardPaths::systemRoot();
    if (operand.startsWith('/') && !exists(path) && root != "/" && exists(root + operand)) path = root + operand;
    if (operand.contains('/') && exists(path)) {
        while (path.size() > 1 && path.endsWith('/')) path.chop(1);
        resolved.found = true;
        resolved.application = *RelatedAppFilesScanner::getAppItemWithFilePath(path, true);
        for (const AMAppItemPtr& item : inventory)
            if (item->path == path) resolved.application = *item;
        return resolved;
    }
    QStringList paths;
    for (const AMAppItemPtr& item : inventory) {
        if (item->name.compare(operand, Qt::CaseInsensitive) != 0 && item->bundleID != operand) continue;
        if (!paths.contains(item->path)) paths.append(item->path);
        resolved.application = *item;
    }
    if (paths.size() > 1) {
        printErr(QString("velmora-cli: \"%1\" names %2 entries; give the path of one:").arg(printable(operand)).arg(paths.size()));
        for (const QString& candidate : paths) printErr("  " + escapedPath(candidate));
        return {};
    }
    resolved.found = paths.size() == 1;
    if (!resolved.found) printErr(QString("velmora-cli: no application \"%1\" (see velmora-cli apps)").arg(printable(operand)));
    return resolved;
}

AMAppItemList wholeInventory() {
    AMAppItemList all;
    for (int tab = 0; tab < ApplicationInventory::kTabCount; ++tab) all += ApplicationInventory::scanTab(tab);
    return all;
}

AMAppItemList installedApplications(const AMAppItemList& inventory) {
    AMAppItemList applications;
    for (const AMAppItemPtr& item : inventory)
        if (item->kind != AppKind::Widget && item->kind != AppKind::Plugin) applications.append(item);
    return applications;
}

}  // namespace

int runAppsCommand(QStringList args) {
    const bool json = takeFlag(args, "--json");
    const QString tabName = takeOption(args, "--tab");
    const int tab = tabName.isEmpty() ? 0 : int(kTabNames.indexOf(tabName));
    if (!args.isEmpty() || tab < 0) {
        printErr(kAppsUsage);
        return 2;
    }
    const AMAppItemList items = ApplicationInventory::scanTab(tab);
    for (const AMAppItemPtr& item : items) item->size = RelatedAppFilesScanner::getFileSizeItem(item->path);
    if (json) {
        QJsonArray list;
        for (const AMAppItemPtr& item : items) list.append(appJson(*item));
        printJson(QJsonDocument(list));
        return 0;
    }
    for (const AMAppItemPtr& item : items) {
        const QString version = item->bundleVersion.isEmpty() ? QString("-") : printable(item->bundleVersion);
        printOut(QString("%1  %2  %3  %4").arg(printable(displayPath(item->name)), version, item->size, escapedPath(item->path)));
    }
    printErr(QString(tab == 0 ? "%1 application(s)" : "%1 item(s)").arg(items.size()));
    return 0;
}

int runRelatedCommand(QStringList args) {
    const bool json = takeFlag(args, "--json");
    if (args.size() != 1 || args.first().startsWith("--")) {
        printErr(kRelatedUsage);
        return 2;
    }
    const AMAppItemList inventory = wholeInventory();
    const Resolved app = resolve(args.first(), inventory);
    if (!app.found) return 1;
    const AMAppItemList related =
        RelatedAppFilesScanner::relatedFilesToApplication(app.application, installedApplications(inventory));
    if (json) {
        QJsonArray list;
        for (qsizetype i = 0; i < related.size(); ++i) list.append(relatedJson(*related[i], i == 0 || related[i]->preTicked));
        printJson(QJsonDocument(list));
        return 0;
    }
    for (qsizetype i = 0; i < related.size(); ++i) {
        const bool ticked = i == 0 || related[i]->preTicked;
        printOut(QString("%1 %2  %3%4").arg(tickMark(*related[i], ticked), related[i]->size, escapedPath(related[i]->path),
                                          noteOf(*related[i])));
    }
    return 0;
}

int runUninstallCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    const bool includePossible = takeFlag(args, "--include-possible");
    const bool json = takeFlag(args, "--json");
    if (args.isEmpty() || std::any_of(args.begin(), args.end(), [](const QString& arg) { return arg.startsWith("--"); })) {
        printErr(kUninstallUsage);
        return 2;
    }
    const AMAppItemList inventory = wholeInventory();
    const AMAppItemList installed = installedApplications(inventory);
    QList<AMAppItemList> groups;
    for (const QString& operand : args) {
        const Resolved app = resolve(operand, inventory);
        if (!app.found) return 1;
        groups.append(RelatedAppFilesScanner::relatedFilesToApplication(app.application, installed));
    }
    UninstallSession session(groups);
    session.tickPreTicked(includePossible);

    for (const AMAppItemList& group : groups) {
        printErr(QString("%1:").arg(printable(displayPath(group.first()->name))));
        for (const AMAppItemPtr& item : group) {
            const bool ticked = session.isTicked(item);
            printErr(QString("  %1 %2  %3%4").arg(ticked ? "remove" : "keep  ", item->size, escapedPath(item->path),
                                                  ticked ? QString() : noteOf(*item)));
        }
    }
    const QStringList running = session.runningApplications();
    if (!running.isEmpty())
        printErr(QString("velmora-cli: warning: %1 is running. Quit it first.").arg(printable(running.join(", "))));
    const int count = int(session.selectDeletePath().size());
    if (!yes && !confirm(QString("Remove %1 item(s)%2?").arg(count).arg(running.isEmpty() ? "" : " although it is running"))) {
        printErr("velmora-cli: nothing was removed");
        return 1;
    }

    QJsonArray results;
    QObject::connect(&session, &UninstallSession::recordRemoved, [&](const AMAppItemPtr& item) {
        if (json) results.append(QJsonObject{{"path", escapedPath(item->path)}, {"status", "Removed"}});
        else printOut("Removed " + escapedPath(item->path));
    });
    QObject::connect(&session, &UninstallSession::recordFailed, [&](const AMAppItemPtr& item, const QString& reason) {
        if (json) results.append(QJsonObject{{"path", escapedPath(item->path)}, {"status", "Failed"}, {"reason", reason}});
        else printOut(QString("Failed  %1: %2").arg(escapedPath(item->path), printableMessage(reason)));
    });
    QEventLoop loop;
    QObject::connect(&session, &UninstallSession::removalFinished, &loop, &QEventLoop::quit);
    session.doRemove();
    if (session.isRemoving()) loop.exec();

    if (json) printJson(QJsonDocument(results));
    else printOut(session.closingMessage());
    for (const auto& [item, reason] : session.failures())
        printErr(QString("velmora-cli: not removed: %1: %2").arg(escapedPath(item->path), printableMessage(reason)));
    return session.failures().isEmpty() ? 0 : 1;
}

}  // namespace velmora::cli
