#include "UninstallTestSupport.h"

#include "engine/uninstall/ApplicationInventory.h"
#include "engine/uninstall/RelatedAppFilesScanner.h"
#include "engine/uninstall/UninstallSession.h"
#include "engine/volumes/CommUti.h"
#include "support/FakeAppTrees.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::test;

namespace {

struct Removal {
    explicit Removal(UninstallSession& session) {
        QObject::connect(&session, &UninstallSession::changeProgressValue, [this](int percent, const QString&) {
            percents.append(percent);
        });
        QObject::connect(&session, &UninstallSession::changeLabel, [this](const QString& text) {
            labels.append(text);
            percentsAtLabel = percents.size();
        });
        QSignalSpy finished(&session, &UninstallSession::removalFinished);
        session.doRemove();
        done = finished.wait(20000);
    }
    QList<int> percents;
    QStringList labels;
    qsizetype percentsAtLabel = -1;
    bool done = false;
};

}  // namespace

// The confirmation tree's ticks: pre-ticked records only, a group's three states, a group
// click that ticks the rest, and "Uninstall" only while something is ticked.
TEST(UninstallSession, ConfirmationTicks) {
    FakeAppTree tree("macos");
    const std::string app = tree.inRoot("Applications/Note.app");
    makeBundle(app, {{"CFBundleName", "Note"}, {"CFBundleIdentifier", "org.example.note"}});
    makeSizedFile(tree.inHome("Library/Preferences/Note.plist"), 5);
    makeSizedFile(tree.inHome("Library/Preferences/Notebook.plist"), 5);
    UninstallSession session({RelatedAppFilesScanner::relatedFilesToApplicationAtPath(q(app))});
    session.tickPreTicked();
    const AMAppItemList& group = session.allRelaltedFiles().first();
    const AMAppItemPtr notebook = byPath(group, tree.inHome("Library/Preferences/Notebook.plist"));
    ASSERT_TRUE(notebook);
    EXPECT_TRUE(notebook->isPossibleMatch);
    EXPECT_FALSE(session.isTicked(notebook));
    EXPECT_EQ(session.selectDeletePath().size(), 2);
    EXPECT_EQ(session.groupState(0), UninstallSession::TickState::Election);
    session.selectRemoveLanguage(0);
    EXPECT_EQ(session.groupState(0), UninstallSession::TickState::Yes);
    EXPECT_EQ(session.selectDeletePath().last(), notebook);
    session.selectRemoveLanguage(0);
    EXPECT_EQ(session.groupState(0), UninstallSession::TickState::No);
    EXPECT_FALSE(session.canUninstall());
    session.selectRemoveLanguage(0, 1);
    EXPECT_TRUE(session.canUninstall());
    session.tickPreTicked(true);
    EXPECT_TRUE(session.isTicked(notebook));
}

// The removal's bookkeeping: the bar stays at 0 until the last record reports, the label
// comes just before 100 with the doubled unit, a record that could not be removed is
// named and counts no space, and the files are really gone.
TEST(UninstallSession, ProgressMessageAndFailures) {
    ensureApplication();
    FakeAppTree tree("macos");
    const std::string app = tree.inRoot("Applications/Tool.app");
    makeBundle(app, {{"CFBundleName", "Tool"}, {"CFBundleIdentifier", "org.example.tool"}});
    makeSizedFile(tree.inHome("Library/Caches/Tool/cache.db"), 1000000 - 200);
    makeSizedFile(tree.inHome("Library/Logs/Tool.log"), 300);
    UninstallSession first({RelatedAppFilesScanner::relatedFilesToApplicationAtPath(q(app))});
    first.tickPreTicked();
    ASSERT_EQ(first.selectDeletePath().size(), 3);
    const Removal ok(first);
    ASSERT_TRUE(ok.done);
    EXPECT_EQ(ok.percents, QList<int>({0, 0, 100}));
    EXPECT_EQ(ok.percentsAtLabel, 2);
    ASSERT_EQ(ok.labels.size(), 1);
    EXPECT_TRUE(ok.labels.first().endsWith("MB MB disk space.")) << ok.labels.first().toStdString();
    EXPECT_EQ(ok.labels.first(), UninstallSession::endMessage(CommUti::convertVolSpace(first.totalSize())));
    EXPECT_TRUE(first.failures().isEmpty());
    EXPECT_FALSE(exists(app));
    EXPECT_FALSE(exists(tree.inHome("Library/Caches/Tool")));

    const std::string app2 = tree.inRoot("Applications/Kept.app");
    makeBundle(app2, {{"CFBundleName", "Kept"}, {"CFBundleIdentifier", "org.example.kept"}});
    makeSizedFile(tree.inHome("Library/Preferences/Kept.plist"), 2000);
    makeSizedFile(tree.inHome("Library/Logs/Kept.log"), 3000);
    if (!setImmutable(tree.inHome("Library/Preferences/Kept.plist"), true)) GTEST_SKIP() << "SKIPPED: no immutable flag here";
    UninstallSession second({RelatedAppFilesScanner::relatedFilesToApplicationAtPath(q(app2))});
    second.tickPreTicked();
    const Removal failed(second);
    setImmutable(tree.inHome("Library/Preferences/Kept.plist"), false);
    ASSERT_TRUE(failed.done);
    EXPECT_EQ(failed.percents, QList<int>({0, 0, 100}));
    ASSERT_EQ(second.failures().size(), 1);
    EXPECT_EQ(second.failures().first().first->path, q(tree.inHome("Library/Preferences/Kept.plist")));
    EXPECT_TRUE(second.isFail());
    EXPECT_TRUE(exists(tree.inHome("Library/Preferences/Kept.plist")));
    EXPECT_FALSE(exists(tree.inHome("Library/Logs/Kept.log")));
    // The bundle (its Info.plist) and the log count; the file that stayed does not.
    EXPECT_EQ(second.totalSize(), qint64(CommUti::volSpaceFromString(second.allRelaltedFiles()[0][0]->size)) + 3000);
    EXPECT_TRUE(failed.labels.first().contains("1 could not be removed")) << failed.labels.first().toStdString();
    EXPECT_FALSE(failed.labels.first().contains("successfully"));

    EXPECT_EQ(UninstallSession::percentDone(2, 3), 0);
    EXPECT_EQ(UninstallSession::endMessage("12.30 MB"),
              "Velmora Data Eraser has successfully removed the selected application(s) and all associated files. "
              "Free up 12.30 MB MB disk space.");
}
