#include "UninstallTestSupport.h"

#include "engine/uninstall/ApplicationInventory.h"
#include "engine/uninstall/PackageManagerApps.h"
#include "engine/uninstall/RelatedAppFilesScanner.h"
#include "engine/uninstall/UninstallSession.h"
#include "support/ChildProcess.h"
#include "support/FakeAppTrees.h"

#include <QSignalSpy>
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace velmora;
using namespace velmora::test;

namespace {

std::string fixture(const std::string& name) {
    return std::string(std::getenv("VELMORA_SOURCE_DIR")) + "/tests/fixtures/uninstall/" + name;
}

}  // namespace

// The Linux inventory: AppImages in their roots at any depth, application folders with a
// launcher only where they belong, Flatpak applications from the tool's listing, GNOME
// Shell extensions named from their metadata, and plug-in folders from the data file.
TEST(LinuxLayout, InventoryOfTheThreeTabs) {
    FakeAppTree tree("linux");
    installFlatpakStandIn(tree.bin(), tree.path() + "/flatpak.log", fixture("flatpak-list-app-columns.txt"), tree.home());
    makeSizedFile(tree.inHome("Applications/Go-1.2-x86_64.AppImage"), 10);
    makeSizedFile(tree.inHome("Downloads/tools/Krita-5.2.2-x86_64.appimage"), 10);
    writeTreeFile(tree.inHome("Applications/Editor/editor.desktop"), "[Desktop Entry]\nName=Plain Editor\nExec=editor\n");
    writeTreeFile(tree.inHome("Downloads/Unpacked/thing.desktop"), "[Desktop Entry]\nName=Thing\n");
    writeTreeFile(tree.inRoot("opt/Tool/share/readme"), "no launcher here");
    writeTreeFile(tree.inHome(".local/share/gnome-shell/extensions/dash@example.org/metadata.json"),
              R"({"name": "Dash Dock", "uuid": "dash@example.org", "version": 12})");
    makeSizedFile(tree.inHome(".mozilla/plugins/libviewer.so"), 10);

    const AMAppItemList apps = ApplicationInventory::scanTab(ApplicationInventory::Applications);
    QStringList names;
    for (const AMAppItemPtr& item : apps) names.append(item->name + "|" + item->bundleID + "|" + item->bundleVersion);
    names.sort();
    // Without a desktop entry an AppImage's identifier is its name.
    EXPECT_EQ(names, QStringList({"Go Viewer|org.example.Go|3.4.1", "Go|Go|", "Krita|Krita|", "Plain Editor|editor|",
                                  "Text Editor|org.gnome.TextEditor|45.1"}))
        << names.join('\n').toStdString();
    const AMAppItemPtr viewer = byPath(apps, tree.inHome(".local/share/flatpak/app/org.example.Go"));
    ASSERT_TRUE(viewer);
    EXPECT_EQ(viewer->kind, AppKind::Flatpak);
    EXPECT_EQ(viewer->installation, "user");
    EXPECT_TRUE(byPath(apps, tree.inRoot("var/lib/flatpak/app/org.gnome.TextEditor")));

    const AMAppItemList widgets = ApplicationInventory::scanTab(ApplicationInventory::Widgets);
    ASSERT_EQ(widgets.size(), 1);
    EXPECT_EQ(widgets.first()->name, "Dash Dock");
    EXPECT_EQ(widgets.first()->bundleVersion, "12");
    EXPECT_EQ(pathsOf(ApplicationInventory::scanTab(ApplicationInventory::Plugins)),
              QStringList{q(tree.inHome(".mozilla/plugins/libviewer.so"))});
    // Snap applications from `snap list`: bases, core snaps and snapd are the system's.
    const AMAppItemList snaps = PackageManagerApps::parseSnapList(QByteArray::fromStdString(readFile(fixture("snap-list.txt"))));
    EXPECT_EQ(pathsOf(snaps), QStringList({q(tree.inRoot("snap/firefox")), q(tree.inRoot("snap/go"))}));
    EXPECT_EQ(PackageManagerApps::removalArguments(*snaps.first()), QStringList({"snap", "remove", "--", "firefox"}));
    EXPECT_EQ(loggedCalls(tree.path() + "/flatpak.log"),
              std::vector<std::vector<std::string>>({{"list", "--app", "--columns=application,name,version,installation"}}));
}

