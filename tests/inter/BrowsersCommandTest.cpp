#include "support/BrowserProfiles.h"
#include "support/ChildProcess.h"
#include "support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace velmora::test;

namespace {


QJsonObject named(const QJsonArray& list, const QString& name) {
    for (const QJsonValue& value : list)
        if (value["name"].toString() == name) return value.toObject();
    return {};
}

// Chrome with three history rows (two only in the write-ahead log, with a marker), and a
// Firefox profile of today's name with its cookies in a database and a log.
struct BrowserHome {
    BrowserHome() {
        makeChromeProfile(chrome, {{"https://kept.example/"}, 1, 1, 2});
        addUrlsToWriteAheadLog(chrome + "/History", {marker + "1", marker + "2"});
        makeFirefoxProfile(firefox, {2, 3});
        writeFile(firefox + "/cookies.sqlite-wal", "cookie log");
    }
    FakeBrowserHome home;
    const std::string chrome = home / ".config/google-chrome/Default";
    const std::string firefox = home / ".mozilla/firefox/a1b2.default-release";
    const std::string marker = "https://" + uniqueMarker() + ".example/";
};

}  // namespace

TEST(BrowsersCommand, ListsBrowsersCategoriesTicksAndValues) {
    BrowserHome fake;
    const ProcessResult result = runCli({"browsers", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const QJsonArray browsers = QJsonDocument::fromJson(QByteArray::fromStdString(result.out)).array();
    ASSERT_EQ(browsers.size(), 2) << result.out;
    const QJsonObject chrome = named(browsers, "Google Chrome");
    EXPECT_EQ(chrome["isSelect"].toInt(), 1);
    const QJsonObject history = named(chrome["categories"].toArray(), "Browsing History");
    EXPECT_EQ(history["size"].toString(), "3 Items");
    EXPECT_EQ(history["isSelect"].toInt(), 1);
    EXPECT_EQ(named(browsers, "Firefox")["categories"].toArray().size(), 6);

    const ProcessResult text = runCli({"browsers"});
    EXPECT_NE(text.out.find("[x] Google Chrome"), std::string::npos) << text.out;
    EXPECT_EQ(runCli({"browsers", "extra"}).status, 2);
}

TEST(BrowsersCommand, ThoroughCleaningLeavesNoMarkerAndNoCookieFile) {
    BrowserHome fake;
    const ProcessResult result = runCli({"clean-browsers", "--yes", "--thorough"});
    ASSERT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_NE(result.out.find("Cleaned  Google Chrome / Browsing History  (0 Item)"), std::string::npos) << result.out;
    EXPECT_EQ(rowCount(fake.chrome + "/History", "urls"), 0);
    EXPECT_EQ(rowCount(fake.chrome + "/Login Data", "logins"), 0);
    EXPECT_EQ(filesContaining(fake.chrome, fake.marker), std::vector<std::string>{});
    for (const auto& entry : std::filesystem::directory_iterator(fake.firefox))
        EXPECT_EQ(entry.path().filename().string().find("cookies.sqlite"), std::string::npos) << entry.path();
    EXPECT_EQ(rowCount(fake.firefox + "/places.sqlite", "moz_historyvisits"), 0);
    EXPECT_EQ(rowCount(fake.firefox + "/places.sqlite", "moz_places"), 2);  // thorough deletes no other rows
}

TEST(BrowsersCommand, NamedCategoriesOnlyAndUnknownNamesRefused) {
    BrowserHome fake;
    const ProcessResult result = runCli({"clean-browsers", "--yes", "Google Chrome/Cookies"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(rowCount(fake.chrome + "/Network/Cookies", "cookies"), 0);
    EXPECT_EQ(rowCount(fake.chrome + "/History", "urls"), 3);
    EXPECT_TRUE(exists(fake.firefox + "/cookies.sqlite"));

    EXPECT_EQ(runCli({"clean-browsers", "--yes", "Safari"}).status, 2);
    EXPECT_EQ(runCli({"clean-browsers", "--yes", "Firefox/Bookmarks"}).status, 2);
    // No --yes and no terminal: the question is answered no.
    EXPECT_EQ(runCli({"clean-browsers", "Firefox"}).status, 1);
    EXPECT_TRUE(exists(fake.firefox + "/cookies.sqlite"));
}

TEST(BrowsersCommand, RunningBrowserRefusedUnlessClosed) {
    BrowserHome fake;
    std::filesystem::copy_file("/bin/sleep", fake.home / "bin/firefox");
    const pid_t pid = spawnQuietly({fake.home / "bin/firefox", "120"});
    ASSERT_GT(pid, 0);
    for (int i = 0; i < 50 && readFile("/proc/" + std::to_string(pid) + "/comm") != "firefox\n"; ++i) ::usleep(20000);

    const ProcessResult refused = runCli({"clean-browsers", "--yes", "Firefox"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("Firefox is running"), std::string::npos) << refused.err;
    EXPECT_TRUE(exists(fake.firefox + "/cookies.sqlite"));
    EXPECT_EQ(::waitpid(pid, nullptr, WNOHANG), 0);  // still running

    const ProcessResult closed = runCli({"clean-browsers", "--yes", "--close", "Firefox"});
    EXPECT_EQ(closed.status, 0) << closed.err;
    int status = 0;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_FALSE(exists(fake.firefox + "/cookies.sqlite"));
}

// The access status on Linux: a profile folder that cannot be listed is named.
TEST(BrowsersCommand, UnreadableProfileFolderIsNamed) {
    BrowserHome fake;
    const std::string folder = fake.home / ".config/google-chrome";
    ::chmod(folder.c_str(), 0);
    const ProcessResult result = runCli({"browsers"}, {}, withoutReadOverride());
    ::chmod(folder.c_str(), 0755);
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.err.find("cannot read " + folder + ": Permission denied"), std::string::npos) << result.err;
    EXPECT_EQ(runCli({"browsers"}, {}, withoutReadOverride()).err.find("cannot read"), std::string::npos);
}
