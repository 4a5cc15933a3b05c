#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <sqlite3.h>

// Direct access to a history database file, so tests can check what the engine
// stored and plant entries with fixed keys.
namespace HistorySql {

// Runs statements that return no rows; true on success.
inline bool exec(const QString& databasePath, const QString& sql) {
    sqlite3* database = nullptr;
    bool ok = sqlite3_open(databasePath.toUtf8().constData(), &database) == SQLITE_OK &&
              sqlite3_exec(database, sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return ok;
}

// The integer in the first column of the first row; -1 when the query failed.
inline int count(const QString& databasePath, const QString& sql) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    int value = -1;
    if (sqlite3_open_v2(databasePath.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, sql.toUtf8().constData(), -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        value = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return value;
}

// Plants one entry with a fixed key: its TimeBase row, the header row and one
// row per item, stored as (item, level, result). The tables are made if missing,
// as a database prepared outside the engine would hold them.
inline bool plantEntry(const QString& databasePath, const QString& key, const QString& type,
                       const QList<QStringList>& items) {
    QString sql = QString("CREATE TABLE IF NOT EXISTS TimeBase (Time TEXT, Type TEXT);"
                          "CREATE TABLE IF NOT EXISTS BaseTable (Itmes TEXT, ErasureAlgorithm TEXT, Result TEXT, Time TEXT);"
                          "INSERT INTO TimeBase VALUES ('%1','%2');"
                          "INSERT INTO BaseTable VALUES ('Items','Erasure Standard','Result','%1');")
                      .arg(key, type);
    for (const QStringList& item : items)
        sql += QString("INSERT INTO BaseTable VALUES ('%1','%2','%3','%4');").arg(item.at(0), item.at(1), item.at(2), key);
    return exec(databasePath, sql);
}

}  // namespace HistorySql