// The leftovers of an integrated AppImage: its launcher and icon (certain), a launcher that
// only carries the name (possible), a folder that runs on past the name (possible, "Go" ->
// google-chrome), a folder another installed application claims more closely, and the
// running application named for the warning.
TEST(LinuxLayout, AppImageLeftoversAndTicks) {
    FakeAppTree tree("linux");
    const std::string appImage = tree.inHome("Applications/Go-1.2-x86_64.AppImage");
    const std::string launcher = tree.inHome(".local/share/applications/appimagekit_5d1-Go.desktop");
    const std::string icon = tree.inHome(".local/share/icons/hicolor/256x256/apps/appimagekit_5d1_go.png");
    const std::string otherLauncher = tree.inHome(".local/share/applications/golang-docs.desktop");
    writeTreeFile(appImage, readFile("/bin/sleep"));
    ::chmod(appImage.c_str(), 0755);
    writeTreeFile(launcher, "[Desktop Entry]\nName=Go\nExec=" + appImage + " %U\nIcon=appimagekit_5d1_go\nX-AppImage-Version=1.2\n");
    makeSizedFile(icon, 10);
    writeTreeFile(otherLauncher, "[Desktop Entry]\nName=Go docs\nExec=true\n");
    makeSizedFile(tree.inHome(".config/Go/settings.json"), 10);
    makeSizedFile(tree.inHome(".config/google-chrome/Default/History"), 10);
    makeSizedFile(tree.inHome(".config/Go Tools/state"), 10);
    makeSizedFile(tree.inHome("Applications/Go Tools-2.0.AppImage"), 10);
    makeSizedFile(tree.inHome(".cache/appimagekit_5d1-Go/x"), 10);

    const AMAppItemList installed = ApplicationInventory::scanTab(ApplicationInventory::Applications);
    const AMAppItemPtr go = byPath(installed, appImage);
    ASSERT_TRUE(go);
    EXPECT_EQ(go->name, "Go");
    EXPECT_EQ(go->bundleID, "appimagekit_5d1-Go");
    EXPECT_EQ(go->bundleVersion, "1.2");

    const AMAppItemList related = RelatedAppFilesScanner::relatedFilesToApplication(*go, installed);
    const auto ticked = [&](const std::string& path) {
        const AMAppItemPtr item = byPath(related, path);
        EXPECT_TRUE(item) << path << " not listed";
        return item && item->preTicked;
    };
    EXPECT_TRUE(ticked(tree.inHome(".config/Go")));
    EXPECT_TRUE(ticked(launcher));
    EXPECT_TRUE(ticked(icon));
    EXPECT_TRUE(ticked(tree.inHome(".cache/appimagekit_5d1-Go")));  // by the identifier
    EXPECT_FALSE(ticked(tree.inHome(".config/google-chrome")));
    EXPECT_TRUE(byPath(related, tree.inHome(".config/google-chrome"))->isPossibleMatch);
    EXPECT_FALSE(ticked(otherLauncher));
    EXPECT_FALSE(ticked(tree.inHome(".config/Go Tools")));
    EXPECT_EQ(byPath(related, tree.inHome(".config/Go Tools"))->sharedWith, "Go Tools");
    EXPECT_FALSE(byPath(related, tree.inHome(".local/share/applications")));

    // Go Tools itself claims its folder: there it is ticked.
    const AMAppItemPtr goTools = byPath(installed, tree.inHome("Applications/Go Tools-2.0.AppImage"));
    ASSERT_TRUE(goTools);
    const AMAppItemList toolsRelated = RelatedAppFilesScanner::relatedFilesToApplication(*goTools, installed);
    ASSERT_TRUE(byPath(toolsRelated, tree.inHome(".config/Go Tools")));
    EXPECT_TRUE(byPath(toolsRelated, tree.inHome(".config/Go Tools"))->preTicked);

    const pid_t running = spawnQuietly({appImage, "30"});
    ASSERT_GT(running, 0);
    UninstallSession session({related, toolsRelated});
    QStringList names;
    for (int attempt = 0; attempt < 50 && names.isEmpty(); ++attempt, ::usleep(20000)) names = session.runningApplications();
    ::kill(running, SIGKILL);
    bool timedOut = false;
    waitForChild(running, 5, timedOut);
    EXPECT_EQ(names, QStringList{"Go"});
}

// A Flatpak application is removed by its tool (an argument list, the user installation),
// never by deleting the tool's files; its ~/.var/app folder goes through the deleter.
TEST(LinuxLayout, FlatpakRemovedThroughItsTool) {
    ensureApplication();
    FakeAppTree tree("linux");
    const std::string log = tree.path() + "/flatpak.log";
    installFlatpakStandIn(tree.bin(), log, fixture("flatpak-list-app-columns.txt"), tree.home());
    makeSizedFile(tree.inHome(".local/share/flatpak/app/org.example.Go/current/active/files/bin/go"), 10);
    makeSizedFile(tree.inHome(".var/app/org.example.Go/config/settings"), 10);
    const AMAppItemList installed = ApplicationInventory::scanTab(ApplicationInventory::Applications);
    const AMAppItemPtr viewer = byPath(installed, tree.inHome(".local/share/flatpak/app/org.example.Go"));
    ASSERT_TRUE(viewer);

    UninstallSession session({RelatedAppFilesScanner::relatedFilesToApplication(*viewer, installed)});
    EXPECT_TRUE(session.runningApplications().isEmpty());
    writeTreeFile(tree.bin() + "/flatpak-ps", "org.example.Go\n");
    EXPECT_EQ(session.runningApplications(), QStringList{"Go Viewer"});
    session.tickPreTicked();
    EXPECT_EQ(pathsOf(session.selectDeletePath()),
              QStringList({q(tree.inHome(".local/share/flatpak/app/org.example.Go")), q(tree.inHome(".var/app/org.example.Go"))}));
    QSignalSpy finished(&session, &UninstallSession::removalFinished);
    session.doRemove();
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(session.failures().isEmpty());
    EXPECT_FALSE(exists(tree.inHome(".var/app/org.example.Go")));
    const auto calls = loggedCalls(log);
    ASSERT_EQ(calls.size(), 4u);  // list, ps twice, uninstall
    EXPECT_EQ(calls[3], std::vector<std::string>({"uninstall", "--user", "--noninteractive", "--", "org.example.Go"}));
}
