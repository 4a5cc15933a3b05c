#include "cli/HistoryCommand.h"

#include "cli/Terminal.h"
#include "engine/history/DoDataBase.h"
#include "engine/history/HistoryReport.h"
#include "engine/platform/NativePath.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLoggingCategory>

namespace velmora::cli {
namespace {

constexpr const char* kUsage =
    "usage: velmora-cli history [--type WipeFile|WipeVolume] [--json]\n"
    "       velmora-cli history delete KEY\n"
    "       velmora-cli history clear [--yes]\n"
    "       velmora-cli history export KEY FILE";

int usageError() {
    printErr(kUsage);
    return 2;
}

struct Entry {
    QString key;
    QString type;
    HistoryRows rows;
};

// Entries newest first: keys share one fixed format, so the descending string
// order is the time order, as in the history panel.
QList<Entry> loadEntries(const QString& type) {
    DoDataBase* history = DoDataBase::returnDoDataBase();
    const HistoryDic dictionary = type.isEmpty() ? history->getAllData() : history->getAllDataWithKey(type);
    QList<Entry> entries;
    for (auto it = dictionary.constEnd(); it != dictionary.constBegin();) {
        --it;
        entries.append({it.key(), type.isEmpty() ? history->getTypeWithKey(it.key()) : type, it.value()});
    }
    return entries;
}

// An item is a path, written with the same escape as in the plain listing and as erase
// prints it.
QJsonObject toJson(const Entry& entry) {
    QJsonArray rows;
    for (const HistoryRow& row : entry.rows) {
        QJsonObject object;
        for (auto it = row.constBegin(); it != row.constEnd(); ++it)
            object.insert(it.key(), it.key() == "Items" ? escapedPath(it.value()) : it.value());
        rows.append(object);
    }
    return {{"key", entry.key}, {"type", entry.type}, {"rows", rows}};
}

int listEntries(QStringList args) {
    const bool json = takeFlag(args, "--json");
    const QString type = takeOption(args, "--type");
    if (!args.isEmpty()) return usageError();
    if (!type.isEmpty() && type != DoDataBase::kWipeFile && type != DoDataBase::kWipeVolume) {
        printErr(QString("velmora-cli: unknown history type \"%1\" (choose WipeFile or WipeVolume)").arg(printable(type)));
        return 2;
    }
    const QList<Entry> entries = loadEntries(type);
    if (json) {
        QJsonArray array;
        for (const Entry& entry : entries) array.append(toJson(entry));
        printJson(QJsonDocument(array));
        return 0;
    }
    if (entries.isEmpty()) printOut("No erasure history.");
    for (const Entry& entry : entries) {
        printOut(printable(entry.key) + "  " + printable(entry.type));
        for (const HistoryRow& row : entry.rows)
            printOut(QString("  %1 | %2 | %3").arg(escapedPath(row.value("Items")), printable(row.value("Erasure Standard")),
                                      printable(row.value("Result"))));
    }
    return 0;
}

int deleteEntry(const QStringList& args) {
    if (args.size() != 1) return usageError();
    const QString& key = args.first();
    DoDataBase* history = DoDataBase::returnDoDataBase();
    if (history->getTypeWithKey(key).isEmpty()) {
        printErr(QString("velmora-cli: no history entry \"%1\"").arg(printable(key)));
        return 1;
    }
    history->deleteDataWithKey(key);
    printOut(QString("Deleted %1").arg(printable(key)));
    return 0;
}

int clearAll(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    if (!args.isEmpty()) return usageError();
    if (!yes && !confirm("Delete the whole erasure history?")) {
        printErr("velmora-cli: nothing deleted");
        return 1;
    }
    DoDataBase::returnDoDataBase()->deleteAllData();
    printOut("Erasure history cleared.");
    return 0;
}

int exportEntry(const QStringList& args) {
    if (args.size() != 2) return usageError();
    const QString& key = args.at(0);
    const QString& file = args.at(1);
    const HistoryDic dictionary = DoDataBase::returnDoDataBase()->getAllData();
    if (!dictionary.contains(key)) {
        printErr(QString("velmora-cli: no history entry \"%1\"").arg(printable(key)));
        return 1;
    }
    if (!HistoryReport::writeHTML(file, key, dictionary.value(key))) {
        printErr(QString("velmora-cli: cannot write \"%1\"").arg(printable(file)));
        return 1;
    }
    printOut(QString("Exported %1 to %2").arg(printable(key), printable(file)));
    return 0;
}

}  // namespace

int runHistoryCommand(QStringList args) {
    // The history engine narrates every read in the log; a terminal shows only
    // its warnings (QT_LOGGING_RULES="default.info=true" brings the rest back).
    QLoggingCategory::setFilterRules("default.info=false");
    const QString action = args.isEmpty() ? QString() : args.first();
    if (action == "delete") return deleteEntry(args.mid(1));
    if (action == "clear") return clearAll(args.mid(1));
    if (action == "export") return exportEntry(args.mid(1));
    return listEntries(args);
}

}  // namespace velmora::cli
