#include "InterTestSupport.h"
#include "engine/inter/BrowserCatalogue.h"
#include "engine/inter/BrowserFiles.h"
#include "engine/inter/BrowserTicks.h"
#include "engine/inter/FullDiskAccessAuthorizer.h"
#include "support/BrowserProfiles.h"
#include "support/TestFiles.h"


using namespace velmora;
using namespace velmora::test;

namespace {

QString q(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

TEST(BrowserCatalogue, ListsInstalledBrowsersWithCountsSizesAndDefaultTicks) {
    FakeBrowserHome home;
    makeChromeProfile(home / ".config/google-chrome/Default", {{"https://a.example/", "https://b.example/", "https://c.example/"}, 2, 1, 0});
    makeFirefoxProfile(home / ".mozilla/firefox/k3x9.default-release", {2, 1});
    makeFolders(home / ".config/opera");  // installed, without any database yet
    makeFolders(home / "share/applications");
    writeFile(home / "share/applications/microsoft-edge.desktop", "[Desktop Entry]\n");

    const BrowserArr browsers = BrowserCatalogue::scan();
    QStringList names;
    for (const BrowerObjPtr& browser : browsers) names.append(browser->name);
    // Catalogue order; Chromium and Brave have neither a profile, a program nor an entry.
    EXPECT_EQ(names, QStringList({"Google Chrome", "Microsoft Edge", "Firefox", "Opera"}));

    const BrowerObjPtr chrome = browserNamed(browsers, "Google Chrome");
    EXPECT_EQ(chrome->isSelect, 1);
    EXPECT_EQ(chrome->iconImage, "ic_browser_chrome");
    EXPECT_EQ(categoryNamed(*chrome, "Browsing History")->size, "3 Items");
    EXPECT_EQ(categoryNamed(*chrome, "Download History")->size, "2 Items");
    EXPECT_EQ(categoryNamed(*chrome, "Save Password")->size, "1 Items");
    EXPECT_EQ(categoryNamed(*chrome, "Cookies")->size, "0 Item");
    // The newer Network/Cookies place is chosen because it exists.
    EXPECT_TRUE(categoryNamed(*chrome, "Cookies")->urlStr.endsWith("/Default/Network/Cookies"));
    EXPECT_EQ(categoryNamed(*chrome, "Session")->iconImage, "icon_autofill");
    EXPECT_EQ(categoryNamed(*chrome, "Session")->parObj, chrome.get());
    for (const BrowerObjPtr& category : chrome->chrArr) EXPECT_EQ(category->isSelect, 1) << category->name;

    // Firefox shows file sizes of the profile that profiles.ini does not name but whose
    // name ends with .default-release.
    const BrowerObjPtr firefox = browserNamed(browsers, "Firefox");
    const BrowerObjPtr places = categoryNamed(*firefox, "Browsing History");
    EXPECT_TRUE(places->size.endsWith(" KB")) << places->size;
    EXPECT_EQ(categoryNamed(*firefox, "Download History")->size, places->size);
    EXPECT_EQ(categoryNamed(*firefox, "Session")->size, "14 byte");

    // The counts open read-only: the scan created none of Opera's databases.
    EXPECT_EQ(categoryNamed(*browserNamed(browsers, "Opera"), "Browsing History")->size, "0 Item");
    EXPECT_FALSE(exists(home / ".config/opera/History"));
}

TEST(BrowserCatalogue, SizeAndCountTexts) {
    EXPECT_EQ(BrowserFiles::countText(0), "0 Item");
    EXPECT_EQ(BrowserFiles::countText(1), "1 Items");
    TempDir dir;
    makeFolders(dir / "tree/sub");
    writeFile(dir / "tree/a", std::string(600, 'a'));
    writeFile(dir / "tree/sub/b", std::string(500, 'b'));
    EXPECT_EQ(BrowserFiles::fileSizeWithPath(q(dir / "tree")), 1100);
    EXPECT_EQ(BrowserFiles::fileSizeWithPath(q(dir / "tree/")), 1100);
    EXPECT_EQ(BrowserFiles::fileSizeWithPath(q(dir / "missing")), 0);
    EXPECT_TRUE(BrowserFiles::getAllFileWithPath(" ").isEmpty());
}

TEST(FirefoxProfile, ResolvedFromProfilesIniThenDefaultReleaseThenLastDefault) {
    FakeBrowserHome home;
    const std::string folder = home / ".mozilla/firefox/";
    makeFolders(folder + "old.default");
    makeFolders(folder + "new.default-release");
    makeFolders(folder + "other");
    // The install's default wins over the profile marked Default=1.
    writeFile(folder + "profiles.ini",
              "[Profile1]\nName=default\nIsRelative=1\nPath=old.default\nDefault=1\n\n"
              "[Profile0]\nName=default-release\nIsRelative=1\nPath=new.default-release\n\n"
              "[Install4F96D1932A9F858E]\nDefault=other\nLocked=1\n");
    EXPECT_EQ(BrowserFiles::firefoxProfileWithPath(q(folder)), q(folder + "other"));

    writeFile(folder + "profiles.ini", "[Profile0]\nIsRelative=1\nPath=new.default-release\nDefault=1\n");
    EXPECT_EQ(BrowserFiles::firefoxProfileWithPath(q(folder)), q(folder + "new.default-release"));

    // A profile outside the folder is not taken from the file.
    writeFile(folder + "profiles.ini", "[Install1]\nDefault=../../..\n[Profile0]\nIsRelative=0\nPath=/\nDefault=1\n");
    EXPECT_EQ(BrowserFiles::firefoxProfileWithPath(q(folder)), q(folder + "old.default"));

    // Without profiles.ini: ".default" first (the last one listed), then ".default-release".
    ::unlink((folder + "profiles.ini").c_str());
    makeFolders(folder + "zz.default");
    EXPECT_EQ(BrowserFiles::getDefaultWithPath(q(folder)), q(folder + "zz.default"));
    EXPECT_EQ(BrowserFiles::firefoxProfileWithPath(q(folder)), q(folder + "zz.default"));
    std::filesystem::remove(folder + "zz.default");
    std::filesystem::remove(folder + "old.default");
    EXPECT_EQ(BrowserFiles::getDefaultWithPath(q(folder)), "");
    EXPECT_EQ(BrowserFiles::firefoxProfileWithPath(q(folder)), q(folder + "new.default-release"));
    std::filesystem::remove(folder + "new.default-release");
    EXPECT_EQ(BrowserFiles::firefoxProfileWithPath(q(folder)), "");
}

TEST(FirefoxProfile, NoneFoundShowsNothing) {
    FakeBrowserHome home;
    makeFolders(home / ".mozilla/firefox/Crash Reports");
    const BrowerObjPtr firefox = browserNamed(BrowserCatalogue::scan(), "Firefox");
    ASSERT_TRUE(firefox);
    for (const BrowerObjPtr& category : firefox->chrArr) EXPECT_EQ(category->size, "") << category->name;
}

TEST(BrowserTicks, ClicksPropagateBetweenBrowserAndCategories) {
    BrowerObj browser;
    for (int i = 0; i < 2; ++i) {
        auto category = std::make_shared<BrowerObj>();
        category->parObj = &browser;
        browser.chrArr.append(category);
    }
    BrowserArr list{std::shared_ptr<BrowerObj>(&browser, [](BrowerObj*) {})};
    EXPECT_FALSE(BrowserTicks::canClean(list));

    BrowserTicks::selectBrower(*browser.chrArr[0]);
    EXPECT_EQ(browser.isSelect, 2);
    EXPECT_TRUE(BrowserTicks::canClean(list));
    BrowserTicks::selectBrower(browser);  // 2 -> 1, and both categories follow
    EXPECT_EQ(browser.isSelect, 1);
    EXPECT_EQ(browser.chrArr[1]->isSelect, 1);
    BrowserTicks::selectBrower(*browser.chrArr[1]);
    EXPECT_EQ(browser.isSelect, 2);
    BrowserTicks::selectBrower(*browser.chrArr[0]);
    EXPECT_EQ(browser.isSelect, 0);
    BrowserTicks::selectBrower(*browser.chrArr[0]);
    BrowserTicks::selectBrower(*browser.chrArr[1]);
    EXPECT_EQ(browser.isSelect, 1);
    BrowserTicks::selectBrower(browser);
    EXPECT_EQ(browser.chrArr[0]->isSelect + browser.chrArr[1]->isSelect, 0);
}

// The macOS layout on a fake system root: applications found in the Applications folders
// (also nested), Safari unticked, its counts from History.db and Downloads.plist.
TEST(BrowserCatalogue, MacLayoutFindsApplicationsAndSafari) {
    FakeBrowserHome home;
    const std::string root = home / "root";
    const std::string library = root + "/Users/tester/Library";
    home.set("VELMORA_LAYOUT", "macos");
    home.set("VELMORA_ROOT", root);
    home.set("VELMORA_HOME", root + "/Users/tester");
    home.set("USER", "tester");
    makeFolders(root + "/Applications/Safari.app/Contents");
    makeFolders(root + "/Applications/Browsers/Google Chrome.app/Contents");
    makeFolders(root + "/Applications/Browsers/Google Chrome.app/Contents/Firefox.app");  // inside a bundle: not walked
    makeFolders(root + "/Applications/TextEdit.app");
    makeFolders(library + "/Safari");
    makeSafariHistory(library + "/Safari/History.db", 2, 2);
    writeFile(library + "/Safari/Downloads.plist",
              "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>DownloadHistory</key>"
              "<array><dict/><dict/><dict/></array></dict></plist>");

    const BrowserArr browsers = BrowserCatalogue::scan();
    ASSERT_EQ(browsers.size(), 2);
    EXPECT_EQ(browsers[0]->name, "Google Chrome");  // the Browsers folder sorts before Safari.app
    EXPECT_EQ(browsers[0]->isSelect, 1);
    const BrowerObjPtr safari = browsers[1];
    EXPECT_EQ(safari->name, "Safari");
    EXPECT_EQ(safari->isSelect, 0);
    for (const BrowerObjPtr& category : safari->chrArr) EXPECT_EQ(category->isSelect, 0) << category->name;
    EXPECT_EQ(categoryNamed(*safari, "Browsing History")->size, "4 Items");
    EXPECT_EQ(categoryNamed(*safari, "Downloads History")->size, "3 Items");
    EXPECT_EQ(categoryNamed(*safari, "Downloads History")->iconImage, "icon_download");

    FullDiskAccessAuthorizer& access = FullDiskAccessAuthorizer::sharedInstance();
    EXPECT_EQ(access.getAuthorization(), 2);
    EXPECT_FALSE(access.needsPanel());  // no macOS version here
    std::filesystem::remove_all(library + "/Safari");
    EXPECT_EQ(access.authorizationStatus(), 0);
}
