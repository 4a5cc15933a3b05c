#include "InterTestSupport.h"
#include "engine/inter/BrowserCatalogue.h"
#include "engine/inter/BrowserCleanJob.h"
#include "support/BrowserProfiles.h"
#include "support/TestFiles.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <map>

using namespace velmora;
using namespace velmora::test;
using Status = CleanOutcome::Status;

namespace {

const CleanOutcome* outcomeOf(const QList<CleanOutcome>& outcomes, const QString& category) {
    for (const CleanOutcome& outcome : outcomes)
        if (outcome.categoryName == category) return &outcome;
    return nullptr;
}

}  // namespace

TEST(BrowserCleaning, ChromeTablesEmptiedSessionsRemovedAndEntriesUnticked) {
    FakeBrowserHome home;
    const std::string profile = home / ".config/google-chrome/Default";
    makeChromeProfile(profile, {{"https://a.example/", "https://b.example/"}, 2, 2, 3});
    makeFolders(profile + "/Sessions");
    writeFile(profile + "/Sessions/Session_13300000", "tabs");
    makeFolders(profile + "/Session Storage");
    writeFile(profile + "/Web Data", "form values");
    ::unlink((profile + "/Login Data").c_str());

    const BrowserArr browsers = BrowserCatalogue::scan();
    tickOnly(browsers, "Google Chrome", {"Browsing History", "Download History", "Cookies", "Session", "Save Password"});
    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers);

    EXPECT_EQ(rowCount(profile + "/History", "urls"), 0);
    EXPECT_EQ(rowCount(profile + "/History", "visits"), 2);  // the history category empties urls only
    EXPECT_EQ(rowCount(profile + "/History", "downloads"), 0);
    EXPECT_EQ(rowCount(profile + "/History", "downloads_url_chains"), 0);
    EXPECT_EQ(rowCount(profile + "/History", "keyword_search_terms"), 2);
    EXPECT_EQ(rowCount(profile + "/Network/Cookies", "cookies"), 0);
    EXPECT_FALSE(exists(profile + "/Sessions"));
    EXPECT_FALSE(exists(profile + "/Session Storage"));

    ASSERT_EQ(outcomes.size(), 5);
    for (const CleanOutcome& outcome : outcomes) {
        if (outcome.categoryName != "Save Password") {
            EXPECT_EQ(outcome.status, Status::Cleaned) << outcome.categoryName << outcome.reason;
        }
    }
    // The missing login database is created by the open, its delete fails, and nothing
    // was there to clean.
    const CleanOutcome* passwords = outcomeOf(outcomes, "Save Password");
    EXPECT_EQ(passwords->status, Status::Skipped);
    EXPECT_TRUE(exists(profile + "/Login Data"));
    EXPECT_EQ(passwords->sizeAfter, "0 Item");

    const BrowerObjPtr chrome = browserNamed(browsers, "Google Chrome");
    EXPECT_EQ(chrome->isSelect, 0);
    EXPECT_EQ(categoryNamed(*chrome, "Browsing History")->isSelect, 0);
    EXPECT_EQ(categoryNamed(*chrome, "Browsing History")->size, "0 Item");
    EXPECT_EQ(categoryNamed(*chrome, "Session")->size, "0 byte");
    EXPECT_TRUE(exists(profile + "/Web Data"));  // Form Values was not ticked
}

TEST(BrowserCleaning, FailureIsReportedWithItsReasonAndTheRealCount) {
    FakeBrowserHome home;
    const std::string profile = home / ".config/google-chrome/Default";
    makeChromeProfile(profile, {{"https://a.example/"}, 0, 0, 0});
    runSql(profile + "/History", "DROP TABLE downloads_url_chains; INSERT INTO downloads(id,guid,current_path,target_path,start_time,received_bytes,total_bytes,state,danger_type,interrupt_reason,hash,end_time,opened,last_access_time,transient,referrer,site_url,embedder_download_data,tab_url,tab_referrer_url,http_method,by_ext_id,by_ext_name,by_web_app_id,etag,last_modified,mime_type,original_mime_type) VALUES(1,'g','p','p',1,1,1,1,0,0,x'',1,0,0,0,'','','','','','','','','','','','','')");

    const BrowserArr browsers = BrowserCatalogue::scan();
    tickOnly(browsers, "Google Chrome", {"Download History"});
    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers);
    ASSERT_EQ(outcomes.size(), 1);
    EXPECT_EQ(outcomes[0].status, Status::Failed);
    EXPECT_TRUE(outcomes[0].reason.contains("no such table: downloads_url_chains")) << outcomes[0].reason;
    // The first statement still ran: the downloads are gone, and the shown count is real.
    EXPECT_EQ(rowCount(profile + "/History", "downloads"), 0);
    EXPECT_EQ(outcomes[0].sizeAfter, "0 Item");
}

