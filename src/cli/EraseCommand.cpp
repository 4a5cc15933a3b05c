#include "cli/EraseCommand.h"

#include "cli/Terminal.h"
#include "engine/erase/EraseList.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/erase/RemoveFileAndFolder.h"
#include "engine/history/DoDataBase.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QLoggingCategory>

namespace velmora::cli {
namespace {

constexpr const char* kUsage = "usage: velmora-cli erase [--yes] PATH...";

bool existsOnDisk(const QFileInfo& info) { return info.exists() || info.isSymLink(); }

// The record the page would list for a chosen path. Links are erased as links.
FileObj recordFor(const QString& path) {
    const QFileInfo info(path);
    FileObj record;
    record.name = info.fileName();
    record.url = path;
    record.isSelect = true;
    if (info.isDir() && !info.isSymLink()) {
        record.type = "Folder";
        record.isDir = true;
    } else {
        record.type = info.suffix();
        record.size = info.isSymLink() ? 0 : quint64(info.size());
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
                         bar.update(qMax(progress, 2.0f), QString("%1 of %2 items  %3").arg(index).arg(engine.itemCount()).arg(path));
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
        const QString path = QDir::cleanPath(QFileInfo(argument).absoluteFilePath());
        if (path == "/") {
            printErr(QString("velmora-cli: refusing to erase \"%1\": it is the root folder").arg(printable(argument)));
            return 2;
        }
        if (!existsOnDisk(QFileInfo(path))) {
            printErr(QString("velmora-cli: cannot erase \"%1\": no such file or folder").arg(printable(argument)));
            return 2;
        }
        const bool listed = std::any_of(records.cbegin(), records.cend(), [&path](const FileObj& record) { return record.url == path; });
        if (!listed) records.append(recordFor(path));
    }

    const QString levelName = EraserLevel::displayName(EraserLevel::clamped());
    const QString items = records.size() == 1 ? QString("\"%1\"").arg(printable(records.first().url)) : QString("%1 items").arg(records.size());
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
        const bool erased = outcome && outcome->failStr == "Success" && !existsOnDisk(QFileInfo(record.url));
        record.failStr = erased ? "Erased" : "Failed";
        if (!erased) {
            const QString reason = outcome && !outcome->failReason.isEmpty() ? outcome->failReason
                                   : outcome ? QString("it is still there") : QString("the erase did not reach it");
            printErr(QString("velmora-cli: %1: %2").arg(printable(record.url), printable(reason)));
        }
        allErased = allErased && erased;
        printOut(QString("%1  %2").arg(record.failStr, printable(record.url)));
    }
    DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr(records);
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeFileHistory, "1");
    return allErased ? 0 : 1;
}

}  // namespace velmora::cli
