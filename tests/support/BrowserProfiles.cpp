#include "support/BrowserProfiles.h"

#include "support/TestFiles.h"

#include <cstdlib>
#include <filesystem>
#include <sqlite3.h>
#include <stdexcept>

namespace velmora::test {
namespace {

// Chrome's History, Login Data and Cookies tables.
constexpr const char* kChromeHistory = R"(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE urls(id INTEGER PRIMARY KEY AUTOINCREMENT,url LONGVARCHAR,title LONGVARCHAR,visit_count INTEGER DEFAULT 0 NOT NULL,typed_count INTEGER DEFAULT 0 NOT NULL,last_visit_time INTEGER NOT NULL,hidden INTEGER DEFAULT 0 NOT NULL);
CREATE INDEX urls_url_index ON urls (url);
CREATE TABLE visits(id INTEGER PRIMARY KEY AUTOINCREMENT,url INTEGER NOT NULL,visit_time INTEGER NOT NULL,from_visit INTEGER,transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,visit_duration INTEGER DEFAULT 0 NOT NULL,incremented_omnibox_typed_score BOOLEAN DEFAULT FALSE NOT NULL,opener_visit INTEGER,originator_cache_guid TEXT,originator_visit_id INTEGER,originator_from_visit INTEGER,originator_opener_visit INTEGER,is_known_to_sync BOOLEAN DEFAULT FALSE NOT NULL,consider_for_ntp_most_visited BOOLEAN DEFAULT FALSE NOT NULL);
CREATE INDEX visits_url_index ON visits (url);
CREATE TABLE downloads (id INTEGER PRIMARY KEY,guid VARCHAR NOT NULL,current_path LONGVARCHAR NOT NULL,target_path LONGVARCHAR NOT NULL,start_time INTEGER NOT NULL,received_bytes INTEGER NOT NULL,total_bytes INTEGER NOT NULL,state INTEGER NOT NULL,danger_type INTEGER NOT NULL,interrupt_reason INTEGER NOT NULL,hash BLOB NOT NULL,end_time INTEGER NOT NULL,opened INTEGER NOT NULL,last_access_time INTEGER NOT NULL,transient INTEGER NOT NULL,referrer VARCHAR NOT NULL,site_url VARCHAR NOT NULL,embedder_download_data VARCHAR NOT NULL,tab_url VARCHAR NOT NULL,tab_referrer_url VARCHAR NOT NULL,http_method VARCHAR NOT NULL,by_ext_id VARCHAR NOT NULL,by_ext_name VARCHAR NOT NULL,by_web_app_id VARCHAR NOT NULL,etag VARCHAR NOT NULL,last_modified VARCHAR NOT NULL,mime_type VARCHAR(255) NOT NULL,original_mime_type VARCHAR(255) NOT NULL);
CREATE TABLE downloads_url_chains (id INTEGER NOT NULL,chain_index INTEGER NOT NULL,url LONGVARCHAR NOT NULL, PRIMARY KEY (id, chain_index));
CREATE TABLE keyword_search_terms (keyword_id INTEGER NOT NULL,url_id INTEGER NOT NULL,term LONGVARCHAR NOT NULL,normalized_term LONGVARCHAR NOT NULL);
CREATE INDEX keyword_search_terms_index1 ON keyword_search_terms (keyword_id, normalized_term);
)";
constexpr const char* kChromeLogins = R"(
CREATE TABLE logins (origin_url VARCHAR NOT NULL,action_url VARCHAR,username_element VARCHAR,username_value VARCHAR,password_element VARCHAR,password_value BLOB,submit_element VARCHAR,signon_realm VARCHAR NOT NULL,date_created INTEGER NOT NULL,blacklisted_by_user INTEGER NOT NULL,scheme INTEGER NOT NULL,password_type INTEGER,times_used INTEGER,form_data BLOB,display_name VARCHAR,icon_url VARCHAR,federation_url VARCHAR,skip_zero_click INTEGER,generation_upload_status INTEGER,possible_username_pairs BLOB,id INTEGER PRIMARY KEY AUTOINCREMENT,date_last_used INTEGER NOT NULL DEFAULT 0,moving_blocked_for BLOB,date_password_modified INTEGER NOT NULL DEFAULT 0,UNIQUE (origin_url, username_element, username_value, password_element, signon_realm));
)";
constexpr const char* kChromeCookies = R"(
CREATE TABLE cookies(creation_utc INTEGER NOT NULL,host_key TEXT NOT NULL,top_frame_site_key TEXT NOT NULL,name TEXT NOT NULL,value TEXT NOT NULL,encrypted_value BLOB NOT NULL,path TEXT NOT NULL,expires_utc INTEGER NOT NULL,is_secure INTEGER NOT NULL,is_httponly INTEGER NOT NULL,last_access_utc INTEGER NOT NULL,has_expires INTEGER NOT NULL,is_persistent INTEGER NOT NULL,priority INTEGER NOT NULL,samesite INTEGER NOT NULL,source_scheme INTEGER NOT NULL,source_port INTEGER NOT NULL,last_update_utc INTEGER NOT NULL,UNIQUE (host_key, top_frame_site_key, name, path, source_scheme, source_port));
)";
// Firefox's places.sqlite and cookies.sqlite tables.
constexpr const char* kFirefoxPlaces = R"(
CREATE TABLE moz_origins (id INTEGER PRIMARY KEY,prefix TEXT NOT NULL,host TEXT NOT NULL,frecency INTEGER NOT NULL,recalc_frecency INTEGER NOT NULL DEFAULT 0,alt_frecency INTEGER,recalc_alt_frecency INTEGER NOT NULL DEFAULT 0,UNIQUE (prefix, host));
CREATE TABLE moz_places (id INTEGER PRIMARY KEY,url LONGVARCHAR,title LONGVARCHAR,rev_host LONGVARCHAR,visit_count INTEGER DEFAULT 0,hidden INTEGER DEFAULT 0 NOT NULL,typed INTEGER DEFAULT 0 NOT NULL,frecency INTEGER DEFAULT -1 NOT NULL,last_visit_date INTEGER,guid TEXT,foreign_count INTEGER DEFAULT 0 NOT NULL,url_hash INTEGER DEFAULT 0 NOT NULL,description TEXT,preview_image_url TEXT,site_name TEXT,origin_id INTEGER REFERENCES moz_origins(id),recalc_frecency INTEGER NOT NULL DEFAULT 0,alt_frecency INTEGER,recalc_alt_frecency INTEGER NOT NULL DEFAULT 0);
CREATE TABLE moz_historyvisits (id INTEGER PRIMARY KEY,from_visit INTEGER,place_id INTEGER,visit_date INTEGER,visit_type INTEGER,session INTEGER,source INTEGER DEFAULT 0 NOT NULL,triggeringPlace_id INTEGER);
CREATE TABLE moz_anno_attributes (id INTEGER PRIMARY KEY,name VARCHAR(32) UNIQUE NOT NULL);
CREATE TABLE moz_annos (id INTEGER PRIMARY KEY,place_id INTEGER NOT NULL,anno_attribute_id INTEGER,content LONGVARCHAR,flags INTEGER DEFAULT 0,expiration INTEGER DEFAULT 0,type INTEGER DEFAULT 0,dateAdded INTEGER DEFAULT 0,lastModified INTEGER DEFAULT 0);
CREATE TABLE moz_keywords (id INTEGER PRIMARY KEY AUTOINCREMENT,keyword TEXT UNIQUE,place_id INTEGER,post_data TEXT);
)";
constexpr const char* kFirefoxCookies = R"(
CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY,originAttributes TEXT NOT NULL DEFAULT '',name TEXT,value TEXT,host TEXT,path TEXT,expiry INTEGER,lastAccessed INTEGER,creationTime INTEGER,isSecure INTEGER,isHttpOnly INTEGER,inBrowserElement INTEGER DEFAULT 0,sameSite INTEGER DEFAULT 0,rawSameSite INTEGER DEFAULT 0,schemeMap INTEGER DEFAULT 0,isPartitionedAttributeSet INTEGER DEFAULT 0,CONSTRAINT moz_uniqueid UNIQUE (name, host, path, originAttributes));
)";
// Safari's History.db tables.
constexpr const char* kSafariHistory = R"(
CREATE TABLE history_items (id INTEGER PRIMARY KEY AUTOINCREMENT,url TEXT NOT NULL UNIQUE,domain_expansion TEXT NULL,visit_count INTEGER NOT NULL,daily_visit_counts BLOB NOT NULL,weekly_visit_counts BLOB NULL,autocomplete_triggers BLOB NULL,should_recompute_derived_visit_counts INTEGER NOT NULL,visit_count_score INTEGER NOT NULL,status_code INTEGER NOT NULL DEFAULT 0);
CREATE TABLE history_visits (id INTEGER PRIMARY KEY AUTOINCREMENT,history_item INTEGER NOT NULL REFERENCES history_items(id) ON DELETE CASCADE,visit_time REAL NOT NULL,title TEXT NULL,load_successful BOOLEAN NOT NULL DEFAULT 1,http_non_get BOOLEAN NOT NULL DEFAULT 0,synthesized BOOLEAN NOT NULL DEFAULT 0,redirect_source INTEGER NULL UNIQUE REFERENCES history_visits(id) ON DELETE CASCADE,redirect_destination INTEGER NULL UNIQUE REFERENCES history_visits(id) ON DELETE CASCADE,origin INTEGER NOT NULL DEFAULT 0,generation INTEGER NOT NULL DEFAULT 0,attributes INTEGER NOT NULL DEFAULT 0,score INTEGER NOT NULL DEFAULT 0);
)";

