#include "UninstallTestSupport.h"

#include "engine/uninstall/ApplicationInventory.h"
#include "engine/uninstall/InventoryListing.h"
#include "support/FakeAppTrees.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace velmora;
using namespace velmora::test;

namespace {

int countOf(const AMAppItemList& items, const std::string& path) { return int(pathsOf(items).count(q(path))); }

}  // namespace

// The walkers on a fake macOS machine: a bundle found at any depth and not entered, Apple's
// applications left out of the applications tab only, plug-ins and widgets found by their
// extensions, links not followed, and a bundle reachable from two roots listed twice.
TEST(Inventory, WalkersKeepTheirRules) {
    FakeAppTree tree("macos");
    const std::string deep = tree.inRoot("Applications/Tools/Graphics/Old/Deep.app");
    const std::string outer = tree.inRoot("Applications/Outer.app");
    makeBundle(deep, {{"CFBundleIdentifier", "org.example.deep"}, {"CFBundleShortVersionString", "1.2"}}, true);
    makeBundle(outer, {{"CFBundleIdentifier", "org.example.outer"}});
    makeBundle(outer + "/Contents/Helpers/Inner.app", {{"CFBundleIdentifier", "org.example.inner"}});
    makeBundle(tree.inRoot("Applications/Utilities/Notes.app"), {{"CFBundleIdentifier", "com.apple.Notes"}});
    makeBundle(tree.inRoot("Library/Widgets/Weather.wdgt"), {{"CFBundleIdentifier", "com.apple.widget.weather"}});
    makeBundle(tree.inRoot("Library/Internet Plug-Ins/Flash Player.plugin"), {{"CFBundleIdentifier", "com.apple.flash"}});
    makeBundle(tree.inRoot("Library/QuickLook/Vendor/Preview.qlgenerator"), {});
    makeBundle(tree.inHome("Library/Input Methods/Keys.app"), {{"CFBundleIdentifier", "org.example.keys"}});
    makeBundle(tree.path() + "/outside/Linked.app", {{"CFBundleIdentifier", "org.example.linked"}});
    ASSERT_EQ(::symlink((tree.path() + "/outside").c_str(), tree.inRoot("Applications/Shortcut").c_str()), 0);

    const AMAppItemList apps = ApplicationInventory::scanTab(ApplicationInventory::Applications);
    QStringList appPaths = pathsOf(apps);
    appPaths.sort();
    EXPECT_EQ(appPaths, QStringList({q(outer), q(deep)})) << appPaths.join('\n').toStdString();
    const AMAppItemPtr record = byPath(apps, deep);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->name, "Deep");
    EXPECT_EQ(record->bundleID, "org.example.deep");
    EXPECT_EQ(record->bundleVersion, "1.2");
    EXPECT_EQ(record->isSystemAppStr, "NO");
    EXPECT_EQ(record->size, "0KB");
    EXPECT_FALSE(record->bIsGetSize);

    const AMAppItemList widgets = ApplicationInventory::scanTab(ApplicationInventory::Widgets);
    EXPECT_EQ(pathsOf(widgets), QStringList{q(tree.inRoot("Library/Widgets/Weather.wdgt"))});
    const AMAppItemList plugins = ApplicationInventory::scanTab(ApplicationInventory::Plugins);
    EXPECT_EQ(countOf(plugins, tree.inRoot("Library/Internet Plug-Ins/Flash Player.plugin")), 1);
    EXPECT_EQ(countOf(plugins, tree.inRoot("Library/QuickLook/Vendor/Preview.qlgenerator")), 1);
    EXPECT_EQ(countOf(plugins, tree.inHome("Library/Input Methods/Keys.app")), 1);
    EXPECT_EQ(plugins.size(), 3);

    // With the home at the system root, ~/Applications and /Applications are one folder.
    tree.environment().set("VELMORA_HOME", tree.root());
    EXPECT_EQ(countOf(ApplicationInventory::scanTab(ApplicationInventory::Applications), deep), 2);
}

// The page's inventory object: the background scan, the lazy size, the clean-up after a
// removal (by record, so the other row of a bundle listed twice stays), and the table's
// search, size order and counters.
TEST(Inventory, ScanSizesCleanUpAndListing) {
    ensureApplication();
    FakeAppTree tree("macos");
    tree.environment().set("VELMORA_HOME", tree.root());
    makeBundle(tree.inRoot("Applications/Big.app"), {{"CFBundleIdentifier", "org.example.big"}});
    makeSizedFile(tree.inRoot("Applications/Big.app/Contents/MacOS/big"), 2500000);
    makeBundle(tree.inRoot("Applications/small.app"), {{"CFBundleIdentifier", "org.example.small"}});

    ApplicationInventory inventory;
    QSignalSpy finished(&inventory, &ApplicationInventory::scanFinished);
    QSignalSpy found(&inventory, &ApplicationInventory::itemFound);
    inventory.begimScanFile();
    EXPECT_TRUE(inventory.isScan());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_FALSE(inventory.isScan());
    const AMAppItemList apps = inventory.items(ApplicationInventory::Applications);
    ASSERT_EQ(apps.size(), 4);  // each bundle twice
    EXPECT_EQ(found.size(), 4);

    QSignalSpy sized(&inventory, &ApplicationInventory::sizeReady);
    const AMAppItemPtr big = byPath(apps, tree.inRoot("Applications/Big.app"));
    inventory.requestSize(big);
    inventory.requestSize(big);  // started once only
    ASSERT_TRUE(sized.wait(10000));
    EXPECT_EQ(big->size.left(7), "2.50 MB");
    EXPECT_EQ(sized.size(), 1);

    AMAppItemList bySize = InventoryListing::sorted(apps, 1, 1);
    EXPECT_EQ(bySize.first(), big);  // "0KB" and unsized rows read as 0
    const AMAppItemList byName = InventoryListing::sorted(apps, 0, 0);
    EXPECT_EQ(byName.first()->name, "Big");  // case-sensitive: "B" before "s"
    EXPECT_EQ(InventoryListing::filtered(apps, "SMA").size(), 2);

    inventory.removeItems(ApplicationInventory::Applications, {big});
    EXPECT_EQ(inventory.items(ApplicationInventory::Applications).size(), 3);
    EXPECT_EQ(countOf(inventory.items(ApplicationInventory::Applications), tree.inRoot("Applications/Big.app")), 1);

    EXPECT_EQ(InventoryListing::counterText(0, 1), "Total: 1 Item");
    EXPECT_EQ(InventoryListing::counterText(0, 3), "Total: 3 Items");
    EXPECT_EQ(InventoryListing::counterText(2, 3), "Selected: 2/3 Items");
    EXPECT_EQ(InventoryListing::selectButtonTitle(3, 3), "Unselect all");
    EXPECT_TRUE(InventoryListing::selectAll(apps, apps).isEmpty());
    EXPECT_EQ(InventoryListing::headerText(0, 4), "   Applications(Total: 4 items)");
}
