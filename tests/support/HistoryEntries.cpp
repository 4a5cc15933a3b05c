#include "support/HistoryEntries.h"

#include <ctime>
#include <sqlite3.h>

namespace velmora::test {
namespace {

bool insert(sqlite3_stmt* statement, std::initializer_list<std::string> values) {
    int column = 0;
    for (const std::string& value : values)
        sqlite3_bind_text(statement, ++column, value.c_str(), int(value.size()), SQLITE_TRANSIENT);
    const bool done = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_reset(statement);
    return done;
}

std::string keyForHour(int hour) {
    const std::time_t when = std::time_t(1577836800) + std::time_t(hour) * 3600;  // 2020-01-01 00:00 UTC
    std::tm parts{};
    gmtime_r(&when, &parts);
    char key[32];
    std::strftime(key, sizeof key, "%Y-%m-%d %H-%M-%S", &parts);
    return key;
}

}  // namespace

std::string plantHistoryEntries(const std::string& databasePath, int entries, int itemsPerEntry) {
    sqlite3* database = nullptr;
    if (sqlite3_open(databasePath.c_str(), &database) != SQLITE_OK) {
        sqlite3_close(database);
        return {};
    }
    sqlite3_stmt* entry = nullptr;
    sqlite3_stmt* row = nullptr;
    bool written =
        sqlite3_exec(database,
                     "CREATE TABLE IF NOT EXISTS TimeBase (Time TEXT, Type TEXT);"
                     "CREATE TABLE IF NOT EXISTS BaseTable (Itmes TEXT, ErasureAlgorithm TEXT, Result TEXT, Time TEXT);"
                     "BEGIN;",
                     nullptr, nullptr, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, "INSERT INTO TimeBase VALUES (?,'WipeFile')", -1, &entry, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, "INSERT INTO BaseTable VALUES (?,?,?,?)", -1, &row, nullptr) == SQLITE_OK;
    std::string key;
    for (int index = 0; written && index < entries; ++index) {
        key = keyForHour(index);
        written = insert(entry, {key}) && insert(row, {"Items", "Erasure Standard", "Result", key});
        for (int item = 0; written && item < itemsPerEntry; ++item)
            written = insert(row, {"/home/anna/run " + std::to_string(index) + "/file " + std::to_string(item),
                                   "HMG Infosec Standard 5", "Erased", key});
    }
    sqlite3_finalize(entry);
    sqlite3_finalize(row);
    written = written && sqlite3_exec(database, "COMMIT;", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return written ? key : std::string();
}

}  // namespace velmora::test