class Database {
public:
    explicit Database(const std::string& path) {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) throw std::runtime_error("cannot open " + path);
    }
    ~Database() { sqlite3_close(db_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void exec(const std::string& sql) {
        char* error = nullptr;
        if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
            const std::string text = error ? error : "unknown error";
            sqlite3_free(error);
            throw std::runtime_error(text + " in: " + sql);
        }
    }
    // Runs one statement with text parameters bound in order.
    void insert(const std::string& sql, const std::vector<std::string>& values) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + " in: " + sql);
        for (size_t i = 0; i < values.size(); ++i)
            sqlite3_bind_text(statement, int(i + 1), values[i].c_str(), int(values[i].size()), SQLITE_TRANSIENT);
        const int status = sqlite3_step(statement);
        sqlite3_finalize(statement);
        if (status != SQLITE_DONE) throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + " in: " + sql);
    }
    sqlite3* handle() { return db_; }

private:
    sqlite3* db_ = nullptr;
};

void insertUrls(Database& db, const std::vector<std::string>& urls) {
    for (const std::string& url : urls) {
        db.insert("INSERT INTO urls(url,title,visit_count,last_visit_time) VALUES(?,?,1,13300000000000000)", {url, "Title of " + url});
        db.exec("INSERT INTO visits(url,visit_time) VALUES(last_insert_rowid(),13300000000000000)");
        db.insert("INSERT INTO keyword_search_terms VALUES(2,(SELECT max(id) FROM urls),?,?)", {"term", "term"});
    }
}

