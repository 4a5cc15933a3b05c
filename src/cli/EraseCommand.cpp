#include "cli/EraseCommand.h"

#include "cli/Terminal.h"
#include "engine/erase/EraseList.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/erase/RemoveFileAndFolder.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"

#include <QDir>
#include <QEventLoop>
#include <QLoggingCategory>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::cli {
namespace {

constexpr const char* kUsage = "usage: velmora-cli erase [--yes] PATH...";

// The operand as an absolute path in the lossless form. QDir::cleanPath only edits the
// text (no file-system access), so the bytes of every name stay as they are.
QString absolutePath(const QString& argument) {
    if (argument.startsWith('/')) return QDir::cleanPath(argument);
    char* folder = getcwd(nullptr, 0);
    const QString current = folder ? pathFromNative(folder) : QString();
    std::free(folder);
    return QDir::cleanPath(current + '/' + argument);
}

// The record the page would list for a chosen path. Links are erased as links.
FileObj recordFor(const QString& path, const struct stat& status) {
    FileObj record;
    record.name = path.mid(path.lastIndexOf('/') + 1);
    record.url = path;
    record.isSelect = true;
    if (S_ISDIR(status.st_mode)) {
        record.type = "Folder";
        record.isDir = true;
    } else {
        const qsizetype dot = record.name.lastIndexOf('.');
        record.type = dot < 0 ? QString() : record.name.mid(dot + 1);
        record.size = S_ISLNK(status.st_mode) ? 0 : quint64(status.st_size);
    }
    return record;
}

// Runs the engine over the erase list in an event loop, with a progress bar, and
// answers the engine's results.
FileObjList erase(const FileObjList& eraseList) {
    RemoveFileAndFolder engine;
    ProgressBar bar("Erasing");
    QEventLoop loop;
    FileObjList results;
    QObject::connect(&engine, &RemoveFileAndFolder::removeProgress, &loop,
                     [&bar, &engine](float progress, const QString& path, int index) {
                         bar.update(qMax(progress, 2.0f),
                                    QString("%1 of %2 items  %3").arg(index).arg(engine.itemCount()).arg(escapedPath(path)));
                     });
    QObject::connect(&engine, &RemoveFileAndFolder::removeObjEnd, &loop, [&loop, &results](const FileObjList& list) {
        results = list;
        loop.quit();
    });
    engine.benginToTraskWithArr(eraseList);
    loop.exec();
    bar.update(100.0);
    bar.finish();
    return results;
}

}  // namespace

int runEraseCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    if (args.isEmpty()) {
        printErr(kUsage);
        return 2;
    }
    FileObjList records;
    for (const QString& argument : args) {
        const QString path = absolutePath(argument);
        if (path == "/") {
            printErr(QString("velmora-cli: refusing to erase \"%1\": it is the root folder").arg(escapedPath(argument)));
            return 2;
        }
        struct stat status;
        if (statWithoutFollowing(nativePath(path), &status) != 0) {
            printErr(QString("velmora-cli: cannot erase \"%1\": no such file or folder").arg(escapedPath(argument)));
            return 2;
        }
        const bool listed = std::any_of(records.cbegin(), records.cend(), [&path](const FileObj& record) { return record.url == path; });
        if (!listed) records.append(recordFor(path, status));
    }

    const QString levelName = EraserLevel::displayName(EraserLevel::clamped());
    const QString items = records.size() == 1 ? QString("\"%1\"").arg(escapedPath(records.first().url)) : QString("%1 items").arg(records.size());
    if (!yes && !confirm(QString("Erase %1 beyond recovery (%2)?").arg(items, levelName))) {
        printErr("velmora-cli: nothing erased");
        return 1;
    }

    // The engine's per-item info lines would bury the progress bar; warnings stay
    // (QT_LOGGING_RULES="default.info=true" brings the info lines back).
    QLoggingCategory::setFilterRules("default.info=false");
    const FileObjList results = erase(EraseList::build(records));

    // As on the page: an item is erased exactly when the engine erased it (the tool
    // succeeded) and its path is gone. The results come in the order of the records.
    bool allErased = true;
    for (qsizetype i = 0; i < records.size(); ++i) {
        FileObj& record = records[i];
        const FileObj* outcome = i < results.size() ? &results.at(i) : nullptr;
        const bool erased = outcome && outcome->failStr == "Success" && !itemExists(record.url);
        record.failStr = erased ? "Erased" : "Failed";
        if (!erased) {
            const QString reason = outcome && !outcome->failReason.isEmpty() ? outcome->failReason
                                   : outcome ? QString("it is still there") : QString("the erase did not reach it");
            printErr(QString("velmora-cli: %1: %2").arg(escapedPath(record.url), printable(displayPath(reason))));
        }
        allErased = allErased && erased;
        printOut(QString("%1  %2").arg(record.failStr, escapedPath(record.url)));
    }
    DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr(records);
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeFileHistory, "1");
    return allErased ? 0 : 1;
}

}  // namespace velmora::cli
