// The free-space fill's files and its fill folder on a plain folder standing in
// for a volume (its device number pins it): what the files hold, and that the
// folder cannot be redirected. Runs that write until the volume is full need a
// mounted volume and live in FillLoopTest.cpp; here a run only fails early.
#include "VolumeTestSupport.h"
#include "WipeRun.h"
#include "engine/erase/EraserLevel.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/FillFolder.h"

#include <QFileInfo>
#include <sys/stat.h>

namespace velmora::test {
namespace {

constexpr char kFolderFailText[] =
    "The hard drive is occupied or the hard drive is read-only. \n"
    "Close other programs or remove the read-only attribute to try again.";

quint64 deviceOf(const QString& path) {
    struct stat info;
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 ? quint64(info.st_dev) : 0;
}

class FillTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        EraserLevel::store(1);
        ASSERT_TRUE(QDir().mkpath(volume()));
        ASSERT_TRUE(QDir().mkpath(outside()));
        writeFile(outside() + "/keep.txt", "outside the volume");
        wipe.selectEraserType = 1;
        wipe.selectVolumeObj.volumeName = "TESTVOL";
        wipe.selectVolumeObj.volumeType = "ext4";
        wipe.selectVolumeObj.volumeMountPoint = volume();
        wipe.selectVolumeObj.deviceNumber = deviceOf(volume());
    }

    QString volume() const { return m_root.path() + "/vol"; }
    QString outside() const { return m_root.path() + "/outside"; }
    QString fillFolder() const { return volume() + "/.Velmora"; }
    quint64 device() const { return deviceOf(volume()); }

    WipeRun runExpectingEarlyFailure(int passes) {
        EraserLevel::store(passes);
        wipe.selectVolumeObj.volumeFreeSizeNum = 384000001;
        return WipeRun::until(wipe, [this] { wipe.doFreeSpaceAction(); }, 30000);
    }

    TempDataDir m_data;
    QTemporaryDir m_root;
    FreeSpaceWipe wipe;
};

TEST_F(FillTest, RemainderFileFollowsItsTwoContentRules) {
    FillFolder folder(volume(), device());
    ASSERT_TRUE(folder.isOpen()) << folder.problem().toStdString();
    EXPECT_TRUE(wipe.writLostDataWithLoseCount(1, 3, folder));
    EXPECT_TRUE(wipe.writLostDataWithLoseCount(7, 0, folder));
    EXPECT_TRUE(wipe.writLostDataWithLoseCount(4001, 2, folder));
    EXPECT_TRUE(wipe.writLostDataWithLoseCount(12000, 5, folder));
    EXPECT_TRUE(wipe.writLostDataWithLoseCount(0, 9, folder));

    EXPECT_EQ(readAll(fillFolder() + "/.velmora_3"), "(");
    EXPECT_EQ(readAll(fillFolder() + "/.velmora_0"), "(null)0");
    EXPECT_EQ(readAll(fillFolder() + "/.velmora_2"), QByteArray(4000, '\0') + "0");
    EXPECT_EQ(readAll(fillFolder() + "/.velmora_5"), QByteArray(12000, '\0'));
    EXPECT_FALSE(QFileInfo::exists(fillFolder() + "/.velmora_9"));
    // A fill file is never written over: the same index again is a failed write.
    EXPECT_FALSE(wipe.writLostDataWithLoseCount(7, 0, folder));
    QCoreApplication::processEvents();
    EXPECT_TRUE(wipe.errorString().startsWith("The free space could not be overwritten: writing .velmora_0 failed"))
        << wipe.errorString().toStdString();

    EXPECT_TRUE(folder.remove()) << folder.problem().toStdString();
    EXPECT_FALSE(QFileInfo::exists(fillFolder()));
}

