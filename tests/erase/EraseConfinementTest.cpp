// Erasing a chosen folder never reaches outside it: not through a folder swapped for a
// link while the run is under way, and not into a file system mounted inside it.
#include "support/EraseTestSupport.h"
#include "engine/erase/EraseList.h"
#include "engine/erase/EraserLevel.h"
#include "support/ChildProcess.h"
#include "support/LoopVolume.h"

namespace velmora::test {
namespace {

class EraseConfinementTest : public EraseTest {
protected:
    static QString readAll(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString("<unreadable>");
    }
};

// The swaps happen while the tool erases a large first file, so after the list was
// built and before the folders are reached.
TEST_F(EraseConfinementTest, FoldersSwappedForLinksDuringTheRunDoNotRedirectTheErasure) {
    EraserLevel::store(1);
    const QString big = scratch("big.bin");
    writeBigFile(big, 64);
    const QString outsideA = scratch("outside-a");
    writeFile(outsideA + "/data.txt", "outside A");
    const QString outsideB = scratch("outside-b");
    writeFile(outsideB + "/inner.txt", "outside B");
    const QString chosen = scratch("chosen");
    writeFile(chosen + "/data.txt", "chosen");
    const QString walked = scratch("walked");
    writeFile(walked + "/sub/inner.txt", "walked");
    const FileObjList list = EraseList::build({fileRecord(big), fileRecord(chosen, true), fileRecord(walked, true)});

    RemoveFileAndFolder engine;
    EngineRun run(engine);
    bool swapped = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        for (const QStringList& child : childCommandLines()) {
            if (!child.first().endsWith("/srm") || swapped) continue;
            // The chosen folder itself, and a folder inside another chosen one.
            swapped = QDir().rename(chosen, scratch("chosen-moved")) && QFile::link(outsideA, chosen) &&
                      QDir().rename(walked + "/sub", scratch("sub-moved")) && QFile::link(outsideB, walked + "/sub");
            poll.stop();
        }
    });
    poll.start(2);
    engine.benginToTraskWithArr(list);
    ASSERT_TRUE(run.waitForEnd());
    ASSERT_TRUE(swapped) << "the folders were not swapped while the first file was erased";

    EXPECT_EQ(readAll(outsideA + "/data.txt"), "outside A");
    EXPECT_EQ(readAll(outsideB + "/inner.txt"), "outside B");
    ASSERT_EQ(run.results.size(), 3);
    EXPECT_EQ(run.results.at(0).failStr, "Success");
    EXPECT_EQ(run.results.at(1).failStr, "Fail");
    EXPECT_TRUE(run.results.at(1).failReason.contains("replaced")) << run.results.at(1).failReason.toStdString();
    EXPECT_TRUE(existsOnDisk(chosen)) << "the link put in the chosen folder's place is not what was chosen";
    // Inside a chosen folder a link is only a name: it goes, its target stays.
    EXPECT_EQ(run.results.at(2).failStr, "Success") << run.results.at(2).failReason.toStdString();
    EXPECT_FALSE(existsOnDisk(walked));
}

// A bind mount of a folder of the same file system: the same device number, another mount.
TEST_F(EraseConfinementTest, BindMountInsideAChosenFolderIsLeftAndTheItemFails) {
    if (const std::string problem = loopDevicesUnavailable(); !problem.empty()) GTEST_SKIP() << "SKIPPED: " << problem;
    LoopVolume volume;  // unmounts the bind mount with its own mounts, also after a failed assertion
    std::string mountPoint;
    if (const std::string problem = volume.formatAndMount("ext4", uniqueLabel("bind"), mountPoint); !problem.empty())
        GTEST_SKIP() << "SKIPPED: " << problem;
    const QString root = QString::fromStdString(mountPoint);
    writeFile(root + "/outside/keep.txt", "mounted data");
    writeFile(root + "/tree/erase-me.txt", "chosen data");
    QDir().mkpath(root + "/tree/mnt");
    const ProcessResult bind =
        runProcess({programPath("mount"), "--bind", mountPoint + "/outside", mountPoint + "/tree/mnt"});
    ASSERT_EQ(bind.status, 0) << bind.err;

    EraserLevel::store(1);
    RemoveFileAndFolder engine;
    EngineRun run(engine);
    engine.benginToTraskWithArr(EraseList::build({fileRecord(root + "/tree", true)}));
    ASSERT_TRUE(run.waitForEnd());

    ASSERT_EQ(run.results.size(), 1);
    EXPECT_EQ(run.results.first().failStr, "Fail");
    EXPECT_TRUE(run.results.first().failReason.contains("another file system"))
        << run.results.first().failReason.toStdString();
    EXPECT_EQ(readAll(root + "/tree/mnt/keep.txt"), "mounted data");
    EXPECT_EQ(readAll(root + "/outside/keep.txt"), "mounted data");
    EXPECT_FALSE(existsOnDisk(root + "/tree/erase-me.txt"));
}

}  // namespace
}  // namespace velmora::test
