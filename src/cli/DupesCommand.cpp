#include "cli/DupesCommand.h"

#include "cli/Terminal.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/DuplicateResults.h"
#include "engine/duplicate/DuplicateRemover.h"
#include "engine/platform/NativePath.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <cerrno>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <future>
#include <unistd.h>

namespace velmora::cli {

namespace {

const char* const kUsage = "usage: velmora-cli dupes [--hidden] [--system] [--json] [--delete [--yes]] DIR";

struct SearchResult {
    SimpleTreeNode::Pointer tree;
    QStringList unreadable;
};

// Runs the search on a worker thread and draws its progress meanwhile.
SearchResult search(const QString& folder, bool hidden, bool system) {
    DuplicateFilesOpt finder;
    finder.setSearchOption({hidden, system});
    std::future<bool> searched = std::async(std::launch::async, [&] { return finder.beginSearchAtPath(folder, 0); });
    {
        ProgressBar bar("Searching");
        while (searched.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready)
            bar.update(finder.getProgress(), displayPath(finder.getCurrentSearchFile()));
        bar.update(100);
    }
    searched.get();
    SearchResult result;
    if (!finder.getDuplicateFiles(result.tree))
        result.tree = SimpleTreeNode::create(SimpleNodeData::groupDataWithName("Root"));
    result.unreadable = finder.unreadablePaths();
    return result;
}

// What could not be read may have copies the search could not see.
void reportUnreadable(const QStringList& unreadable) {
    if (unreadable.isEmpty()) return;
    for (const QString& path : unreadable) printErr(QString("velmora-cli: could not read \"%1\"").arg(escapedPath(path)));
    printErr(QString("%1 %2 could not be read and %3 not compared")
                 .arg(unreadable.size())
                 .arg(unreadable.size() == 1 ? "item" : "items", unreadable.size() == 1 ? "was" : "were"));
}

void printGroups(const SimpleTreeNode& tree) {
    const QList<SimpleTreeNode::Pointer>& groups = tree.children();
    printOut(QString("%1 duplicate group%2").arg(groups.size()).arg(groups.size() == 1 ? "" : "s"));
    for (const SimpleTreeNode::Pointer& group : groups) {
        const SimpleNodeData& data = group->data();
        const QString kind = data.extendName == "APP" ? " (application)" : "";
        // One pass of arg(): a name holding "%1" is not taken for a place of the next value.
        printOut(QString("\n%1%2: %3 copies, %4 bytes")
                     .arg(escapedPath(data.name), kind, QString::number(group->children().size()),
                          QString::number(data.fileSize)));
        const QList<SimpleTreeNode::Pointer>& leaves = group->children();
        for (qsizetype i = 0; i < leaves.size(); ++i)
            printOut(QString("  %1%2").arg(escapedPath(leaves[i]->data().name), i + 1 == leaves.size() ? "  (kept)" : ""));
    }
}

// One group per line, written as it is made: a search with a million copies
// needs no second copy of the whole result as one JSON document.
void printGroupsJson(const SimpleTreeNode& tree) {
    std::fputs("{\"groups\": [", stdout);
    const char* separator = "\n";
    for (const SimpleTreeNode::Pointer& group : tree.children()) {
        QJsonArray files;
        for (const SimpleTreeNode::Pointer& leaf : group->children()) files.append(escapedPath(leaf->data().name));
        const QJsonObject object{{"name", escapedPath(group->data().name)},
                                 {"size", double(group->data().fileSize)},
                                 {"files", files}};
        std::fputs(separator, stdout);
        std::fputs(QJsonDocument(object).toJson(QJsonDocument::Compact).constData(), stdout);
        separator = ",\n";
    }
    std::fputs("\n]}\n", stdout);
}

// Removes what select-all selects: every copy but the last of each group,
// each only while it still equals a copy that stays.
int removeCopies(const SimpleTreeNode::Pointer& tree, bool json) {
    DuplicateResults results(tree);
    results.setAllSelectOrNoSelect(*tree, true);
    const QList<SimpleTreeNode::Pointer> selected = results.allSelectNumArr();
    const QList<DuplicateRemover::Removal> removals = DuplicateRemover::plan(selected);
    DuplicateRemover remover;
    QList<SimpleTreeNode::Pointer> removed;
    QStringList leftReasons;
    bool refusedByTheSystem = false;
    quint64 freed = 0;
    {
        ProgressBar bar("Removing");
        for (qsizetype i = 0; i < selected.size(); ++i) {
            const SimpleTreeNode::Pointer& leaf = selected[i];
            const DuplicateRemover::Verdict verdict = remover.remove(removals[i]);
            bar.update(double(i + 1) * 100 / selected.size(), displayPath(leaf->data().name));
            if (!verdict.removed()) {
                leftReasons.append(QString("velmora-cli: left \"%1\": %2").arg(escapedPath(leaf->data().name), printable(verdict.reason)));
                refusedByTheSystem = refusedByTheSystem || verdict.outcome == DuplicateRemover::Outcome::Failed;
                continue;
            }
            removed.append(leaf);
            freed += leaf->data().fileSize;
            results.refreshOutlineView(*leaf);
        }
    }
    const qsizetype left = results.forgetRemoved(removed);
    for (const QString& reason : std::as_const(leftReasons)) printErr(reason);
    const QString summary = QString("removed %1 of %2 copies, %3 bytes").arg(removed.size()).arg(selected.size()).arg(freed);
    if (json) printErr(summary);
    else printOut("\n" + summary);
    if (refusedByTheSystem) printErr("Some files that require admin access can't be removed!");
    return left > 0 ? 1 : 0;
}

// The operand as an absolute path, its bytes kept (Qt's file classes would lose
// those that are not text).
QString absoluteFolder(const QString& operand) {
    if (operand.startsWith('/')) return QDir::cleanPath(operand);
    QByteArray current(PATH_MAX, Qt::Uninitialized);
    if (!getcwd(current.data(), size_t(current.size()))) return QDir::cleanPath(operand);
    current.truncate(qstrlen(current.constData()));
    return QDir::cleanPath(pathFromNative(current) + '/' + operand);
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
    const QString folder = absoluteFolder(args.first());
    const int fd = openLongPath(nativePath(folder), O_RDONLY | O_DIRECTORY);
    const int error = errno;
    if (fd >= 0) close(fd);
    if (fd < 0 && error != EACCES) {
        printErr(QString("velmora-cli: \"%1\" is not a folder").arg(escapedPath(args.first())));
        return 2;
    }
    if (fd < 0) {
        printErr(QString("velmora-cli: cannot read \"%1\"").arg(escapedPath(folder)));
        return 1;
    }

    const SearchResult found = search(folder, hidden, system);
    const SimpleTreeNode::Pointer& tree = found.tree;
    if (json) printGroupsJson(*tree);
    else printGroups(*tree);
    reportUnreadable(found.unreadable);

    if (!remove || tree->children().isEmpty()) return 0;
    if (!yes && !confirm("Remove every copy but the kept one of each group? This cannot be undone.")) return 0;
    return removeCopies(tree, json);
}

}  // namespace velmora::cli
