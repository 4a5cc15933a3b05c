#pragma once

#include "support/TestFiles.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

struct sqlite3;

namespace velmora::test {

// Browser profiles in a fake home, with real SQLite databases made from the browsers'
// own table definitions (the tables the cleaner touches and their neighbours).

// A fresh fake home for the life of the object: HOME (and VELMORA_HOME) point at it, the
// Linux layout applies, and PATH and XDG_DATA_DIRS point at empty folders in it, so the
// machine's own browsers are not found. Every variable set is restored afterwards.
class FakeBrowserHome {
public:
    FakeBrowserHome();
    ~FakeBrowserHome();
    FakeBrowserHome(const FakeBrowserHome&) = delete;
    FakeBrowserHome& operator=(const FakeBrowserHome&) = delete;

    const std::string& path() const { return dir_.path(); }
    std::string operator/(const std::string& name) const { return dir_ / name; }
    void set(const std::string& name, const std::string& value);  // children inherit it

private:
    TempDir dir_;
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

struct ChromeProfile {
    std::vector<std::string> urls;  // one urls row each, with a visit and a search term
    int downloads = 0;              // downloads rows, each with two url chain rows
    int logins = 0;
    int cookies = 0;
    bool networkCookies = true;     // Cookies in Network/ (newer browsers) or beside History
};
// Writes History, Login Data and Cookies into the profile folder (made with its parents).
void makeChromeProfile(const std::string& folder, const ChromeProfile& profile);

struct FirefoxProfile {
    int places = 0;  // moz_places rows, each with a visit, an annotation and a keyword
    int cookies = 0;
};
// Writes places.sqlite, cookies.sqlite, sessionstore.js and the cache2 and startupCache folders.
void makeFirefoxProfile(const std::string& folder, const FirefoxProfile& profile);

// Safari's History.db with `items` history_items rows, each with `visitsPerItem` visits.
void makeSafariHistory(const std::string& path, int items, int visitsPerItem);

// Adds urls rows to a History database in WAL mode and leaves them in its write-ahead
// log only (as a browser that did not close cleanly leaves them).
void addUrlsToWriteAheadLog(const std::string& historyPath, const std::vector<std::string>& urls);

// A connection kept open, as another program that holds the database would.
class OpenDatabase {
public:
    explicit OpenDatabase(const std::string& path);
    ~OpenDatabase();
    OpenDatabase(const OpenDatabase&) = delete;
    OpenDatabase& operator=(const OpenDatabase&) = delete;

private:
    sqlite3* db_ = nullptr;
};

void runSql(const std::string& database, const std::string& sql);  // throws on failure
long long rowCount(const std::string& database, const std::string& table);  // -1 when unreadable

// The files below a folder (links not followed) whose bytes contain `needle`.
std::vector<std::string> filesContaining(const std::string& folder, const std::string& needle);

void makeFolders(const std::string& path);  // like mkdir -p

}  // namespace velmora::test