TEST(BrowserCleaning, OperaSavePasswordEmptiesSearchTermsAndHistoryTakesVisits) {
    FakeBrowserHome home;
    const std::string opera = home / ".config/opera";
    makeChromeProfile(opera, {{"https://o.example/1", "https://o.example/2"}, 1, 0, 2, false});

    BrowserArr browsers = BrowserCatalogue::scan();
    const BrowerObjPtr entry = browserNamed(browsers, "Opera");
    ASSERT_TRUE(entry);
    EXPECT_EQ(categoryNamed(*entry, "Save Password")->size, "2 Items");  // the search terms
    tickOnly(browsers, "Opera", {"Save Password"});
    BrowserCleanJob::cleanNow(browsers);
    EXPECT_EQ(rowCount(opera + "/History", "keyword_search_terms"), 0);
    EXPECT_EQ(rowCount(opera + "/History", "urls"), 2);

    tickOnly(browsers, "Opera", {"Browsing History", "Cookies"});
    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers);
    EXPECT_EQ(rowCount(opera + "/History", "urls"), 0);
    EXPECT_EQ(rowCount(opera + "/History", "visits"), 0);
    EXPECT_EQ(rowCount(opera + "/History", "downloads"), 1);
    EXPECT_FALSE(exists(opera + "/Cookies"));  // the whole file goes
    for (const CleanOutcome& outcome : outcomes) EXPECT_EQ(outcome.status, Status::Cleaned) << outcome.reason;
}

TEST(BrowserCleaning, FirefoxKeepsPlacesAndRemovesCookiesSessionAndCaches) {
    FakeBrowserHome home;
    const std::string profile = home / ".mozilla/firefox/x1.default-release";
    makeFirefoxProfile(profile, {3, 2});
    writeFile(profile + "/cookies.sqlite-wal", "log");

    const BrowserArr browsers = BrowserCatalogue::scan();
    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers);  // the default ticks
    ASSERT_EQ(outcomes.size(), 6);
    for (const CleanOutcome& outcome : outcomes) EXPECT_EQ(outcome.status, Status::Cleaned) << outcome.categoryName << outcome.reason;
    EXPECT_EQ(rowCount(profile + "/places.sqlite", "moz_historyvisits"), 0);
    EXPECT_EQ(rowCount(profile + "/places.sqlite", "moz_annos"), 0);
    EXPECT_EQ(rowCount(profile + "/places.sqlite", "moz_keywords"), 0);
    EXPECT_EQ(rowCount(profile + "/places.sqlite", "moz_places"), 3);
    EXPECT_FALSE(exists(profile + "/cookies.sqlite"));
    EXPECT_TRUE(exists(profile + "/cookies.sqlite-wal"));  // plain mode removes the database file only
    EXPECT_FALSE(exists(profile + "/sessionstore.js"));
    EXPECT_FALSE(exists(profile + "/cache2"));
    EXPECT_TRUE(exists(profile + "/startupCache"));  // the "cache" test is case-sensitive
    EXPECT_EQ(outcomeOf(outcomes, "Browsing History")->sizeAfter, "0 Item");
    EXPECT_EQ(outcomeOf(outcomes, "Cookies")->sizeAfter, "0 byte");
}

