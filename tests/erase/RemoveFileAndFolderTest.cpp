// The file eraser's engine on real files with the real secure-remove tool.
#include "EraseTestSupport.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/RemoveFileAndFolder.h"

#include <QEventLoop>
#include <QTimer>

namespace velmora::test {
namespace {

// Records everything the engine reports during one run.
class EngineRun {
public:
    explicit EngineRun(RemoveFileAndFolder& engine) {
        QObject::connect(&engine, &RemoveFileAndFolder::removeProgress, &m_loop, [this](float value, const QString& path, int index) {
            progress.append(value);
            paths.append(path);
            indexes.append(index);
        });
        QObject::connect(&engine, &RemoveFileAndFolder::haveFailEraser, &m_loop, [this] { ++failures; });
        QObject::connect(&engine, &RemoveFileAndFolder::removeObjEnd, &m_loop, [this](const FileObjList& list) {
            results = list;
            ++ends;
            m_loop.quit();
        });
    }

    // False when the run did not end within two minutes.
    bool waitForEnd() {
        if (ends == 0) {
            QTimer::singleShot(120000, &m_loop, &QEventLoop::quit);
            m_loop.exec();
        }
        return ends == 1;
    }

    QList<float> progress;
    QStringList paths;
    QList<int> indexes;
    int failures = 0;
    int ends = 0;
    FileObjList results;

private:
    QEventLoop m_loop;
};

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

TEST_F(RemoveFileAndFolderTest, MixedListFollowsTheProgressAndVerdictRules) {
    const QString text = scratch("a.txt");
    const QString empty = scratch("empty.log");
    const QString occupied = scratch("occupied");
    const QString bundle = scratch("Tool.app");
    const QString emptyFolder = scratch("nothing");
    const QString unmarkedFolder = scratch("unmarked");
    const QString target = scratch("outside/keep.txt");
    const QString link = emptyFolder + "/link";
    writeFile(text, QByteArray(5000, 'x'));
    writeFile(empty, {});
    writeFile(occupied + "/kept.txt", "still here");
    writeFile(bundle + "/Contents/MacOS/Tool", "binary");
    writeFile(target, "must survive");
    QDir().mkpath(emptyFolder);
    QDir().mkpath(unmarkedFolder);
    ASSERT_TRUE(QFile::link(target, link));
    FileObj linkRecord = fileRecord(link);
    linkRecord.size = 0;  // as the erase list records links

    LogCapture log;
    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr({fileRecord(text), fileRecord(empty), fileRecord(occupied, true), fileRecord(bundle, true),
                                 linkRecord, fileRecord(emptyFolder, true), fileRecord(unmarkedFolder, false)});
    ASSERT_TRUE(run.waitForEnd());

    EXPECT_EQ(run.progress, (QList<float>{0, 14, 28, 42, 57, 71, 85}));
    EXPECT_EQ(run.indexes, (QList<int>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(run.paths, (QStringList{text, empty, occupied, bundle, link, emptyFolder, unmarkedFolder}));
    EXPECT_EQ(verdicts(run.results), (QStringList{"Success", "Success", "Fail", "Success", "Success", "Success", "Fail"}));
    EXPECT_EQ(run.failures, 2);  // the folder still holding an entry, the folder not marked as one
    EXPECT_FALSE(existsOnDisk(text));
    EXPECT_FALSE(existsOnDisk(empty));
    EXPECT_TRUE(existsOnDisk(occupied + "/kept.txt"));
    EXPECT_FALSE(existsOnDisk(bundle));  // removed whole, contents and all
    EXPECT_FALSE(existsOnDisk(emptyFolder));
    EXPECT_TRUE(existsOnDisk(unmarkedFolder));
    QFile kept(target);  // the link went, not what it points to
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "must survive");
    EXPECT_TRUE(log.lines().contains("rm file sec " + empty));
    EXPECT_FALSE(log.lines().contains("rm file sec " + text));  // content goes through the tool
    EXPECT_TRUE(log.lines().contains("-------::" + occupied));
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
    const QByteArray realBin = qgetenv("VELMORA_BIN_DIR");
    qputenv("VELMORA_BIN_DIR", emptyBin.path().toUtf8());
    const QString path = scratch("data.txt");
    writeFile(path, "content");
    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr({fileRecord(path), fileRecord(path)});
    const bool ended = run.waitForEnd();
    qputenv("VELMORA_BIN_DIR", realBin);
    ASSERT_TRUE(ended);
    EXPECT_EQ(run.results.size(), 2);
    EXPECT_TRUE(existsOnDisk(path));
}

// The engine launches the real tool with exactly the option string of the level
// and the path; each run is cancelled as soon as the tool is seen running.
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
        EXPECT_EQ(seen.mid(1), (QStringList{options, big}));
        // The run ended on the cancel: the second record never started.
        ASSERT_EQ(run.results.size(), 1);
        EXPECT_EQ(run.results.first().url, big);
        EXPECT_EQ(run.progress, QList<float>{0.0f});
        EXPECT_TRUE(existsOnDisk(big));
        EXPECT_TRUE(existsOnDisk(waiting));
        EXPECT_TRUE(childCommandLines().isEmpty());
    }
}

}  // namespace
}  // namespace velmora::test
