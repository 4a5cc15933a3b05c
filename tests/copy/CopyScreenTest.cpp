// The drive-copy screen logic: refusals, the space check, the dated folder and its fallbacks.
#include "CopyTestSupport.h"

#include "engine/copy/CloneFolder.h"
#include "engine/copy/DiskCopyLogic.h"
#include "support/TestFiles.h"

#include <QSignalSpy>

namespace velmora::test {
namespace {

VolumeObj volume(const std::string& path, qint64 total, qint64 free) {
    VolumeObj record;
    record.volumePath = QString::fromStdString(path);
    record.volumeName = record.volumePath.section('/', -1);
    record.volumeTotalSizeNum = total;
    record.volumeFreeSizeNum = free;
    return record;
}

TEST(CopyScreen, TheSourceDriveIsRefusedAsDestinationAndTheOtherWayRound) {
    ensureApplication();
    TempDir a;
    TempDir b;
    DiskCopyLogic logic;
    QSignalSpy errors(&logic, &DiskCopyLogic::showError);
    logic.doSelectDiskWithVolume(volume(a.path(), 1000, 400), true);
    logic.doSelectDiskWithVolume(volume(a.path(), 1000, 400), false);
    EXPECT_FALSE(logic.toVolume());
    EXPECT_FALSE(logic.copyButtonEnabled());
    EXPECT_EQ(logic.freeSize(), DiskCopyLogic::kUnknownSize);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.first().at(0).toString(),
              QString::fromUtf8("You can\u2019t select the source drive as the destination drive, just select another drive."));

    logic.doSelectDiskWithVolume(volume(b.path(), 1000, 900), false);
    EXPECT_TRUE(logic.copyButtonEnabled());
    logic.doSelectDiskWithVolume(volume(b.path(), 1000, 900), true);  // the destination chosen as source
    EXPECT_FALSE(logic.fromeVolume());
    EXPECT_EQ(logic.usedSize(), DiskCopyLogic::kUnknownSize);

    // A folder inside the source on the same file system would copy itself.
    mkdir((a / "inner").c_str(), 0755);
    logic.doSelectDiskWithVolume(volume(a.path(), 1000, 400), true);
    logic.doSelectDiskWithVolume(volume(a / "inner", 1000, 400), false);
    EXPECT_FALSE(logic.toVolume());
    EXPECT_EQ(logic.errorText(), DiskCopyLogic::kInsideSourceText);
}

TEST(CopyScreen, TheSpaceCheckWeighsThePickedFilesOrTheWholeSource) {
    ensureApplication();
    TempDir a;
    TempDir b;
    DiskCopyLogic logic;
    logic.doSelectDiskWithVolume(volume(a.path(), 1000, 200), true);  // 800 used
    logic.doSelectDiskWithVolume(volume(b.path(), 1000, 500), false);
    EXPECT_FALSE(logic.copyButtonEnabled());
    EXPECT_TRUE(logic.destinationIconDisabled());
    EXPECT_EQ(logic.errorText(), "Insufficient disk space on this destination drive, please select another drive.");
    logic.setCopyType(DiskCopyLogic::CopyType::CopySomeFiles);
    logic.setPickedFiles({}, 500);
    EXPECT_TRUE(logic.copyButtonEnabled());
    EXPECT_TRUE(logic.errorText().isEmpty());
    logic.setCopyType(DiskCopyLogic::CopyType::CopyAllFiles);
    EXPECT_FALSE(logic.copyButtonEnabled());
    // A new source resets the picks and the mode.
    logic.doSelectDiskWithVolume(volume(a.path(), 1000, 600), true);
    EXPECT_EQ(logic.selectFilesSize(), DiskCopyLogic::kUnknownSize);
    EXPECT_EQ(logic.copyType(), DiskCopyLogic::CopyType::CopyAllFiles);
    EXPECT_TRUE(logic.copyButtonEnabled());

    // Nothing ticked: the error view instead of the confirmation.
    QSignalSpy errors(&logic, &DiskCopyLogic::showError);
    logic.setPickedFiles({}, 0);
    logic.cloneButtonAction();
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.first().at(0).toString(), DiskCopyLogic::kNothingToCopyText);
}

TEST(CopyScreen, TheDatedFolderOnTheSystemRootHasOneSlashAndFallsBackToTheDesktop) {
    const QDateTime when(QDate(2026, 3, 4), QTime(5, 6, 7));
    EXPECT_EQ(CloneFolder::stamp(when), "2026-03-04 05:06:07");
    EXPECT_EQ(CloneFolder::cloneFolderPath("/", "S"), "/VLclone(S)");
    EXPECT_EQ(CloneFolder::cloneFolderPath("/media/usb", "S"), "/media/usb/VLclone(S)");

    TempDir root;
    {
        const ScopedEnv redirected("VELMORA_ROOT", QString::fromStdString(root.path()));
        CloneFolder folder;
        ASSERT_TRUE(folder.create("/", when, nullptr));
        EXPECT_EQ(folder.path().toStdString(), root.path() + "/VLclone(2026-03-04 05:06:07)");
        EXPECT_TRUE(exists(root / "VLclone(2026-03-04 05:06:07)"));
        EXPECT_FALSE(folder.onDesktop());
    }
    // A destination that cannot hold a folder (here a file): the desktop folder.
    TempDir home;
    writeFile(root / "file", "not a folder");
    const ScopedEnv redirected("VELMORA_HOME", QString::fromStdString(home.path()));
    CloneFolder folder;
    ASSERT_TRUE(folder.create(QString::fromStdString(root / "file"), when, nullptr));
    EXPECT_TRUE(folder.onDesktop());
    EXPECT_EQ(folder.path().toStdString(), home.path() + "/Desktop/VLclone(2026-03-04 05:06:07)");
    EXPECT_TRUE(exists(home / "Desktop/VLclone(2026-03-04 05:06:07)"));
}

TEST(CopyScreen, CopyAllFilesCopiesTheWholeSourceIntoTheDatedFolder) {
    ensureApplication();
    TempDir source;
    TempDir destination;
    writeFile(source / "one", "1");
    mkdir((source / "two").c_str(), 0755);
    writeFile(source / "two/three", "3");
    mkdir((source / ".Trashes").c_str(), 0755);
    DiskCopyLogic logic;
    logic.doSelectDiskWithVolume(volume(source.path(), 1000, 900), true);
    logic.doSelectDiskWithVolume(volume(destination.path(), 1000, 900), false);
    QSignalSpy confirmation(&logic, &DiskCopyLogic::showConfirmation);
    logic.cloneButtonAction();
    ASSERT_TRUE(confirmation.wait(10000));
    QSignalSpy ended(&logic, &DiskCopyLogic::copyEnded);
    const QDateTime when(QDate(2026, 1, 2), QTime(3, 4, 5));
    ASSERT_TRUE(logic.beginToCopyFiles(when, false));
    ASSERT_TRUE(ended.wait(30000));
    const std::string clone = destination / "VLclone(2026-01-02 03:04:05)";
    EXPECT_EQ(logic.copyFolder().toStdString(), clone);
    EXPECT_EQ(readFile(clone + "/one"), "1");
    EXPECT_EQ(readFile(clone + "/two/three"), "3");
    EXPECT_FALSE(exists(clone + "/.Trashes"));
    EXPECT_TRUE(ended.first().at(0).value<CopyResult>().complete());
}

}  // namespace
}  // namespace velmora::test