// Without a profile the Firefox categories are skipped: no path is formed at the root.
TEST(BrowserCleaning, FirefoxWithoutProfileTouchesNothing) {
    FakeBrowserHome home;
    makeFolders(home / ".mozilla/firefox");
    const bool rootHadPlaces = exists("/places.sqlite");
    const BrowserArr browsers = BrowserCatalogue::scan();
    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers);
    ASSERT_EQ(outcomes.size(), 6);
    for (const CleanOutcome& outcome : outcomes) {
        EXPECT_EQ(outcome.status, Status::Skipped);
        EXPECT_EQ(outcome.sizeAfter, "");
    }
    EXPECT_EQ(exists("/places.sqlite"), rootHadPlaces);
}

// The bytes of deleted rows: a browser that did not close cleanly left them in the log,
// and another program keeps the database open. Plain cleaning leaves them there; thorough
// cleaning leaves them in no file of the profile.
TEST(BrowserCleaning, ThoroughModeLeavesNoDeletedRowInAnyFileOfTheProfile) {
    for (const bool thorough : {false, true}) {
        FakeBrowserHome home;
        const std::string profile = home / ".config/google-chrome/Default";
        const std::string marker = "https://" + uniqueMarker() + ".example/";
        makeChromeProfile(profile, {{"https://kept.example/"}, 0, 0, 0});
        addUrlsToWriteAheadLog(profile + "/History", {marker + "1", marker + "2"});
        ASSERT_FALSE(filesContaining(profile, marker).empty());
        ASSERT_EQ(filesContaining(profile, marker), std::vector<std::string>{profile + "/History-wal"});

        const OpenDatabase otherReader(profile + "/History");
        const BrowserArr browsers = BrowserCatalogue::scan();
        EXPECT_EQ(categoryNamed(*browserNamed(browsers, "Google Chrome"), "Browsing History")->size, "3 Items");
        tickOnly(browsers, "Google Chrome", {"Browsing History"});
        const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers, {thorough});
        ASSERT_EQ(outcomes.size(), 1);
        EXPECT_EQ(outcomes[0].status, Status::Cleaned) << outcomes[0].reason;
        EXPECT_EQ(rowCount(profile + "/History", "urls"), 0);
        EXPECT_EQ(rowCount(profile + "/History", "visits"), 3);  // thorough mode deletes no other rows
        if (thorough) {
            EXPECT_EQ(filesContaining(profile, marker), std::vector<std::string>{});
        } else {
            EXPECT_FALSE(filesContaining(profile, marker).empty());
        }
    }
}

TEST(BrowserCleaning, ScanAndCleanRunInTheBackgroundAndReportOnTheOwnersThread) {
    FakeBrowserHome home;
    makeChromeProfile(home / ".config/google-chrome/Default", {{"https://a.example/"}, 0, 0, 0});
    makeFolders(home / ".config/opera");
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    BrowserCatalogue catalogue;
    QSignalSpy found(&catalogue, &BrowserCatalogue::scanProgress);
    QSignalSpy ready(&catalogue, &BrowserCatalogue::browserArrReady);
    catalogue.getBrowserArr();
    ASSERT_TRUE(ready.wait(30000));
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0][0].toString(), "Google Chrome");
    EXPECT_EQ(found[1][0].toString(), "Opera");
    const auto browsers = ready.first().first().value<BrowserArr>();
    ASSERT_EQ(browsers.size(), 2);
    tickOnly(browsers, "Google Chrome", {"Browsing History"});
    BrowserCleanJob job;
    QSignalSpy finished(&job, &BrowserCleanJob::finished);
    QSignalSpy progress(&job, &BrowserCleanJob::progress);
    job.cleanBrowerFiles(browsers);
    ASSERT_TRUE(finished.wait(30000));
    EXPECT_EQ(progress.size(), 1);
    const auto outcomes = finished.first().first().value<QList<CleanOutcome>>();
    ASSERT_EQ(outcomes.size(), 1);
    EXPECT_EQ(outcomes[0].status, Status::Cleaned);
    EXPECT_EQ(categoryNamed(*browserNamed(browsers, "Google Chrome"), "Browsing History")->size, "0 Item");
    EXPECT_EQ(rowCount(home / ".config/google-chrome/Default/History", "urls"), 0);
}

