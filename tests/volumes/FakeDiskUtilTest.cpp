// The macOS layout against a fake disk utility (tests/fixtures/volumes/diskutil)
// that logs its command lines and prints recorded property lists: which volumes
// are listed, how they are queried, and the whole-drive erase's command lines.
#include "VolumeTestSupport.h"
#include "WipeRun.h"
#include "engine/erase/EraserLevel.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/VolumeScanner.h"

#include <QFileInfo>

namespace velmora::test {
namespace {

class FakeDiskUtilTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(QFileInfo(fixture("diskutil")).isExecutable()) << "VELMORA_SOURCE_DIR must point at the sources";
        EraserLevel::store(1);
    }

    QStringList loggedCommands() const {
        QFile log(m_root.filePath("diskutil.log"));
        if (!log.open(QIODevice::ReadOnly)) return {};
        return QString::fromUtf8(log.readAll()).split('\n', Qt::SkipEmptyParts);
    }

    VolumeObj volumeFor(const QString& bsdName) {
        VolumeList list;
        VolumeScanner().getVolumeAllObjWithVolumeName(bsdName, list);
        return list.value(0);
    }

    TempDataDir m_data;
    QTemporaryDir m_root;
    ScopedEnv m_layout{"VELMORA_LAYOUT", "macos"};
    ScopedEnv m_volumes{"VELMORA_VOLUMES_ROOT", m_root.path() + "/Volumes"};
    ScopedEnv m_diskutil{"VELMORA_DISKUTIL", fixture("diskutil")};
    ScopedEnv m_log{"FAKE_DISKUTIL_LOG", m_root.filePath("diskutil.log")};
};

TEST_F(FakeDiskUtilTest, ListsQueriedVolumesExceptEfiAndUnknownDisks) {
    VolumeScanner scanner;
    VolumeList list;
    for (const char* bsdName : {"disk1s1", "disk2s1", "disk0s1", "disk9s9", "disk2s1"})
        scanner.getVolumeAllObjWithVolumeName(bsdName, list);

    EXPECT_EQ(loggedCommands(), QStringList({"[info][-plist][disk1s1]", "[info][-plist][disk2s1]", "[info][-plist][disk0s1]",
                                             "[info][-plist][disk9s9]", "[info][-plist][disk2s1]"}));
    ASSERT_EQ(list.size(), 2);  // no EFI, no unknown disk, no duplicate stick

    const VolumeObj& system = list[0];
    EXPECT_EQ(system.volumeName, "Macintosh HD");
    EXPECT_EQ(system.volumeType, "APFS");
    EXPECT_EQ(system.volumeMountPoint, "/");
    // APFS reports 0 free for the volume: the container's free space is shown.
    EXPECT_EQ(system.volumeFreeSizeNum, 412345678848);
    EXPECT_EQ(system.volumeFreeSize, "412.35 GB");
    EXPECT_EQ(system.volumeTotalSize, "500.07 GB");
    EXPECT_FALSE(system.bCanEject);

    const VolumeObj& stick = list[1];
    EXPECT_EQ(stick.volumeName, "STICK");
    EXPECT_EQ(stick.volumeType, "MS-DOS FAT32");
    EXPECT_EQ(stick.volumePath, "/dev/disk2s1");
    EXPECT_EQ(stick.volRootDir, "/dev/disk2s1");
    EXPECT_EQ(stick.volumeMountPoint, "/Volumes/STICK");
    EXPECT_EQ(stick.volumeTotalSizeNum, 16008609792);
    EXPECT_EQ(stick.volumeFreeSizeNum, 15032385536);
    EXPECT_EQ(stick.BusProtocol, "USB");
    EXPECT_TRUE(stick.bCanEject);
    EXPECT_TRUE(stick.diskType.isEmpty());
}

TEST_F(FakeDiskUtilTest, DiskToolVariantFillsDiskFieldsAndQuotesItsQuery) {
    VolumeList list;
    VolumeScanner(VolumeScanner::Screen::DiskTool).getVolumeAllObjWithVolumeName("disk1s1", list);
    ASSERT_EQ(list.size(), 1);
    EXPECT_TRUE(list[0].volumeType.isEmpty());
    EXPECT_EQ(list[0].diskType, "APFS");
    EXPECT_EQ(list[0].diskUUID, "5C1A8E2B-7F3D-4C61-9A0E-2B8D4F6A1C3E");
    EXPECT_EQ(list[0].parentWholeDisk, "disk1");

    // The disk tool quotes the name; the erase screens do not, so a name with a
    // blank reaches the disk utility as two words there.
    getDisjInfo("Macintosh HD", DiskInfoScreen::RepairDisk);
    getDisjInfo("Macintosh HD", DiskInfoScreen::WipeDisk);
    const QStringList commands = loggedCommands();
    EXPECT_EQ(commands.mid(1), QStringList({"[info][-plist][Macintosh HD]", "[info][-plist][Macintosh][HD]"}));
}

