#include "support/BrowserProfiles.h"
#include "support/ChildProcess.h"
#include "support/FakeAppTrees.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace velmora::test;

namespace {

QJsonArray jsonArray(const ProcessResult& result) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(result.out)).array();
}

}  // namespace

// On a fake macOS machine the related files of "/Applications/My App.app" (the path below
// the fake root) come in the scanner's order with sizes and pre-ticks; a name from
// `apps` names the same application.
TEST(UninstallCommands, RelatedOnTheMacLayout) {
    FakeAppTree tree("macos");
    makeBundle(tree.inRoot("Applications/My App.app"), {{"CFBundleName", "My App"}, {"CFBundleIdentifier", "com.example.myapp"}}, true);
    makeSizedFile(tree.inHome("Library/Preferences/my app.plist"), 1000000);
    makeSizedFile(tree.inHome("Library/Application Support/MyApp Agent/state"), 10);
    makeSizedFile(tree.inHome("Library/Application Support/Agent MyApp/state"), 10);
    makeSizedFile(tree.inHome("Library/Application Support/MyAppendix/state"), 10);

    const ProcessResult result = runCli({"related", "--json", "/Applications/My App.app"});
    ASSERT_EQ(result.status, 0) << result.err;
    const QJsonArray entries = jsonArray(result);
    ASSERT_EQ(entries.size(), 4) << result.out;
    EXPECT_EQ(entries[0]["path"].toString().toStdString(), tree.inRoot("Applications/My App.app"));
    EXPECT_EQ(entries[1]["path"].toString().toStdString(), tree.inHome("Library/Preferences/my app.plist"));
    EXPECT_EQ(entries[1]["size"].toString(), "1.00 MB");
    EXPECT_TRUE(entries[1]["preTicked"].toBool());
    QStringList supportNames = {entries[2]["name"].toString(), entries[3]["name"].toString()};
    supportNames.sort();
    EXPECT_EQ(supportNames, QStringList({"MyApp Agent", "MyAppendix"}));  // not "Agent MyApp"
    for (const QJsonValue& entry : entries) {
        const bool appendix = entry["name"].toString() == "MyAppendix";
        EXPECT_EQ(entry["preTicked"].toBool(), !appendix) << entry["name"].toString().toStdString();
        EXPECT_EQ(entry["possibleMatch"].toBool(), appendix);
    }

    const ProcessResult byName = runCli({"related", "--json", "My App"});
    EXPECT_EQ(jsonArray(byName), entries);
    EXPECT_EQ(runCli({"related", "Nothing Here"}).status, 1);
    EXPECT_EQ(runCli({"related"}).status, 2);
}

// On a fake Linux home: "uninstall --yes Go" removes the AppImage and ~/.config/Go and
// leaves ~/.config/google-chrome; a removal that fails is named and gives exit 1.
TEST(UninstallCommands, UninstallOnTheLinuxLayout) {
    FakeAppTree tree("linux");
    makeSizedFile(tree.inHome("Applications/Go-1.2-x86_64.AppImage"), 5000);
    makeSizedFile(tree.inHome(".config/Go/settings"), 10);
    makeSizedFile(tree.inHome(".config/google-chrome/Default/History"), 10);
    // A leftover that is a link goes as a link; what it points to stays.
    makeSizedFile(tree.path() + "/elsewhere/keep", 10);
    makeFolders(tree.inHome(".cache"));
    ASSERT_EQ(::symlink((tree.path() + "/elsewhere").c_str(), tree.inHome(".cache/Go").c_str()), 0);

    const ProcessResult apps = runCli({"apps", "--json"});
    ASSERT_EQ(apps.status, 0) << apps.err;
    ASSERT_EQ(jsonArray(apps).size(), 1) << apps.out;
    EXPECT_EQ(jsonArray(apps).at(0)["kind"].toString(), "appimage");

    const ProcessResult result = runCli({"uninstall", "--yes", "Go"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_FALSE(exists(tree.inHome("Applications/Go-1.2-x86_64.AppImage")));
    EXPECT_FALSE(exists(tree.inHome(".config/Go")));
    EXPECT_TRUE(exists(tree.inHome(".config/google-chrome/Default/History")));
    EXPECT_FALSE(exists(tree.inHome(".cache/Go")));
    EXPECT_TRUE(exists(tree.path() + "/elsewhere/keep"));
    EXPECT_NE(result.out.find("Free up 5.01 KB MB disk space."), std::string::npos) << result.out;

    makeSizedFile(tree.inHome("Applications/Pinned.AppImage"), 10);
    makeSizedFile(tree.inHome(".config/Pinned.conf"), 10);
    if (!setImmutable(tree.inHome(".config/Pinned.conf"), true)) GTEST_SKIP() << "SKIPPED: no immutable flag here";
    const ProcessResult failed = runCli({"uninstall", "--yes", "--json", "Pinned"});
    setImmutable(tree.inHome(".config/Pinned.conf"), false);
    EXPECT_EQ(failed.status, 1);
    EXPECT_NE(failed.err.find("not removed: " + tree.inHome(".config/Pinned.conf")), std::string::npos) << failed.err;
    const QJsonArray outcomes = jsonArray(failed);
    ASSERT_EQ(outcomes.size(), 2) << failed.out;
    EXPECT_FALSE(exists(tree.inHome("Applications/Pinned.AppImage")));
    EXPECT_EQ(runCli({"uninstall", "--bogus", "Go"}).status, 2);
}