// Safari on the macOS layout: both history tables, the closed tabs, the local storage
// folders (whose count stays shown as it was), cleaned only once ticked.
TEST(BrowserCleaning, SafariHistoryAndLocalStorage) {
    FakeBrowserHome home;
    const std::string root = home / "root";
    const std::string library = root + "/Users/tester/Library";
    home.set("VELMORA_LAYOUT", "macos");
    home.set("VELMORA_ROOT", root);
    home.set("USER", "tester");
    makeFolders(root + "/Applications/Safari.app");
    makeFolders(library + "/Safari/LocalStorage/https_a.example_0.localstorage");
    makeFolders(library + "/WebKit/LocalStorage");
    makeSafariHistory(library + "/Safari/History.db", 3, 1);
    writeFile(library + "/Safari/RecentlyClosedTabs.plist", "tabs");

    const BrowserArr browsers = BrowserCatalogue::scan();
    EXPECT_TRUE(BrowserCleanJob::cleanNow(browsers).isEmpty());  // unticked by default
    EXPECT_EQ(rowCount(library + "/Safari/History.db", "history_visits"), 3);

    tickOnly(browsers, "Safari", {"Browsing History", "Cookies"});
    const QString cookiesBefore = categoryNamed(*browsers[0], "Cookies")->size;
    EXPECT_EQ(cookiesBefore, "1 Items");
    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browsers);
    for (const CleanOutcome& outcome : outcomes) EXPECT_EQ(outcome.status, Status::Cleaned) << outcome.reason;
    EXPECT_EQ(rowCount(library + "/Safari/History.db", "history_items"), 0);
    EXPECT_EQ(rowCount(library + "/Safari/History.db", "history_visits"), 0);
    EXPECT_FALSE(exists(library + "/Safari/RecentlyClosedTabs.plist"));
    EXPECT_FALSE(exists(library + "/Safari/LocalStorage"));
    EXPECT_FALSE(exists(library + "/WebKit/LocalStorage"));
    EXPECT_EQ(categoryNamed(*browsers[0], "Cookies")->size, cookiesBefore);
}

// A stopped run finishes the category it is cleaning; the ones it has not reached are
// Skipped as stopped and keep their tick and their data, and so does their browser.
TEST(BrowserCleaning, StoppedRunLeavesWhatItHasNotReached) {
    FakeBrowserHome home;
    const std::string profile = home / ".config/google-chrome/Default";
    makeChromeProfile(profile, {{"https://a.example/", "https://b.example/"}, 2, 0, 3});
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    const BrowserArr browsers = BrowserCatalogue::scan();
    tickOnly(browsers, "Google Chrome", {"Browsing History", "Download History", "Cookies"});
    BrowserCleanJob job;
    QSignalSpy finished(&job, &BrowserCleanJob::finished);
    job.cleanBrowerFiles(browsers);
    job.stop();
    ASSERT_TRUE(finished.wait(30000));
    const auto outcomes = finished.first().first().value<QList<CleanOutcome>>();
    ASSERT_EQ(outcomes.size(), 3);
    const BrowerObjPtr chrome = browserNamed(browsers, "Google Chrome");
    const std::map<QString, std::pair<std::string, std::string>> tableOf = {
        {"Browsing History", {"/History", "urls"}},
        {"Download History", {"/History", "downloads"}},
        {"Cookies", {"/Network/Cookies", "cookies"}}};
    const std::map<QString, int> rowsBefore = {{"Browsing History", 2}, {"Download History", 2}, {"Cookies", 3}};
    int stopped = 0;
    for (const CleanOutcome& outcome : outcomes) {
        const bool notReached = outcome.reason == BrowserCleanJob::kStoppedReason;
        EXPECT_TRUE(notReached || stopped == 0) << "cleaned after the stop: " << outcome.categoryName.toStdString();
        if (!notReached) continue;
        ++stopped;
        EXPECT_EQ(outcome.status, Status::Skipped);
        EXPECT_EQ(categoryNamed(*chrome, outcome.categoryName)->isSelect, 1);
        const auto& [file, table] = tableOf.at(outcome.categoryName);
        EXPECT_EQ(rowCount(profile + file, table), rowsBefore.at(outcome.categoryName)) << table;
    }
    EXPECT_GE(stopped, 1);
    EXPECT_NE(chrome->isSelect, 0);
}
