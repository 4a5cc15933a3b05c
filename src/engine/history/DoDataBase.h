#pragma once

#include "engine/erase/FileObj.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

struct sqlite3;

namespace velmora {

// One row of a history entry, keyed "Items", "Erasure Standard" and "Result".
using HistoryRow = QMap<QString, QString>;
using HistoryRows = QList<HistoryRow>;
// Entry key ("YYYY-MM-dd HH-mm-ss") to the entry's rows, header row first.
using HistoryDic = QMap<QString, HistoryRows>;

// The erasure history in the SQLite database "DataBase.db" of the per-user data
// folder: one TimeBase row per run (key, type) and its BaseTable rows (a header
// row, then one row per item). Every call opens its own connection and closes
// it before returning. Failures are only logged: an unopenable database makes
// writes no-ops and reads empty.
class DoDataBase {
public:
    static constexpr const char* kWipeFile = "WipeFile";
    static constexpr const char* kWipeVolume = "WipeVolume";
    // History-present flags in "SteadyWiperBase": "1" when history of that kind
    // exists, "0" after it was cleared.
    static constexpr const char* kWipeFileHistory = "WipeFileHistory";
    static constexpr const char* kWipeVolumeHistory = "WipeVolumeHistory";

    static DoDataBase* returnDoDataBase();

    QString getDataBase() const;

    // One "WipeFile" entry for a file-eraser run; nothing for an empty list.
    void writePlistForHistoryWithArr(const FileObjList& items);
    // One "WipeVolume" entry with one item row; `isFree` marks a free-space wipe.
    void writeWipeVolumesOrFree(const QString& volumeName, const QString& endText, bool isFree);

    HistoryDic getAllData();
    // Entries of one type, "WipeFile" or "WipeVolume".
    HistoryDic getAllDataWithKey(const QString& type);
    // The rows of one entry on an open connection, in the order stored.
    HistoryRows getValueWith(sqlite3* database, const QString& key);
    // The type of an entry; empty when the key is unknown.
    QString getTypeWithKey(const QString& key);

    // Removes the entry from both tables; an unknown key is no error.
    void deleteDataWithKey(const QString& key);
    // Removes every entry and sets both history flags to "0".
    void deleteAllData();

private:
    DoDataBase() = default;
    // Runs `entryQuery` (Time first) with `values` bound and reads each entry's rows.
    HistoryDic readEntries(const char* entryQuery, const QStringList& values, bool logDictionary);
};

}  // namespace velmora
