#include "cli/DupesCommand.h"

#include "cli/Terminal.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/DuplicateResults.h"
#include "engine/duplicate/DuplicateRemover.h"
#include "engine/platform/NativePath.h"

#include <QDir>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <future>
#include <memory>
#include <string>
#include <unistd.h>

namespace velmora::cli {

namespace {

const char* const kUsage = "usage: velmora-cli dupes [--hidden] [--system] [--json] [--delete [--yes]] DIR";

struct SearchResult {
    std::unique_ptr<DuplicateResults> results;
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
    if (!finder.getDuplicateFiles(result.results)) result.results = std::make_unique<DuplicateResults>(nullptr);
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

void printGroups(const DuplicateResults& results) {
    const std::vector<DuplicateResults::Group>& groups = results.groups(DuplicateResults::None);
    printOut(QString("%1 duplicate group%2").arg(groups.size()).arg(groups.size() == 1 ? "" : "s"));
    for (DuplicateResults::Group group : groups) {
        const QString kind = results.isBundleGroup(group) ? " (application)" : "";
        // One pass of arg(): a name holding "%1" is not taken for a place of the next value.
        printOut(QString("\n%1%2: %3 copies, %4 bytes")
                     .arg(escapedPath(results.groupName(group)), kind, QString::number(results.copyCount(group)),
                          QString::number(results.groupSize(group))));
        const QList<DuplicateResults::Copy> copies = results.copies(group);
        for (qsizetype i = 0; i < copies.size(); ++i)
            printOut(QString("  %1%2").arg(escapedPath(results.path(copies[i])), i + 1 == copies.size() ? "  (kept)" : ""));
    }
}

// Appends `text` as a JSON string, escaped the way Qt's JSON writer does.
void appendJsonString(std::string& out, const QString& text) {
    out += '"';
    for (const char c : text.toUtf8()) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (uchar(c) >= 0x20) {
                out += c;
            } else {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04x", unsigned(uchar(c)));
                out += escape;
            }
        }
    }
    out += '"';
}

// One group per line, written as it is made: a search with a million copies
// needs no second copy of the whole result as one JSON document.
void printGroupsJson(const DuplicateResults& results) {
    std::fputs("{\"groups\": [", stdout);
    const char* separator = "\n";
    std::string line;
    for (DuplicateResults::Group group : results.groups(DuplicateResults::None)) {
        line = separator;
        line += "{\"files\":[";
        const char* comma = "";
        for (DuplicateResults::Copy copy : results.copies(group)) {
            line += comma;
            appendJsonString(line, escapedPath(results.path(copy)));
            comma = ",";
        }
        line += "],\"name\":";
        appendJsonString(line, escapedPath(results.groupName(group)));
        line += ",\"size\":" + std::to_string(results.groupSize(group)) + "}";
        std::fwrite(line.data(), 1, line.size(), stdout);
        separator = ",\n";
    }
    std::fputs("\n]}\n", stdout);
}

// Removes what select-all selects: every copy but the last of each group,
// each only while it still equals a copy that stays.
int removeCopies(DuplicateResults& results, bool json) {
    results.setAllSelectOrNoSelect(DuplicateResults::None, true);
    const QList<DuplicateResults::Copy> selected = results.allSelectNumArr();
    const QList<DuplicateRemover::Removal> removals = DuplicateRemover::plan(results, selected);
    DuplicateRemover remover;
    QList<DuplicateResults::Copy> removed;
    QStringList leftReasons;
    bool refusedByTheSystem = false;
    quint64 freed = 0;
    {
        ProgressBar bar("Removing");
        for (qsizetype i = 0; i < selected.size(); ++i) {
            const QString& path = removals[i].copy.path;
            const DuplicateRemover::Verdict verdict = remover.remove(removals[i]);
            bar.update(double(i + 1) * 100 / selected.size(), displayPath(path));
            if (!verdict.removed()) {
                leftReasons.append(QString("velmora-cli: left \"%1\": %2").arg(escapedPath(path), printable(verdict.reason)));
                refusedByTheSystem = refusedByTheSystem || verdict.outcome == DuplicateRemover::Outcome::Failed;
                continue;
            }
            removed.append(selected[i]);
            freed += results.size(selected[i]);
        }
    }
    results.refreshOutlineView(removed);
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
    DuplicateResults& results = *found.results;
    if (json) printGroupsJson(results);
    else printGroups(results);
    reportUnreadable(found.unreadable);

    if (!remove || results.groups(DuplicateResults::None).empty()) return 0;
    if (!yes && !confirm("Remove every copy but the kept one of each group? This cannot be undone.")) return 0;
    return removeCopies(results, json);
}

}  // namespace velmora::cli