std::string numbered(const std::string& text, int i) { return text + std::to_string(i); }

}  // namespace

void makeFolders(const std::string& path) { std::filesystem::create_directories(path); }

FakeBrowserHome::FakeBrowserHome() {
    makeFolders(dir_ / "bin");
    makeFolders(dir_ / "share");
    set("HOME", path());
    set("VELMORA_HOME", path());
    set("VELMORA_LAYOUT", "linux");
    set("PATH", dir_ / "bin");
    set("XDG_DATA_DIRS", dir_ / "share");
    set("XDG_DATA_HOME", dir_ / ".local/share");
    set("XDG_CONFIG_HOME", dir_ / ".config");
}

FakeBrowserHome::~FakeBrowserHome() {
    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
        if (it->second)
            ::setenv(it->first.c_str(), it->second->c_str(), 1);
        else
            ::unsetenv(it->first.c_str());
    }
}

void FakeBrowserHome::set(const std::string& name, const std::string& value) {
    const char* previous = std::getenv(name.c_str());
    saved_.emplace_back(name, previous ? std::optional<std::string>(previous) : std::nullopt);
    ::setenv(name.c_str(), value.c_str(), 1);
}

void makeChromeProfile(const std::string& folder, const ChromeProfile& profile) {
    makeFolders(folder + "/Network");
    {
        Database history(folder + "/History");
        history.exec(kChromeHistory);
        insertUrls(history, profile.urls);
        for (int i = 1; i <= profile.downloads; ++i) {
            const std::string id = std::to_string(i);
            history.insert("INSERT INTO downloads VALUES(" + id + ",?,?,?,1,10,10,1,0,0,x'',2,0,0,0,'','','','','','GET','','','','','','text/plain','text/plain')",
                           {numbered("guid-", i), numbered("/tmp/file", i), numbered("/tmp/file", i)});
            history.insert("INSERT INTO downloads_url_chains VALUES(" + id + ",0,?)", {numbered("https://files.example/", i)});
            history.insert("INSERT INTO downloads_url_chains VALUES(" + id + ",1,?)", {numbered("https://cdn.example/", i)});
        }
    }
    {
        Database logins(folder + "/Login Data");
        logins.exec(kChromeLogins);
        for (int i = 0; i < profile.logins; ++i)
            logins.insert("INSERT INTO logins(origin_url,username_value,password_value,signon_realm,date_created,blacklisted_by_user,scheme) VALUES(?,?,x'00',?,1,0,0)",
                          {numbered("https://login.example/", i), "user", "https://login.example/"});
    }
    Database cookies(folder + (profile.networkCookies ? "/Network/Cookies" : "/Cookies"));
    cookies.exec(kChromeCookies);
    for (int i = 0; i < profile.cookies; ++i)
        cookies.insert("INSERT INTO cookies VALUES(1,?,'',?,'v',x'','/',0,1,1,1,1,1,1,0,2,443,1)", {".example.com", numbered("c", i)});
}