TEST_F(FillTest, FillFileIsZerosWithOneRandomHeaderByte) {
    FillFolder folder(volume(), device());
    ASSERT_TRUE(folder.isOpen()) << folder.problem().toStdString();
    ASSERT_TRUE(wipe.createDydFile(folder, 7));
    QFile file(fillFolder() + "/.velmora_7");
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

// The fill folder is made fresh, owner-only, on the pinned device, and goes with
// its pass; the descriptor keeps pointing at it whatever the name is changed to.
TEST_F(FillTest, FillFolderIsFreshPrivateAndRemovedWhole) {
    {
        FillFolder folder(volume(), device());
        ASSERT_TRUE(folder.isOpen()) << folder.problem().toStdString();
        EXPECT_EQ(folder.path(), fillFolder());
        EXPECT_EQ(QFileInfo(fillFolder()).permissions() & 0x0077, 0);  // no group or other bits
        ASSERT_TRUE(wipe.writLostDataWithLoseCount(10, 1, folder));
        EXPECT_GT(folder.freeBytes(), 0);
    }
    EXPECT_FALSE(QFileInfo::exists(fillFolder())) << "the folder outlived its pass";

    // A name the fill never writes stops the removal: nothing but fill files is deleted.
    FillFolder folder(volume(), device());
    ASSERT_TRUE(folder.isOpen());
    writeFile(fillFolder() + "/notes.txt", "mine");
    EXPECT_FALSE(folder.remove());
    EXPECT_TRUE(folder.problem().contains("notes.txt")) << folder.problem().toStdString();
    EXPECT_EQ(readAll(fillFolder() + "/notes.txt"), "mine");
}

TEST_F(FillTest, LinksForeignFoldersAndOtherDevicesAreRefused) {
    // ".Velmora" linking out of the volume: the link and its target stay as they are.
    ASSERT_TRUE(QFile::link(outside(), fillFolder()));
    {
        FillFolder folder(volume(), device());
        EXPECT_FALSE(folder.isOpen());
        EXPECT_TRUE(folder.problem().contains("link")) << folder.problem().toStdString();
    }
    EXPECT_TRUE(QFileInfo(fillFolder()).isSymLink());
    EXPECT_EQ(entriesOf(outside()), QStringList{"keep.txt"});
    ASSERT_TRUE(QFile::remove(fillFolder()));

    // A real ".Velmora" holding something the fill never writes.
    ASSERT_TRUE(QDir().mkpath(fillFolder()));
    writeFile(fillFolder() + "/holiday.jpg", "photo");
    EXPECT_FALSE(FillFolder(volume(), device()).isOpen());
    EXPECT_EQ(readAll(fillFolder() + "/holiday.jpg"), "photo");
    ASSERT_TRUE(QDir(fillFolder()).removeRecursively());

    // A fill-file name that is a second link to a file elsewhere.
    ASSERT_TRUE(QDir().mkpath(fillFolder()));
    ASSERT_EQ(::link(QFile::encodeName(outside() + "/keep.txt").constData(),
                     QFile::encodeName(fillFolder() + "/.velmora_1").constData()), 0);
    EXPECT_FALSE(FillFolder(volume(), device()).isOpen());
    EXPECT_TRUE(QFileInfo::exists(fillFolder() + "/.velmora_1"));
    ASSERT_TRUE(QDir(fillFolder()).removeRecursively());

    // A folder of another user, even holding only fill files.
    if (::geteuid() == 0) {
        ASSERT_TRUE(QDir().mkpath(fillFolder()));
        writeFile(fillFolder() + "/.velmora_1", "x");
        ASSERT_EQ(::chown(QFile::encodeName(fillFolder()).constData(), 4242, 4242), 0);
        EXPECT_FALSE(FillFolder(volume(), device()).isOpen());
        EXPECT_TRUE(QFileInfo::exists(fillFolder() + "/.velmora_1"));
        ASSERT_TRUE(QDir(fillFolder()).removeRecursively());
    }

    // A mount point that is a link, or that lies on another device than the pinned one.
    ASSERT_TRUE(QFile::link(volume(), m_root.path() + "/volLink"));
    EXPECT_FALSE(FillFolder(m_root.path() + "/volLink", device()).isOpen());
    FillFolder elsewhere(volume(), device() + 1);
    EXPECT_FALSE(elsewhere.isOpen());
    EXPECT_TRUE(elsewhere.problem().contains("no longer lies on the chosen volume"));
    EXPECT_FALSE(FillFolder(volume(), 0).isOpen());
    EXPECT_EQ(entriesOf(volume()), QStringList());
}

// What a killed run leaves (a real folder of ours with fill files) goes at the
// next start; a link named like it is never followed.
TEST_F(FillTest, LeftoverOfAKilledRunIsRemovedButNeverThroughALink) {
    ASSERT_TRUE(QDir().mkpath(fillFolder()));
    writeFile(fillFolder() + "/.velmora_1", QByteArray(5000, '\0'));
    writeFile(fillFolder() + "/.velmora_2", QByteArray(10, '\0'));
    {
        FillFolder folder(volume(), device());
        ASSERT_TRUE(folder.isOpen()) << folder.problem().toStdString();
        EXPECT_EQ(entriesOf(fillFolder()), QStringList());
    }
    EXPECT_EQ(entriesOf(volume()), QStringList());

    writeFile(outside() + "/.velmora_1", "outside fill-named file");
    ASSERT_TRUE(QFile::link(outside(), fillFolder()));
    QString problem;
    EXPECT_FALSE(FillFolder::removeLeftover(volume(), device(), &problem));
    EXPECT_TRUE(problem.contains("link")) << problem.toStdString();
    EXPECT_EQ(readAll(outside() + "/.velmora_1"), "outside fill-named file");
    EXPECT_TRUE(QFileInfo(fillFolder()).isSymLink());

    EXPECT_TRUE(FillFolder::isFillFileName(".velmora_12"));
    EXPECT_FALSE(FillFolder::isFillFileName(".velmora_"));
    EXPECT_FALSE(FillFolder::isFillFileName(".velmora_1a"));
    EXPECT_FALSE(FillFolder::isFillFileName("velmora_1"));
}

// A run fills only the root of a mounted volume (a plain folder would have the
// whole file system it lies on filled): here it ends as failed after its first
// pass, writes nothing, uses no other folder, and leaves nothing that holds up
// the next run.
TEST_F(FillTest, RunOnAFolderThatIsNoVolumeRootFailsWithoutWriting) {
    QString problem;
    EXPECT_TRUE(FillFolder::isVolumeRoot("/", deviceOf("/"), &problem)) << problem.toStdString();
    EXPECT_FALSE(FillFolder::isVolumeRoot(volume(), device(), &problem));
    EXPECT_TRUE(problem.contains("is not the root of a mounted volume")) << problem.toStdString();

    ASSERT_TRUE(QFile::link(outside(), fillFolder()));
    const WipeRun run = runExpectingEarlyFailure(3);
    ASSERT_TRUE(run.ended) << "timed out " << run.timedOut;
    EXPECT_FALSE(run.succeeded);
    EXPECT_FALSE(run.cancelled);
    EXPECT_EQ(run.endText, kFolderFailText);
    EXPECT_EQ(run.closeWindowCount, 1);
    EXPECT_TRUE(run.progressTexts.isEmpty());
    EXPECT_EQ(wipe.iRoundTimes(), 1);
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:TESTVOL|Failed"});
    EXPECT_FALSE(QFileInfo::exists(StandardPaths::tempDir() + "/.Velmora"));
    EXPECT_EQ(entriesOf(outside()), QStringList{"keep.txt"});

    // An unpinned volume fails the same way; the failure of the run before is gone.
    ASSERT_TRUE(QFile::remove(fillFolder()));
    wipe.selectVolumeObj.deviceNumber = 0;
    const WipeRun unpinned = runExpectingEarlyFailure(1);
    ASSERT_TRUE(unpinned.ended);
    EXPECT_FALSE(unpinned.succeeded);
    EXPECT_EQ(entriesOf(volume()), QStringList());
    EXPECT_EQ(volumeHistoryItems().size(), 2);
}

TEST_F(FillTest, EraseNowDecisionsAndFillFolders) {
    using Start = FreeSpaceWipe::WipeStart;
    EXPECT_EQ(wipe.wipeButtonAction(), Start::DoFreeAction);
    EXPECT_EQ(wipe.fillFolderPath(), fillFolder());
    wipe.selectVolumeObj.volumeType = "NTFS";
    EXPECT_EQ(wipe.wipeButtonAction(), Start::ShowNTFSWindow);

    wipe.selectEraserType = 2;
    EXPECT_EQ(wipe.wipeButtonAction(), Start::DoEraserPartiltion);
    wipe.selectVolumeObj.volumeMountPoint = "/";
    EXPECT_EQ(wipe.wipeButtonAction(), Start::ShowSystemEraser);
    wipe.selectEraserType = 3;
    EXPECT_EQ(wipe.wipeButtonAction(), Start::NoSelectType);

    // The fill goes to the mount point, never to a folder found by the volume's
    // name; without a mount point there is no fill folder (never "/.Velmora").
    wipe.selectVolumeObj.volumeName = "NEW";
    wipe.selectVolumeObj.volumeMountPoint = "/media/user/USB";
    EXPECT_EQ(wipe.fillFolderPath(), "/media/user/USB/.Velmora");
    wipe.selectVolumeObj.volumeMountPoint.clear();
    EXPECT_EQ(wipe.fillFolderPath(), "");
    // On the macOS layout "/Volumes" is the (redirectable) volumes root.
    ScopedEnv layout("VELMORA_LAYOUT", "macos");
    ScopedEnv volumes("VELMORA_VOLUMES_ROOT", m_root.path() + "/Volumes");
    wipe.selectVolumeObj.volumeMountPoint = "/Volumes/STICK";
    EXPECT_EQ(wipe.fillFolderPath(), m_root.path() + "/Volumes/STICK/.Velmora");
}

TEST_F(FillTest, UnreachableBytesAreToldWithTheirCount) {
    const QString text = FreeSpaceWipe::unreachableText(4696064);
    EXPECT_TRUE(text.startsWith("4,696,064 bytes of free space could not be overwritten")) << text.toStdString();
    EXPECT_EQ(text.contains("administrator"), ::geteuid() != 0);
}

}  // namespace
}  // namespace velmora::test