TEST_F(FakeDiskUtilTest, QueryLineIsCutAtItsBufferSize) {
    const QByteArray longName(60, 'x');
    getDisjInfo(longName.constData(), DiskInfoScreen::WipeDisk);    // 64 bytes: "diskutil info -plist " + 42
    getDisjInfo(longName.constData(), DiskInfoScreen::RepairDisk);  // 128 bytes: the whole name fits
    EXPECT_EQ(loggedCommands(), QStringList({"[info][-plist][" + QString(42, 'x') + "]", "[info][-plist][" + QString(60, 'x') + "]"}));
    EXPECT_TRUE(getDisjInfo(nullptr, DiskInfoScreen::WipeDisk).isEmpty());
}

TEST_F(FakeDiskUtilTest, WholeDriveEraseReformatsRemovesLeftoversAndFills) {
    const QString stick = m_root.path() + "/Volumes/STICK";
    ASSERT_TRUE(QDir().mkpath(stick + "/.fseventsd"));
    QFile leftover(stick + "/.fseventsd/0000000000a1b2c3");
    ASSERT_TRUE(leftover.open(QIODevice::WriteOnly));
    leftover.write("journal");
    leftover.close();

    FreeSpaceWipe wipe;
    wipe.selectEraserType = 2;
    wipe.selectVolumeObj = volumeFor("disk2s1");
    ASSERT_EQ(wipe.wipeButtonAction(), FreeSpaceWipe::WipeStart::DoEraserPartiltion);
    WholeDriveErase erase(&wipe);
    const WipeRun run = WipeRun::until(wipe, &erase, [&erase] { erase.makeSureToWipeSelectVolume(); }, 120000);

    ASSERT_TRUE(run.ended) << run.endText.toStdString();
    EXPECT_TRUE(run.succeeded);
    EXPECT_EQ(run.endText, "All the data on the selected hard drive has been successfully erased.");
    // Stage 1 as a child with the device node, stage 2 on the free space queried by name.
    EXPECT_EQ(loggedCommands(), QStringList({"[info][-plist][disk2s1]", "[reformat][/dev/disk2s1]", "[info][-plist][STICK]"}));
    EXPECT_EQ(wipe.selectVolumeObj.volumeFreeSizeNum, 9001);
    EXPECT_EQ(run.progressTexts.last(), "Erased 100% in 1 of 1 pass");
    EXPECT_EQ(QDir(stick).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
    EXPECT_EQ(wipe.wipeScanPathStr(), stick + "/.Velmora");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:STICK|Erased"});
    EXPECT_FALSE(wipe.isBegin());
}

TEST_F(FakeDiskUtilTest, WholeDriveEraseOfNtfsErasesAsFat32NamedNew) {
    ASSERT_TRUE(QDir().mkpath(m_root.path() + "/Volumes/NEW"));
    FreeSpaceWipe wipe;
    wipe.selectEraserType = 2;
    wipe.selectVolumeObj = volumeFor("disk3s1");
    WholeDriveErase erase(&wipe);
    const WipeRun run = WipeRun::until(wipe, &erase, [&erase] { erase.makeSureToWipeSelectVolume(); }, 120000);

    ASSERT_TRUE(run.ended) << run.endText.toStdString();
    EXPECT_TRUE(run.succeeded);
    EXPECT_EQ(loggedCommands(),
              QStringList({"[info][-plist][disk3s1]", "[eraseVolume][MS-DOS FAT32][NEW][/dev/disk3s1]", "[info][-plist][NEW]"}));
    EXPECT_EQ(wipe.wipeScanPathStr(), m_root.path() + "/Volumes/NEW/.Velmora");
    EXPECT_FALSE(QFileInfo::exists(wipe.wipeScanPathStr()));
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:WINDATA|Erased"});
}

TEST_F(FakeDiskUtilTest, WholeDriveEraseStopsWhenTheVolumeIsGoneAfterTheReformat) {
    // No "/Volumes/STICK" after the reformat: stage 2 never starts.
    FreeSpaceWipe wipe;
    wipe.selectEraserType = 2;
    wipe.selectVolumeObj = volumeFor("disk2s1");
    WholeDriveErase erase(&wipe);
    const WipeRun run = WipeRun::until(wipe, &erase, [&erase] { erase.makeSureToWipeSelectVolume(); }, 60000);
    EXPECT_TRUE(run.stalled);
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(loggedCommands(), QStringList({"[info][-plist][disk2s1]", "[reformat][/dev/disk2s1]"}));
    EXPECT_TRUE(volumeHistoryItems().isEmpty());
}

}  // namespace
}  // namespace velmora::test