void makeFirefoxProfile(const std::string& folder, const FirefoxProfile& profile) {
    makeFolders(folder + "/startupCache");
    writeFile(folder + "/startupCache/startupCache.8.little", "cached bytes");
    makeFolders(folder + "/cache2/entries");
    writeFile(folder + "/cache2/entries/0A1B2C", "cached page");
    writeFile(folder + "/sessionstore.js", "{\"windows\":[]}");
    {
        Database places(folder + "/places.sqlite");
        places.exec(kFirefoxPlaces);
        places.exec("INSERT INTO moz_anno_attributes VALUES(1,'downloads/destinationFileURI')");
        for (int i = 1; i <= profile.places; ++i) {
            const std::string id = std::to_string(i);
            places.insert("INSERT INTO moz_places(id,url,title,rev_host,guid) VALUES(" + id + ",?,?,'moc.elpmaxe.',?)",
                          {numbered("https://place.example/", i), "Place", numbered("guid", i)});
            places.exec("INSERT INTO moz_historyvisits(place_id,visit_date,visit_type) VALUES(" + id + ",1,1)");
            places.insert("INSERT INTO moz_annos(place_id,anno_attribute_id,content) VALUES(" + id + ",1,?)", {numbered("file:///tmp/f", i)});
            places.insert("INSERT INTO moz_keywords(keyword,place_id) VALUES(?," + id + ")", {numbered("kw", i)});
        }
    }
    Database cookies(folder + "/cookies.sqlite");
    cookies.exec(kFirefoxCookies);
    for (int i = 0; i < profile.cookies; ++i)
        cookies.insert("INSERT INTO moz_cookies(name,value,host,path) VALUES(?,'v','.example.com','/')", {numbered("c", i)});
}

void makeSafariHistory(const std::string& path, int items, int visitsPerItem) {
    Database history(path);
    history.exec(kSafariHistory);
    for (int i = 0; i < items; ++i) {
        history.insert("INSERT INTO history_items(url,visit_count,daily_visit_counts,should_recompute_derived_visit_counts,visit_count_score) VALUES(?,1,x'',0,0)",
                       {numbered("https://safari.example/", i)});
        for (int v = 0; v < visitsPerItem; ++v) history.exec("INSERT INTO history_visits(history_item,visit_time) VALUES(last_insert_rowid(),1.0)");
    }
}

void addUrlsToWriteAheadLog(const std::string& historyPath, const std::vector<std::string>& urls) {
    Database history(historyPath);
    history.exec("PRAGMA journal_mode=WAL");
    // Closing without a checkpoint keeps the new rows in the log only.
    sqlite3_db_config(history.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    history.exec("BEGIN");
    insertUrls(history, urls);
    history.exec("COMMIT");
}

OpenDatabase::OpenDatabase(const std::string& path) {
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) throw std::runtime_error("cannot open " + path);
    // Reads the schema once, so the connection really joins the database and its log.
    sqlite3_exec(db_, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
}

OpenDatabase::~OpenDatabase() {
    sqlite3_db_config(db_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_close(db_);
}

void runSql(const std::string& database, const std::string& sql) { Database(database).exec(sql); }

long long rowCount(const std::string& database, const std::string& table) {
    sqlite3* db = nullptr;
    long long count = -1;
    if (sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db, ("SELECT count(*) FROM \"" + table + "\"").c_str(), -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW)
            count = sqlite3_column_int64(statement, 0);
        sqlite3_finalize(statement);
    }
    sqlite3_close(db);
    return count;
}

std::vector<std::string> filesContaining(const std::string& folder, const std::string& needle) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_symlink() || !entry.is_regular_file()) continue;
        if (readFile(entry.path().string()).find(needle) != std::string::npos) found.push_back(entry.path().string());
    }
    return found;
}

}  // namespace velmora::test
