#include "engine/history/DoDataBase.h"

#include "engine/erase/PublicUtilities.h"
#include "engine/history/HistoryKey.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QDebug>
#include <QHash>
#include <QLoggingCategory>
#include <QStringList>
#include <sqlite3.h>

namespace velmora {
namespace {

constexpr const char* kInsertEntry = "INSERT INTO TimeBase (Time,Type) VALUES (?,?);";
constexpr const char* kInsertRow = "INSERT INTO BaseTable (Itmes, ErasureAlgorithm,Result,Time) VALUES (?,?,?,?);";
// The database cannot be shipped prepared, so its tables are made on first use.
constexpr const char* kCreateTables =
    "CREATE TABLE IF NOT EXISTS TimeBase (Time TEXT, Type TEXT);"
    "CREATE TABLE IF NOT EXISTS BaseTable (Itmes TEXT, ErasureAlgorithm TEXT, Result TEXT, Time TEXT);";

// Null (after logging) when the database cannot be opened.
sqlite3* openDataBase(const QString& path) {
    sqlite3* database = nullptr;
    if (sqlite3_open(nativePath(path).constData(), &database) != SQLITE_OK) {
        sqlite3_close(database);
        qCWarning(lcHistory, "打开数据库失败！");
        return nullptr;
    }
    // The application and velmora-cli may write at the same moment.
    sqlite3_busy_timeout(database, 5000);
    if (sqlite3_exec(database, kCreateTables, nullptr, nullptr, nullptr) != SQLITE_OK)
        qCWarning(lcHistory, "create history tables: %s", sqlite3_errmsg(database));
    return database;
}

// Prepares one statement with its values bound as text parameters 1..n. Keys,
// types and paths only ever travel as parameters, never inside the SQL text, so
// a key such as "x' OR '1'='1" matches nothing instead of every row. Null
// (after finalizing) when the statement cannot be prepared.
sqlite3_stmt* prepare(sqlite3* database, const char* sql, const QStringList& values = {}) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK) {
        sqlite3_finalize(statement);
        return nullptr;
    }
    for (int i = 0; i < values.size(); ++i) {
        const QByteArray text = values[i].toUtf8();
        sqlite3_bind_text(statement, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    }
    return statement;
}

// Runs one statement that returns no rows; true when the step reports completion.
bool execute(sqlite3* database, const char* sql, const QStringList& values = {}) {
    sqlite3_stmt* statement = prepare(database, sql, values);
    const bool done = statement && sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    return done;
}

QString columnText(sqlite3_stmt* statement, int column) {
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
}

// The entry row and the header row that every entry starts with. The failure
// messages carry no error text, as the history has always logged them.
void writeEntryAndHeader(sqlite3* database, const QString& key, const QString& type) {
    if (!execute(database, kInsertEntry, {key, type})) qCWarning(lcHistory, "update time : %s", "");
    if (!execute(database, kInsertRow, {"Items", "Erasure Standard", "Result", key}))
        qCWarning(lcHistory, "update base: %s", "");
}

void writeItemRow(sqlite3* database, const QString& item, const QString& level, const QString& result,
                  const QString& key) {
    if (!execute(database, kInsertRow, {item, level, result, key})) qCWarning(lcHistory, "更新数据库表FIELDS出错: %s", "");
}

}  // namespace

DoDataBase* DoDataBase::returnDoDataBase() {
    static DoDataBase shared;
    return &shared;
}

QString DoDataBase::getDataBase() const { return StandardPaths::dataDir() + "/DataBase.db"; }

void DoDataBase::writePlistForHistoryWithArr(const FileObjList& items) {
    if (items.isEmpty()) return;
    const QString level = PublicUtilities::getEraserTimes();
    const QString key = HistoryKey::now();
    sqlite3* database = openDataBase(getDataBase());
    if (!database) return;
    // One transaction: the rows of a long run reach the disk together, not one by one.
    sqlite3_exec(database, "BEGIN;", nullptr, nullptr, nullptr);
    writeEntryAndHeader(database, key, kWipeFile);
    // The history is text to read: a byte of a name that is not text shows as U+FFFD.
    for (const FileObj& item : items) writeItemRow(database, displayPath(item.url), level, item.failStr, key);
    if (sqlite3_exec(database, "COMMIT;", nullptr, nullptr, nullptr) != SQLITE_OK)
        qCWarning(lcHistory, "write history: %s", sqlite3_errmsg(database));
    sqlite3_close(database);
}

