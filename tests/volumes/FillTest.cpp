// The free-space fill on a plain folder standing in for a volume of the macOS
// layout ("<volumes root>/NAME"), with the free space given by hand. Writes are
// bounded by that number (at most 256 MB per test).
#include "VolumeTestSupport.h"
#include "WipeRun.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/platform/StandardPaths.h"

#include <QFileInfo>

namespace velmora::test {
namespace {

constexpr char kFreeSpaceDone[] = "The deleted/lost data on the hard drive has been successfully erased.";

class FillTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(QDir().mkpath(volumeFolder()));
        EraserLevel::store(1);
        wipe.selectEraserType = 1;
        wipe.selectVolumeObj.volumeName = "TESTVOL";
        wipe.selectVolumeObj.volumeType = "MS-DOS FAT32";
        wipe.selectVolumeObj.volumeMountPoint = "/Volumes/TESTVOL";
    }

    QString volumeFolder() const { return m_root.path() + "/Volumes/TESTVOL"; }
    QString fillFolder() const { return volumeFolder() + "/.Velmora"; }

    WipeRun runWithFreeSpace(qint64 freeBytes, int timeoutMs = 120000,
                             const std::function<void(const QString&)>& onProgress = {}) {
        wipe.selectVolumeObj.volumeFreeSizeNum = freeBytes;
        return WipeRun::until(wipe, nullptr, [this] { wipe.doFreeSpaceAction(); }, timeoutMs, onProgress);
    }

    TempDataDir m_data;
    QTemporaryDir m_root;
    ScopedEnv m_layout{"VELMORA_LAYOUT", "macos"};
    ScopedEnv m_volumes{"VELMORA_VOLUMES_ROOT", m_root.path() + "/Volumes"};
    FreeSpaceWipe wipe;
};

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

TEST_F(FillTest, RemainderFileFollowsItsTwoContentRules) {
    const QString folder = m_root.filePath("remainder");
    ASSERT_TRUE(QDir().mkpath(folder));
    wipe.writLostDataWithLoseCount(1, 3, folder);
    wipe.writLostDataWithLoseCount(7, 0, folder);
    wipe.writLostDataWithLoseCount(4001, 2, folder);
    wipe.writLostDataWithLoseCount(12000, 5, folder);
    wipe.writLostDataWithLoseCount(0, 9, folder);

    EXPECT_EQ(readAll(folder + "/.velmora_3"), "(");
    EXPECT_EQ(readAll(folder + "/.velmora_0"), "(null)0");
    EXPECT_EQ(readAll(folder + "/.velmora_2"), QByteArray(4000, '\0') + "0");
    EXPECT_EQ(readAll(folder + "/.velmora_5"), QByteArray(12000, '\0'));
    EXPECT_FALSE(QFileInfo::exists(folder + "/.velmora_9"));
    QCoreApplication::processEvents();
    EXPECT_TRUE(wipe.errorString().isEmpty());
}

TEST_F(FillTest, FillFileIsZerosWithOneRandomHeaderByte) {
    const QString folder = m_root.filePath("fill");
    ASSERT_TRUE(QDir().mkpath(folder));
    wipe.createDydFile(folder, 7);
    QFile file(folder + "/.velmora_7");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.size(), 128008008);
    const QByteArray head = file.read(4008);
    EXPECT_EQ(head.left(4000), QByteArray(4000, '\0'));
    EXPECT_EQ(head.mid(4001), QByteArray(7, '\0'));
    const QByteArray zeros(1 << 20, '\0');
    qint64 nonZeroChunks = 0;
    while (!file.atEnd()) {
        const QByteArray chunk = file.read(zeros.size());
        if (chunk != zeros.left(chunk.size())) ++nonZeroChunks;
    }
    EXPECT_EQ(nonZeroChunks, 0);
}

TEST_F(FillTest, OnePassWritesFillFilesAndRemainderThenEndsErased) {
    // fillCount 3, remainder 1: fill files 1 and 2, the remainder file 3, 25% a step.
    const WipeRun run = runWithFreeSpace(384000001);
    ASSERT_TRUE(run.ended) << "stalled " << run.stalled << " timed out " << run.timedOut;
    EXPECT_EQ(run.progressTexts,
              QStringList({"Erased 25.00% in 1 of 1 pass", "Erased 50.00% in 1 of 1 pass", "Erased 100% in 1 of 1 pass"}));
    EXPECT_EQ(run.percents, QList<float>({25.0f, 50.0f, 100.0f}));
    EXPECT_EQ(run.closeWindowCount, 1);
    EXPECT_TRUE(run.succeeded);
    EXPECT_EQ(run.endText, kFreeSpaceDone);
    EXPECT_EQ(wipe.wipeScanPathStr(), fillFolder());
    EXPECT_FALSE(QFileInfo::exists(fillFolder()));
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:TESTVOL|Erased"});
    EXPECT_EQ(PublicUtilities::getUpDataHistoryStr(DoDataBase::kWipeVolumeHistory), "1");
}

