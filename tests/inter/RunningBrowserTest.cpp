#include "InterTestSupport.h"
#include "engine/inter/BrowserCatalogue.h"
#include "engine/inter/RunningBrowsers.h"
#include "support/BrowserProfiles.h"
#include "support/ChildProcess.h"
#include "support/TestFiles.h"

#include <filesystem>
#include <sys/wait.h>

using namespace velmora;
using namespace velmora::test;

// A stand-in browser: a copy of sleep named like Firefox's program, started here and
// ended by the engine.
TEST(RunningBrowsers, FoundByItsProgramAndEndedWithKill) {
    FakeBrowserHome home;
    makeFirefoxProfile(home / ".mozilla/firefox/p.default-release", {});
    std::filesystem::copy_file("/bin/sleep", home / "bin/firefox");
    const pid_t pid = spawnQuietly({home / "bin/firefox", "120"});
    ASSERT_GT(pid, 0);
    for (int i = 0; i < 50 && readFile("/proc/" + std::to_string(pid) + "/comm") != "firefox\n"; ++i) ::usleep(20000);

    const QList<RunningBrowser> beforeScan = RunningBrowsers::checkOpenBrower();
    ASSERT_EQ(beforeScan.size(), 1);
    EXPECT_EQ(beforeScan[0].name, "Firefox");
    EXPECT_EQ(beforeScan[0].pid, pid);

    const BrowserArr browsers = BrowserCatalogue::scan();
    tickOnly(browsers, "Google Chrome", {});
    EXPECT_TRUE(RunningBrowsers::checkOpenBrower(browsers).isEmpty());  // Firefox is not ticked
    tickOnly(browsers, "Firefox", {"Cookies"});
    const QList<RunningBrowser> beforeCleaning = RunningBrowsers::checkOpenBrower(browsers);
    ASSERT_EQ(beforeCleaning.size(), 1);
    EXPECT_EQ(RunningBrowsers::joinedNames(beforeCleaning), "Firefox");

    QString failure;
    EXPECT_TRUE(RunningBrowsers::closeBrowsers(beforeCleaning, &failure)) << failure;
    int status = 0;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_TRUE(RunningBrowsers::checkOpenBrower().isEmpty());
}
