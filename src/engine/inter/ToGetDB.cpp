#include "engine/inter/ToGetDB.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"

#include <sqlite3.h>

namespace velmora {
namespace {

// The first statement's failure text and the second's, as the log has always written them.
constexpr const char* kStatementLog[] = {"delete time error: %s", "delete base error: %s"};

}  // namespace

ToGetDB& ToGetDB::returnToGetDB() {
    static ToGetDB instance;
    return instance;
}

// Opens, runs each statement once (a failed one does not stop the next), closes.
bool ToGetDB::runDeletes(const QString& path, const QStringList& statements) {
    m_lastError.clear();
    sqlite3* db = nullptr;
    if (sqlite3_open(nativePath(path).constData(), &db) != SQLITE_OK) {
        m_lastError = QString("cannot open the database: %1").arg(sqlite3_errmsg(db));
        sqlite3_close(db);
        qCInfo(lcInter, "打开数据库失败！");
        return false;
    }
    for (qsizetype i = 0; i < statements.size(); ++i) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(db, statements[i].toUtf8().constData(), -1, &statement, nullptr);
        if (sqlite3_step(statement) != SQLITE_DONE) {
            if (m_lastError.isEmpty()) m_lastError = QString("%1: %2").arg(statements[i], sqlite3_errmsg(db));
            qCInfo(lcInter, kStatementLog[i == 0 ? 0 : 1], static_cast<const char*>(nullptr));
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(db);
    return m_lastError.isEmpty();
}

// Read only: a scan leaves the profile as it is and creates no database that is missing.
int ToGetDB::count(const QString& path, const char* statementText, bool logOpenFailure) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(nativePath(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        if (logOpenFailure) qCInfo(lcInter, "打开数据库失败！");
        return 0;
    }
    int result = 0;
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, statementText, -1, &statement, nullptr);
    if (sqlite3_step(statement) == SQLITE_ROW) {
        result = sqlite3_column_int(statement, 0);
        qCInfo(lcInter, "------%d", result);
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return result;
}

bool ToGetDB::compactDatabase(const QString& path) {
    m_lastError.clear();
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(nativePath(path).constData(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        m_lastError = QString("cannot open the database: %1").arg(sqlite3_errmsg(db));
        sqlite3_close(db);
        return false;
    }
    // Checkpoint before and after the rewrite: VACUUM in WAL mode writes through the log.
    for (const char* statement : {"PRAGMA secure_delete=ON", "PRAGMA wal_checkpoint(TRUNCATE)", "VACUUM",
                                  "PRAGMA wal_checkpoint(TRUNCATE)"}) {
        sqlite3_stmt* prepared = nullptr;
        int status = sqlite3_prepare_v2(db, statement, -1, &prepared, nullptr);
        bool busy = false;
        if (status == SQLITE_OK) {
            while ((status = sqlite3_step(prepared)) == SQLITE_ROW) {
                // wal_checkpoint answers (busy, log frames, checkpointed frames); busy
                // means a reader kept part of the log.
                if (sqlite3_column_count(prepared) == 3 && sqlite3_column_int(prepared, 0) != 0) busy = true;
            }
        }
        sqlite3_finalize(prepared);
        if (status != SQLITE_DONE || busy) {
            m_lastError = QString("%1: %2").arg(statement, busy ? "the database is in use" : sqlite3_errmsg(db));
            break;
        }
    }
    sqlite3_close(db);
    return m_lastError.isEmpty();
}

bool ToGetDB::toDeleteHistoryWith(const QString& path) { return runDeletes(path, {"delete from urls"}); }
bool ToGetDB::toDeleteDownloadWith(const QString& path) {
    return runDeletes(path, {"delete from downloads", "delete from downloads_url_chains"});
}
bool ToGetDB::toDeletePasswordWith(const QString& path) { return runDeletes(path, {"delete from logins"}); }
bool ToGetDB::toDeleteGoogleCookiesWith(const QString& path) { return runDeletes(path, {"delete from cookies"}); }
bool ToGetDB::operaDeleteHistoryWith(const QString& path) { return runDeletes(path, {"delete from urls", "delete from visits"}); }
bool ToGetDB::operaDeleteDownloadWith(const QString& path) {
    return runDeletes(path, {"delete from downloads", "delete from downloads_url_chains"});
}
bool ToGetDB::operaDeletePasswordWith(const QString& path) { return runDeletes(path, {"delete from keyword_search_terms"}); }
bool ToGetDB::firefoxDeleteHistoryWith(const QString& path) { return runDeletes(path, {"delete from moz_historyvisits"}); }
bool ToGetDB::firefoxDeleteDownloadWith(const QString& path) { return runDeletes(path, {"delete from moz_annos"}); }
bool ToGetDB::firefoxDeletePasswordWith(const QString& path) { return runDeletes(path, {"delete from moz_keywords"}); }
bool ToGetDB::safariDeleteHistoryWith(const QString& path) {
    return runDeletes(path, {"delete from history_items", "delete from history_visits"});
}

int ToGetDB::getGoogleHistoryItems(const QString& path) { return count(path, "select count(*) from urls"); }
int ToGetDB::getGoogleDownloadItems(const QString& path) { return count(path, "select count(*) from downloads"); }
int ToGetDB::getGooglePasswordItems(const QString& path) { return count(path, "select count(*) from logins"); }
int ToGetDB::getGoogleCookiesItems(const QString& path) { return count(path, "select count(*) from cookies"); }
int ToGetDB::getOperaHistoryItems(const QString& path) { return count(path, "select count(*) from urls"); }
int ToGetDB::getOperaDownloadItems(const QString& path) { return count(path, "select count(*) from downloads"); }
int ToGetDB::getOperaPasswordItems(const QString& path) {
    return count(path, "select count(*) from keyword_search_terms", false);
}
int ToGetDB::getSafariBrowsingHistoryItems(const QString& path) { return count(path, "select count(*) from history_visits"); }
int ToGetDB::getFirefoxHistoryItems(const QString& path) { return count(path, "select count(*) from moz_historyvisits"); }
int ToGetDB::getFirefoxDownloadItmes(const QString& path) { return count(path, "select count(*) from moz_annos"); }
int ToGetDB::getFirefoxPasswordItems(const QString& path) { return count(path, "select count(*) from moz_keywords"); }

}  // namespace velmora