void DoDataBase::writeWipeVolumesOrFree(const QString& volumeName, const QString& endText, bool isFree) {
    const QString level = PublicUtilities::getEraserTimes();
    const QString key = HistoryKey::now();
    sqlite3* database = openDataBase(getDataBase());
    if (!database) return;
    writeEntryAndHeader(database, key, kWipeVolume);
    const QString item = QString(isFree ? "Erase Free Space:%1" : "Erase Hard Drive:%1").arg(displayPath(volumeName));
    writeItemRow(database, item, level, endText, key);
    sqlite3_close(database);
}

HistoryDic DoDataBase::getAllData() { return readEntries("select * from TimeBase order by Time desc", {}, true); }

HistoryDic DoDataBase::getAllDataWithKey(const QString& type) {
    qCInfo(lcHistory, "------%s", qUtf8Printable(type));
    return readEntries("select * from (select * from TimeBase order by Time desc) where Type=?", {type}, false);
}

HistoryDic DoDataBase::readEntries(const char* entryQuery, const QStringList& values, bool logDictionary) {
    HistoryDic dictionary;
    sqlite3* database = openDataBase(getDataBase());
    if (!database) return dictionary;
    QStringList keys;
    sqlite3_stmt* statement = prepare(database, entryQuery, values);
    if (statement) {
        while (sqlite3_step(statement) == SQLITE_ROW) keys.append(columnText(statement, 0));
    }
    sqlite3_finalize(statement);
    // The rows of all these entries in one pass over the table, in the order stored, rather
    // than one search through the whole table per entry.
    QHash<QString, HistoryRows> rowsByKey;
    for (const QString& key : std::as_const(keys)) rowsByKey.insert(key, {});
    statement = prepare(database, "select * from BaseTable");
    if (statement) {
        while (sqlite3_step(statement) == SQLITE_ROW) {
            const auto rows = rowsByKey.find(columnText(statement, 3));
            if (rows == rowsByKey.end()) continue;
            rows->append({{"Items", columnText(statement, 0)},
                          {"Erasure Standard", columnText(statement, 1)},
                          {"Result", columnText(statement, 2)}});
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    for (const QString& key : std::as_const(keys)) {
        qCInfo(lcHistory, "-:%s:-", qUtf8Printable(key));
        dictionary.insert(key, rowsByKey.value(key));
        // The whole dictionary is logged after every entry; only format it
        // when someone reads the log.
        if (logDictionary && QLoggingCategory::defaultCategory()->isInfoEnabled())
            qCInfo(lcHistory).nospace().noquote() << "dic:----" << dictionary;
    }
    return dictionary;
}

HistoryRows DoDataBase::getValueWith(sqlite3* database, const QString& key) {
    HistoryRows rows;
    sqlite3_stmt* statement = prepare(database, "select * from BaseTable where Time=?", {key});
    if (statement) {
        while (sqlite3_step(statement) == SQLITE_ROW) {
            rows.append({{"Items", columnText(statement, 0)},
                         {"Erasure Standard", columnText(statement, 1)},
                         {"Result", columnText(statement, 2)}});
        }
    }
    sqlite3_finalize(statement);
    return rows;
}

QString DoDataBase::getTypeWithKey(const QString& key) {
    QString type;
    sqlite3* database = openDataBase(getDataBase());
    if (!database) return type;
    sqlite3_stmt* statement = prepare(database, "select Type from TimeBase where Time=?", {key});
    if (statement && sqlite3_step(statement) == SQLITE_ROW)
        type = columnText(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return type;
}

void DoDataBase::deleteDataWithKey(const QString& key) {
    sqlite3* database = openDataBase(getDataBase());
    if (!database) return;
    if (!execute(database, "delete from TimeBase where Time=?", {key}))
        qCWarning(lcHistory, "delete time error: %s", "");
    if (!execute(database, "delete from BaseTable where Time=?", {key}))
        qCWarning(lcHistory, "delete base error: %s", "");
    sqlite3_close(database);
}

void DoDataBase::deleteAllData() {
    for (const QString& key : getAllData().keys()) deleteDataWithKey(key);
    PublicUtilities::writeUpDataHistoryStr(kWipeFileHistory, "0");
    PublicUtilities::writeUpDataHistoryStr(kWipeVolumeHistory, "0");
}

}  // namespace velmora
