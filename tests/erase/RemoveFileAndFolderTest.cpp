// The file eraser's engine on real files with the real secure-remove tool.
#include "support/EraseTestSupport.h"
#include "engine/erase/EraseList.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/RemoveFileAndFolder.h"

#include <QEventLoop>
#include <QTimer>
#include <optional>
#include <sys/stat.h>

namespace velmora::test {
namespace {

QStringList verdicts(const FileObjList& results) {
    QStringList list;
    for (const FileObj& record : results) list.append(record.failStr);
    return list;
}

class RemoveFileAndFolderTest : public EraseTest {
protected:
    void SetUp() override {
        EraseTest::SetUp();
        ASSERT_TRUE(QFileInfo(binDir() + "/srm").isExecutable()) << "the srm target must be built";
    }

    // Runs the engine over the records with the tools of another folder: the
    // results, or none when the run did not end.
    static std::optional<FileObjList> runWithToolsIn(const QString& toolFolder, const FileObjList& records) {
        const ScopedEnv tools("VELMORA_BIN_DIR", toolFolder);
        RemoveFileAndFolder engine;
        EngineRun run(engine);
        engine.benginToTraskWithArr(records);
        if (!run.waitForEnd()) return std::nullopt;
        return run.results;
    }
};

TEST_F(RemoveFileAndFolderTest, SingleRecordReportsEightyOnceTwoRecordsZeroThenFifty) {
    const QString first = scratch("secret.txt");
    const QString second = scratch("second.txt");
    writeFile(first, "a secret worth destroying");
    writeFile(second, "another one");
    RemoveFileAndFolder engine;
    EngineRun single(engine);
    engine.benginToTraskWithArr({fileRecord(first)});
    ASSERT_TRUE(single.waitForEnd());
    EXPECT_EQ(single.progress, QList<float>{80.0f});
    EXPECT_EQ(verdicts(single.results), QStringList{"Success"});
    EXPECT_FALSE(existsOnDisk(first));

    // The same engine again: a new run starts over.
    writeFile(first, "written again");
    EngineRun pair(engine);
    engine.benginToTraskWithArr({fileRecord(first), fileRecord(second)});
    ASSERT_TRUE(pair.waitForEnd());
    EXPECT_EQ(pair.progress, (QList<float>{0.0f, 50.0f}));
    EXPECT_EQ(pair.paths, (QStringList{first, second}));
    EXPECT_EQ(verdicts(pair.results), (QStringList{"Success", "Success"}));
    EXPECT_EQ(pair.failures, 0);
    EXPECT_FALSE(existsOnDisk(first));
    EXPECT_FALSE(existsOnDisk(second));
}

// A chosen folder is one operand for the tool, which reports every item it removes;
// an ".app" folder is overwritten like any other folder off macOS.
TEST_F(RemoveFileAndFolderTest, MixedListFollowsTheProgressAndVerdictRules) {
    const QString text = scratch("a.txt");
    const QString empty = scratch("empty.log");
    const QString folder = scratch("folder");
    const QString bundle = scratch("Tool.app");
    const QString unmarkedFolder = scratch("unmarked");
    const QString target = scratch("outside/keep.txt");
    const QString link = scratch("link");
    writeFile(text, QByteArray(5000, 'x'));
    writeFile(empty, {});
    writeFile(folder + "/sub/inner.txt", "inner");
    writeFile(bundle + "/Contents/MacOS/Tool", "binary");
    writeFile(target, "must survive");
    QDir().mkpath(unmarkedFolder);
    ASSERT_TRUE(QFile::link(target, link));

    LogCapture log;
    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr(EraseList::build({fileRecord(text), fileRecord(empty), fileRecord(folder, true),
                                                  fileRecord(bundle, true), fileRecord(link),
                                                  fileRecord(unmarkedFolder, false)}));
    ASSERT_TRUE(run.waitForEnd());

    // 1 + 1 + 3 + 4 + 1 + 1 items; inside the folders each removed item is reported.
    EXPECT_EQ(engine.itemCount(), 11);
    EXPECT_EQ(run.indexes, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(run.progress, (QList<float>{0, 9, 18, 27, 36, 45, 54, 63, 72, 81, 90}));
    EXPECT_EQ(run.paths.at(3), folder + "/sub/inner.txt");
    EXPECT_TRUE(run.paths.contains(bundle + "/Contents/MacOS/Tool")) << "the bundle was not overwritten item by item";
    EXPECT_EQ(verdicts(run.results), (QStringList{"Success", "Success", "Success", "Success", "Success", "Fail"}));
    EXPECT_TRUE(run.results.last().failReason.contains("not chosen as one"));
    EXPECT_EQ(run.failures, 1);  // the folder not chosen as one
    for (const QString& path : {text, empty, folder, bundle, link}) EXPECT_FALSE(existsOnDisk(path)) << path.toStdString();
    EXPECT_TRUE(existsOnDisk(unmarkedFolder));
    QFile kept(target);  // the link went, not what it points to
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "must survive");
    EXPECT_TRUE(log.lines().contains("rm file sec " + empty));
    EXPECT_FALSE(log.lines().contains("rm file sec " + text));  // content goes through the tool
}

// Erased means the tool succeeded and the item is gone; everything else is a failure
// with the reason, also when the file changed after it was listed.
TEST_F(RemoveFileAndFolderTest, OnlyProvenErasuresSucceed) {
    const QString linked = scratch("linked.bin");
    writeFile(linked, QByteArray(20000, 'h'));
    ASSERT_EQ(link(QFile::encodeName(linked).constData(), QFile::encodeName(scratch("second-name")).constData()), 0);
    const QString filledLater = scratch("filled-later.txt");
    writeFile(filledLater, {});
    const FileObjList list = EraseList::build({fileRecord(linked), fileRecord(filledLater)});
    // Empty when listed, with data when the run reaches it.
    writeFile(filledLater, "MARKER-written-after-listing");
    const int openFd = open(QFile::encodeName(filledLater).constData(), O_RDONLY);
    ASSERT_GE(openFd, 0);

    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr(list);
    ASSERT_TRUE(run.waitForEnd());
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_EQ(run.results.at(0).failStr, "Fail");
    EXPECT_TRUE(run.results.at(0).failReason.contains("hard links")) << run.results.at(0).failReason.toStdString();
    EXPECT_GE(run.failures, 1);
    // Overwritten and emptied by the tool, not merely unlinked: the data is gone even
    // for a reader that still holds the file open.
    EXPECT_EQ(run.results.at(1).failStr, "Success");
    struct stat status;
    ASSERT_EQ(fstat(openFd, &status), 0);
    EXPECT_EQ(status.st_size, 0);
    close(openFd);
}

TEST_F(RemoveFileAndFolderTest, ProgressIsTheIntegerShareOfHandledRecords) {
    FileObjList list;
    for (int i = 0; i < 100; ++i) {
        const QString path = scratch(QString("empty-%1").arg(i));
        writeFile(path, {});
        list.append(fileRecord(path));
    }
    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr(list);
    ASSERT_TRUE(run.waitForEnd());
    ASSERT_EQ(run.progress.size(), 100);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(run.progress.at(i), float(i)) << "report " << i;
    EXPECT_EQ(run.results.size(), 100);
    EXPECT_TRUE(QDir(scratch("")).isEmpty());
}

TEST_F(RemoveFileAndFolderTest, ImmutableFileIsReleasedAndErased) {
    const QString path = scratch("locked.bin");
    writeFile(path, QByteArray(4096, 'L'));
    if (!makeImmutable(path)) GTEST_SKIP() << "SKIPPED: setting the immutable flag needs root on a file system that supports it";
    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr({fileRecord(path)});
    ASSERT_TRUE(run.waitForEnd());
    EXPECT_FALSE(existsOnDisk(path));
}

TEST_F(RemoveFileAndFolderTest, MissingToolStillEndsTheRun) {
    QTemporaryDir emptyBin;
    const QString path = scratch("data.txt");
    writeFile(path, "content");
    const std::optional<FileObjList> results = runWithToolsIn(emptyBin.path(), {fileRecord(path), fileRecord(path)});
    ASSERT_TRUE(results);
    EXPECT_EQ(verdicts(*results), (QStringList{"Fail", "Fail"}));
    EXPECT_EQ(results->first().failReason, "the secure-remove tool could not be started");
    EXPECT_TRUE(existsOnDisk(path));
}

// A file swapped for a link after the engine's last look: the tool then removes only
// the link and ends well, but the file's data is not erased, so the verdict is Fail.
TEST_F(RemoveFileAndFolderTest, FileSwappedForALinkJustBeforeTheToolIsNotErased) {
    QTemporaryDir standInBin;
    QFile tool(standInBin.filePath("srm"));
    ASSERT_TRUE(tool.open(QIODevice::WriteOnly));
    // The path comes NUL-terminated on standard input; output lines end with NUL.
    tool.write("#!/bin/sh\n"
               "last=$(tr -d '\\000')\n"
               "mv -- \"$last\" \"$last.kept\" && ln -s \"$last.kept\" \"$last\" && rm -- \"$last\"\n"
               "printf 'removed %s (symbolic link; its target is untouched)\\000' \"$last\"\n");
    tool.close();
    ASSERT_TRUE(tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QString path = scratch("data.txt");
    writeFile(path, "content");
    const std::optional<FileObjList> results = runWithToolsIn(standInBin.path(), {fileRecord(path)});
    ASSERT_TRUE(results);
    EXPECT_EQ(verdicts(*results), QStringList{"Fail"});
    EXPECT_TRUE(results->first().failReason.contains("replaced by a link")) << results->first().failReason.toStdString();
    EXPECT_TRUE(existsOnDisk(path + ".kept"));
}

// The engine launches the real tool with exactly the option string of the level (the
// path goes to its standard input); each run is cancelled as soon as the tool is seen
// running.
TEST_F(RemoveFileAndFolderTest, LevelChoosesTheToolOptionsAndCancelStopsTheTool) {
    const QList<QPair<int, QString>> levels = {{1, "-fsvrz"}, {2, "-fsvrz"}, {3, "-fEvrz"}, {7, "-fmvrz"}, {35, "-fvrz"}, {5, "-fsvrz"}};
    const QString big = scratch("big.bin");
    const QString waiting = scratch("waiting.txt");
    writeBigFile(big, 64);
    writeFile(waiting, "not started");
    for (const auto& [level, options] : levels) {
        SCOPED_TRACE(level);
        EraserLevel::store(level);
        RemoveFileAndFolder engine;
        EngineRun run(engine);
        QStringList seen;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            for (const QStringList& child : childCommandLines()) {
                if (!child.first().endsWith("/srm")) continue;
                seen = child;
                engine.isCancel();
                poll.stop();
            }
        });
        poll.start(2);
        engine.benginToTraskWithArr({fileRecord(big), fileRecord(waiting)});
        ASSERT_TRUE(run.waitForEnd());
        poll.stop();
        ASSERT_FALSE(seen.isEmpty()) << "the tool was never seen running";
        EXPECT_EQ(seen.mid(1), (QStringList{options, "-0", "--files0-from=-"}));
        // The run ended on the cancel: the second record never started.
        ASSERT_EQ(run.results.size(), 1);
        EXPECT_EQ(run.results.first().url, big);
        EXPECT_EQ(run.results.first().failStr, "Fail");
        EXPECT_EQ(run.progress, QList<float>{0.0f});
        EXPECT_TRUE(existsOnDisk(big));
        EXPECT_TRUE(existsOnDisk(waiting));
        EXPECT_TRUE(childCommandLines().isEmpty());
    }
}

}  // namespace
}  // namespace velmora::test
