#include "UninstallTestSupport.h"

#include "engine/uninstall/RelatedAppFilesScanner.h"
#include "support/FakeAppTrees.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace velmora;
using namespace velmora::test;

// One application on a fake macOS machine: the bundle first, then the library folders in
// their fixed order (user before local), the name matched with and without its blanks and
// case ignored, an entry that begins with both terms listed twice, the Growl ticket by its
// exact form, and each record sized.
TEST(RelatedFiles, ScannerKeepsTheFolderOrderAndTerms) {
    FakeAppTree tree("macos");
    const std::string app = tree.inRoot("Applications/My App.app");
    makeBundle(app, {{"CFBundleName", "My App"}, {"CFBundleIdentifier", "My App.helper"}}, true);
    const std::vector<std::string> expected = {
        app,
        tree.inHome("Library/Preferences/my app.plist"),
        tree.inRoot("Library/Preferences/MyApp.plist"),
        tree.inHome("Library/Caches/My App"),
        tree.inRoot("Library/Logs/myapp-crash.log"),
        tree.inHome("Library/Saved Application State/My App.helper.savedState"),  // by the name ...
        tree.inHome("Library/Saved Application State/My App.helper.savedState"),  // ... and by the identifier
        tree.inHome("Library/Application Support/MyApp Agent"),
        tree.inRoot("Library/Application Support/My App"),
        tree.inHome("Downloads/My App 2.dmg"),
        tree.inHome("Library/Application Support/Growl/Tickets/My App.growlTicket"),
    };
    // Names without an extension are folders holding one file.
    for (std::size_t i = 1; i < expected.size(); ++i) {
        const bool folder = expected[i].find('.', expected[i].rfind('/')) == std::string::npos;
        makeSizedFile(expected[i] + (folder ? "/data" : ""), 100);
    }
    makeSizedFile(tree.inHome("Library/Preferences/Agent MyApp.plist"), 10);
    makeSizedFile(tree.inHome("Library/Preferences/My.plist"), 10);
    makeSizedFile(tree.inHome("Library/Application Support/Growl/Tickets/Other.growlTicket"), 10);
    makeSizedFile(tree.inRoot("Library/Saved Application State/My App.helper.savedState"), 10);  // user domain only

    const AMAppItemList related = RelatedAppFilesScanner::relatedFilesToApplicationAtPath(q(app));
    QStringList wanted;
    for (const std::string& path : expected) wanted.append(q(path));
    EXPECT_EQ(pathsOf(related), wanted) << pathsOf(related).join('\n').toStdString();
    ASSERT_FALSE(related.isEmpty());
    EXPECT_EQ(related.first()->name, "My App");
    EXPECT_EQ(related[1]->size, "0.10 KB");
    EXPECT_TRUE(related[1]->bIsGetSize);
}

// Which name is searched: CFBundleExecutable without CFBundleName; nothing at all without
// an identifier (also " " or ""), although the name would match.
TEST(RelatedFiles, SearchNameAndIdentifierRules) {
    FakeAppTree tree("macos");
    makeSizedFile(tree.inHome("Library/Preferences/ExecTool.plist"), 1);
    makeSizedFile(tree.inHome("Library/Preferences/Quiet.plist"), 1);
    const std::string exec = tree.inRoot("Applications/Exec.app");
    makeBundle(exec, {{"CFBundleExecutable", "ExecTool"}, {"CFBundleIdentifier", "org.example.exec"}});
    EXPECT_EQ(pathsOf(RelatedAppFilesScanner::relatedFilesToApplicationAtPath(q(exec))),
              QStringList({q(exec), q(tree.inHome("Library/Preferences/ExecTool.plist"))}));

    for (const std::string& identifier : {std::string(), std::string(" "), std::string("none")}) {
        const std::string quiet = tree.inRoot("Applications/Quiet" + std::to_string(identifier.size()) + ".app");
        std::map<std::string, std::string> info = {{"CFBundleName", "Quiet"}};
        if (identifier != "none") info["CFBundleIdentifier"] = identifier;
        makeBundle(quiet, info);
        EXPECT_EQ(RelatedAppFilesScanner::relatedFilesToApplicationAtPath(q(quiet)).size(), 1) << "identifier '" << identifier << "'";
    }
}

// The size texts: decimal units in single precision, a folder as the sum of its files, a
// link counted as nothing and never followed.
TEST(RelatedFiles, SizeTexts) {
    TempDir dir;
    makeSizedFile(dir / "kilo", 999999);
    makeSizedFile(dir / "mega", 1000000);
    makeSizedFile(dir / "empty", 0);
    makeSizedFile(dir / "tree/a/b/one", 300000);
    makeSizedFile(dir / "tree/two", 200000);
    ASSERT_EQ(::symlink((dir / "mega").c_str(), (dir / "tree/link").c_str()), 0);
    EXPECT_EQ(RelatedAppFilesScanner::getFileSizeItem(q(dir / "kilo")), "1000.00 KB");
    EXPECT_EQ(RelatedAppFilesScanner::getFileSizeItem(q(dir / "mega")), "1.00 MB");
    EXPECT_EQ(RelatedAppFilesScanner::getFileSizeItem(q(dir / "empty")), "0.00 KB");
    EXPECT_EQ(RelatedAppFilesScanner::getFileSizeItem(q(dir / "tree")), "500.00 KB");
    EXPECT_EQ(RelatedAppFilesScanner::getFileSizeItem(q(dir / "tree/link")), "0.00 KB");
}
