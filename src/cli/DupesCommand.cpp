#include "cli/DupesCommand.h"

#include "cli/Terminal.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/DuplicateResults.h"
#include "engine/erase/KxAuthorization.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <chrono>
#include <future>

namespace velmora::cli {

namespace {

const char* const kUsage = "usage: velmora-cli dupes [--hidden] [--system] [--json] [--delete [--yes]] DIR";

// Runs the search on a worker thread and draws its progress meanwhile.
SimpleTreeNode::Pointer search(const QString& folder, bool hidden, bool system) {
    DuplicateFilesOpt finder;
    finder.setSearchOption({hidden, system});
    std::future<bool> searched = std::async(std::launch::async, [&] { return finder.beginSearchAtPath(folder, 0); });
    {
        ProgressBar bar("Searching");
        while (searched.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready)
            bar.update(finder.getProgress(), finder.getCurrentSearchFile());
        bar.update(100);
    }
    searched.get();
    SimpleTreeNode::Pointer tree;
    if (!finder.getDuplicateFiles(tree)) tree = SimpleTreeNode::create(SimpleNodeData::groupDataWithName("Root"));
    return tree;
}

void printGroups(const SimpleTreeNode& tree) {
    const QList<SimpleTreeNode::Pointer>& groups = tree.children();
    printOut(QString("%1 duplicate group%2").arg(groups.size()).arg(groups.size() == 1 ? "" : "s"));
    for (const SimpleTreeNode::Pointer& group : groups) {
        const SimpleNodeData& data = group->data();
        const QString kind = data.extendName == "APP" ? " (application)" : "";
        printOut(QString("\n%1%2: %3 copies, %4 bytes").arg(data.name, kind).arg(group->children().size()).arg(data.fileSize));
        const QList<SimpleTreeNode::Pointer>& leaves = group->children();
        for (qsizetype i = 0; i < leaves.size(); ++i)
            printOut(QString("  %1%2").arg(leaves[i]->data().name, i + 1 == leaves.size() ? "  (kept)" : ""));
    }
}

void printGroupsJson(const SimpleTreeNode& tree) {
    QJsonArray groups;
    for (const SimpleTreeNode::Pointer& group : tree.children()) {
        QJsonArray files;
        for (const SimpleTreeNode::Pointer& leaf : group->children()) files.append(leaf->data().name);
        groups.append(QJsonObject{{"name", group->data().name},
                                  {"size", double(group->data().fileSize)},
                                  {"files", files}});
    }
    printJson(QJsonDocument(QJsonObject{{"groups", groups}}));
}

// Removes what select-all selects: every copy but the last of each group.
int removeCopies(const SimpleTreeNode::Pointer& tree, bool json) {
    DuplicateResults results(tree);
    results.setAllSelectOrNoSelect(*tree, true);
    const QList<SimpleTreeNode::Pointer> selected = results.allSelectNumArr();
    QList<SimpleTreeNode::Pointer> removed;
    quint64 freed = 0;
    {
        ProgressBar bar("Removing");
        for (qsizetype i = 0; i < selected.size(); ++i) {
            const SimpleTreeNode::Pointer& leaf = selected[i];
            if (!KxAuthorization::shareKxAuthorization()->synFastRemovePath(leaf->data().name)) continue;
            removed.append(leaf);
            freed += leaf->data().fileSize;
            results.refreshOutlineView(*leaf);
            bar.update(double(i + 1) * 100 / selected.size(), leaf->data().name);
        }
    }
    const qsizetype left = results.forgetRemoved(removed);
    const QString summary = QString("removed %1 of %2 copies, %3 bytes").arg(removed.size()).arg(selected.size()).arg(freed);
    if (json) printErr(summary);
    else printOut("\n" + summary);
    if (left > 0) {
        printErr("Some files that require admin access can't be removed!");
        return 1;
    }
    return 0;
}

}  // namespace

int runDupesCommand(QStringList args) {
    const bool hidden = takeFlag(args, "--hidden");
    const bool system = takeFlag(args, "--system");
    const bool json = takeFlag(args, "--json");
    const bool remove = takeFlag(args, "--delete");
    const bool yes = takeFlag(args, "--yes");
    if (args.size() != 1 || args.first().startsWith("--")) {
        printErr(kUsage);
        return 2;
    }
    const QString folder = QDir::cleanPath(QFileInfo(args.first()).absoluteFilePath());
    if (!QFileInfo(folder).isDir()) {
        printErr(QString("velmora-cli: \"%1\" is not a folder").arg(args.first()));
        return 2;
    }
    if (!QFileInfo(folder).isReadable()) {
        printErr(QString("velmora-cli: cannot read \"%1\"").arg(folder));
        return 1;
    }

    const SimpleTreeNode::Pointer tree = search(folder, hidden, system);
    if (json) printGroupsJson(*tree);
    else printGroups(*tree);

    if (!remove || tree->children().isEmpty()) return 0;
    if (!yes && !confirm("Remove every copy but the kept one of each group? This cannot be undone.")) return 0;
    return removeCopies(tree, json);
}

}  // namespace velmora::cli