TEST_F(FillTest, PassesAfterAShortFillAreSkippedAndTheRunNeverEnds) {
    // Less than two fill units free: only the remainder file, and pass 1 leaves
    // isRounding set, so passes 2 and 3 are skipped without an end view.
    EraserLevel::store(3);
    const WipeRun run = runWithFreeSpace(200000000);
    EXPECT_TRUE(run.stalled);
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(run.progressTexts, QStringList{"Erased 100% in 1 of 3 passes"});
    EXPECT_EQ(run.closeWindowCount, 0);
    EXPECT_EQ(wipe.iRoundTimes(), 1);
    EXPECT_FALSE(QFileInfo::exists(fillFolder()));
    EXPECT_TRUE(volumeHistoryItems().isEmpty());
}

TEST_F(FillTest, NothingFreeStillRunsAPassAndEnds) {
    const WipeRun run = runWithFreeSpace(0);
    ASSERT_TRUE(run.ended);
    EXPECT_TRUE(run.succeeded);
    EXPECT_EQ(run.progressTexts, QStringList{"Erased 100% in 1 of 1 pass"});
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:TESTVOL|Erased"});
}

TEST_F(FillTest, CancelEndsInTheFailureViewAndRemovesTheFill) {
    const WipeRun run = runWithFreeSpace(384000001, 120000, [this](const QString&) { wipe.cancelWipeSpaceButtonAction(); });
    ASSERT_TRUE(run.ended);
    EXPECT_FALSE(run.succeeded);
    EXPECT_TRUE(run.cancelled);
    EXPECT_EQ(run.endText, "The operation was canceled by the user.");
    EXPECT_EQ(run.progressTexts.first(), "Erased 25.00% in 1 of 1 pass");
    EXPECT_FALSE(run.progressTexts.contains("Erased 50.00% in 1 of 1 pass"));
    EXPECT_FALSE(QFileInfo::exists(fillFolder()));
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:TESTVOL|Failed"});
}

TEST_F(FillTest, UnwritableVolumeFallsBackToTheTemporaryFolder) {
    // A file where the volume's folder should be: its fill folder cannot be made.
    ASSERT_TRUE(QDir(volumeFolder()).removeRecursively());
    QFile blocker(volumeFolder());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const WipeRun run = runWithFreeSpace(5000);
    ASSERT_TRUE(run.ended);
    EXPECT_TRUE(run.succeeded);
    const QString fallback = StandardPaths::tempDir() + "/.Velmora";
    EXPECT_EQ(wipe.wipeScanPathStr(), fallback);
    EXPECT_FALSE(QFileInfo::exists(fallback));

    // A fill folder left behind (the application was stopped mid-run) goes at exit.
    ASSERT_TRUE(QDir().mkpath(fallback));
    QFile leftover(fallback + "/.velmora_1");
    ASSERT_TRUE(leftover.open(QIODevice::WriteOnly));
    leftover.close();
    wipe.endAppRemoveFolder();
    EXPECT_FALSE(QFileInfo::exists(fallback));
}

TEST_F(FillTest, EraseNowDecisionsAndFillFolders) {
    using Start = FreeSpaceWipe::WipeStart;
    EXPECT_EQ(wipe.wipeButtonAction(), Start::DoFreeAction);
    EXPECT_EQ(wipe.fillFolderPath(), fillFolder());
    wipe.selectVolumeObj.volumeType = "NTFS";
    EXPECT_EQ(wipe.wipeButtonAction(), Start::ShowNTFSWindow);
    // An NTFS volume is filled after the whole-drive erase renamed it "NEW".
    EXPECT_EQ(wipe.fillFolderPath(), m_root.path() + "/Volumes/NEW/.Velmora");

    wipe.selectEraserType = 2;
    EXPECT_EQ(wipe.wipeButtonAction(), Start::DoEraserPartiltion);
    wipe.selectVolumeObj.volumeMountPoint = "/";
    EXPECT_EQ(wipe.wipeButtonAction(), Start::ShowSystemEraser);
    wipe.selectEraserType = 3;
    EXPECT_EQ(wipe.wipeButtonAction(), Start::NoSelectType);

    // On Linux the fill goes to the mount point; without one there is no fill folder
    // (never "/.Velmora" on the system disk).
    ScopedEnv linux("VELMORA_LAYOUT", "linux");
    wipe.selectVolumeObj.volumeType = "ext4";
    wipe.selectVolumeObj.volumeMountPoint = "/media/user/USB";
    EXPECT_EQ(wipe.fillFolderPath(), "/media/user/USB/.Velmora");
    wipe.selectVolumeObj.volumeMountPoint.clear();
    EXPECT_EQ(wipe.fillFolderPath(), "");
}

}  // namespace
}  // namespace velmora::test
