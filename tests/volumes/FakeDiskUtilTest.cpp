// The macOS layout against a fake disk utility (tests/fixtures/volumes/diskutil)
// that logs its command lines and prints recorded property lists: which volumes
// are listed, how they are queried (names as data), and the whole-drive erase's
// command lines, identity checks and failures.
#include "VolumeTestSupport.h"
#include "WipeRun.h"
#include "support/LoopVolume.h"
#include "engine/erase/EraserLevel.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/ShellRunners.h"
#include "engine/volumes/VolumeScanner.h"
#include "engine/volumes/WholeDriveErase.h"

#include <QFileInfo>
#include <memory>
#include <optional>
#include <sys/stat.h>

namespace velmora::test {
namespace {

class FakeDiskUtilTest : public FakeDiskUtilTestBase {
protected:
    void SetUp() override {
        FakeDiskUtilTestBase::SetUp();
        EraserLevel::store(1);
    }

    // Mounts a small ext4 file system at FOLDER/NAME, where FOLDER becomes the
    // volumes root, so a whole-drive run's fill stays bounded. Empty on success,
    // else why not (the reason to skip).
    std::string mountBoundedVolume(const QString& name) {
        if (const std::string problem = loopDevicesUnavailable(); !problem.empty()) return problem;
        m_boundedVolume = std::make_unique<LoopVolume>(16);
        if (!m_boundedVolume->setupProblem().empty()) return m_boundedVolume->setupProblem();
        if (const std::string problem = m_boundedVolume->format("ext4", name.toStdString()); !problem.empty()) return problem;
        if (m_boundedVolume->mount("ext4", name.toStdString()).empty()) return "cannot mount a loop volume";
        m_boundedRoot.emplace("VELMORA_VOLUMES_ROOT", QString::fromStdString(m_boundedVolume->folder()));
        return {};
    }

    VolumeObj volumeFor(const QString& bsdName) {
        VolumeList list;
        VolumeScanner().getVolumeAllObjWithVolumeName(bsdName, list);
        return list.value(0);
    }

    // A whole-drive run on the volume the wipe has chosen, to its end view.
    static WipeRun eraseWholeDrive(FreeSpaceWipe& wipe) {
        wipe.selectEraserType = 2;
        WholeDriveErase erase(&wipe);
        return WipeRun::until(wipe, [&erase] { erase.makeSureToWipeSelectVolume(); }, 120000);
    }

    std::unique_ptr<LoopVolume> m_boundedVolume;
    std::optional<ScopedEnv> m_boundedRoot;
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
    EXPECT_EQ(stick.diskUUID, "0E239BC6-F960-3107-89CF-1C97F78BB46B");
    EXPECT_TRUE(stick.diskType.isEmpty());
}

TEST_F(FakeDiskUtilTest, DiskToolVariantFillsDiskFields) {
    VolumeList list;
    VolumeScanner(VolumeScanner::Screen::DiskTool).getVolumeAllObjWithVolumeName("disk1s1", list);
    ASSERT_EQ(list.size(), 1);
    EXPECT_TRUE(list[0].volumeType.isEmpty());
    EXPECT_EQ(list[0].diskType, "APFS");
    EXPECT_EQ(list[0].diskUUID, "5C1A8E2B-7F3D-4C61-9A0E-2B8D4F6A1C3E");
    EXPECT_EQ(list[0].parentWholeDisk, "disk1");
}

// Volume names are data: on every screen each one reaches the disk utility as one
// argument, whatever it holds, and nothing in it is run.
TEST_F(FakeDiskUtilTest, NamesWithShellCharactersReachTheDiskUtilAsOneArgument) {
    const QString marker = m_root.filePath("pwned");
    const QStringList names = {"Macintosh HD", "a;touch " + marker,  "$(touch " + marker + ")",
                               "`touch " + marker + "`", "x\"y", "x'y", "-rf", QString(80, 'x')};
    QStringList expected;
    for (const DiskInfoScreen screen : {DiskInfoScreen::WipeDisk, DiskInfoScreen::SelectDisk, DiskInfoScreen::RepairDisk}) {
        for (const QString& name : names) {
            EXPECT_TRUE(getDisjInfo(name.toUtf8().constData(), screen).isEmpty());  // the error dictionary is no answer
            expected.append("[info][-plist][" + name + "]");
        }
    }
    EXPECT_EQ(loggedCommands(), expected);
    EXPECT_FALSE(QFileInfo::exists(marker));
    EXPECT_TRUE(getDisjInfo(nullptr, DiskInfoScreen::WipeDisk).isEmpty());
}

// The runners report how the child ended, and their output file is always a new
// owner-only file: a link planted under its name is removed, never written through.
TEST_F(FakeDiskUtilTest, RunnersReportTheExitStatusAndNeverWriteThroughALink) {
    const QString victim = m_root.filePath("victim.txt");
    writeFile(victim, "keep");
    const QString outputPath = StandardPaths::tempDir() + "/SteadyWiperTemp.plist";
    QFile::remove(outputPath);
    ASSERT_TRUE(QFile::link(victim, outputPath));

    const CommandResult answered = execCommand({fixture("diskutil"), {"info", "-plist", "disk2s1"}});
    EXPECT_TRUE(answered.succeeded()) << answered.failure.toStdString();
    EXPECT_EQ(answered.outputPath, outputPath);
    EXPECT_FALSE(QFileInfo(outputPath).isSymLink());
    EXPECT_EQ(QFileInfo(outputPath).permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
              QFile::Permissions());
    EXPECT_EQ(readAll(victim), "keep");
    EXPECT_TRUE(readAll(outputPath).contains("<string>STICK</string>"));

    const CommandResult refused = execCommand({fixture("diskutil"), {"info", "-plist", "disk9s9"}});
    EXPECT_TRUE(refused.started);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_FALSE(refused.succeeded());
    const CommandResult missing = execCommand({m_root.filePath("no-such-program"), {}});
    EXPECT_FALSE(missing.started);
    EXPECT_FALSE(missing.succeeded());
    EXPECT_FALSE(missing.failure.isEmpty());
}

TEST_F(FakeDiskUtilTest, WholeDriveEraseReformatsRemovesLeftoversAndFills) {
    if (const std::string problem = mountBoundedVolume("STICK"); !problem.empty()) GTEST_SKIP() << "SKIPPED: " << problem;
    const QString stick = StandardPaths::volumesRoot() + "/STICK";
    ASSERT_TRUE(QDir().mkpath(stick + "/.fseventsd"));
    writeFile(stick + "/.fseventsd/0000000000a1b2c3", "journal");

    FreeSpaceWipe wipe;
    wipe.selectEraserType = 2;
    wipe.selectVolumeObj = volumeFor("disk2s1");
    ASSERT_EQ(wipe.wipeButtonAction(), FreeSpaceWipe::WipeStart::DoEraserPartiltion);
    const WipeRun run = eraseWholeDrive(wipe);

    ASSERT_TRUE(run.ended) << run.endText.toStdString();
    EXPECT_TRUE(run.succeeded) << run.endText.toStdString();
    EXPECT_TRUE(run.endText.startsWith("All the data on the selected hard drive has been successfully erased.")) << run.endText.toStdString();
    // Pinned by its device node, reformatted by it, and found again by it (never by
    // the name) for the leftovers and for the fill.
    EXPECT_EQ(loggedCommands(), QStringList({"[info][-plist][disk2s1]", "[info][-plist][/dev/disk2s1]", "[reformat][/dev/disk2s1]",
                                             "[info][-plist][/dev/disk2s1]", "[info][-plist][/dev/disk2s1]"}));
    // The fresh file system's UUID and free space.
    EXPECT_EQ(wipe.selectVolumeObj.diskUUID, "5B7D0C11-2A6E-4F1B-8D3C-7E9A1B2C3D4E");
    EXPECT_EQ(wipe.selectVolumeObj.volumeFreeSizeNum, 9001);
    struct stat folder;
    ASSERT_EQ(::stat(QFile::encodeName(stick).constData(), &folder), 0);
    EXPECT_EQ(wipe.selectVolumeObj.deviceNumber, quint64(folder.st_dev));
    EXPECT_EQ(run.progressTexts.last(), "Erased 100% in 1 of 1 pass");
    EXPECT_EQ(entriesOf(stick), QStringList());
    EXPECT_EQ(wipe.wipeScanPathStr(), stick + "/.Velmora");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:STICK|Erased"});
    EXPECT_FALSE(wipe.isBegin());
}

TEST_F(FakeDiskUtilTest, WholeDriveEraseOfNtfsErasesAsFat32NamedNew) {
    if (const std::string problem = mountBoundedVolume("NEW"); !problem.empty()) GTEST_SKIP() << "SKIPPED: " << problem;
    const QString volumes = StandardPaths::volumesRoot();
    ASSERT_TRUE(QDir().mkpath(volumes + "/WINDATA"));
    FreeSpaceWipe wipe;
    wipe.selectVolumeObj = volumeFor("disk3s1");
    const WipeRun run = eraseWholeDrive(wipe);

    ASSERT_TRUE(run.ended) << run.endText.toStdString();
    EXPECT_TRUE(run.succeeded) << run.endText.toStdString();
    EXPECT_EQ(loggedCommands(),
              QStringList({"[info][-plist][disk3s1]", "[info][-plist][/dev/disk3s1]", "[eraseVolume][MS-DOS FAT32][NEW][/dev/disk3s1]",
                           "[info][-plist][/dev/disk3s1]", "[info][-plist][/dev/disk3s1]"}));
    EXPECT_EQ(wipe.selectVolumeObj.volumeMountPoint, volumes + "/NEW");
    EXPECT_EQ(wipe.wipeScanPathStr(), volumes + "/NEW/.Velmora");
    EXPECT_FALSE(QFileInfo::exists(wipe.wipeScanPathStr()));
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:WINDATA|Erased"});
}

// A reformat that fails (here: the volume is busy) ends the run as failed with the
// utility's reason before any file is touched.
TEST_F(FakeDiskUtilTest, WholeDriveEraseFailsBeforeTouchingAnyFileWhenTheReformatFails) {
    const QString stick = m_root.path() + "/Volumes/STICK";
    ASSERT_TRUE(QDir().mkpath(stick));
    writeFile(stick + "/kept.txt", "still here");
    ScopedEnv failing("FAKE_DISKUTIL_ERASE_EXIT", "1");

    FreeSpaceWipe wipe;
    wipe.selectVolumeObj = volumeFor("disk2s1");
    const WipeRun run = eraseWholeDrive(wipe);

    ASSERT_TRUE(run.ended);
    EXPECT_FALSE(run.succeeded);
    EXPECT_TRUE(run.endText.contains("could not be reformatted")) << run.endText.toStdString();
    EXPECT_TRUE(run.endText.contains("status 1")) << run.endText.toStdString();
    EXPECT_TRUE(run.endText.contains("resource busy")) << run.endText.toStdString();
    EXPECT_EQ(loggedCommands(), QStringList({"[info][-plist][disk2s1]", "[info][-plist][/dev/disk2s1]", "[reformat][/dev/disk2s1]"}));
    EXPECT_TRUE(run.progressTexts.isEmpty());
    EXPECT_EQ(entriesOf(stick), QStringList{"kept.txt"});
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:STICK|Failed"});
    EXPECT_FALSE(wipe.isBegin());
}

// A chosen volume that no longer resolves (its device holds another file system,
// or it is not mounted) is not reformatted at all: the run fails naming it.
TEST_F(FakeDiskUtilTest, WholeDriveEraseFailsWithoutReformattingWhenThePinnedVolumeDoesNotResolve) {
    ASSERT_TRUE(QDir().mkpath(m_root.path() + "/Volumes/STICK"));
    FreeSpaceWipe wipe;
    wipe.selectVolumeObj = volumeFor("disk2s1");
    wipe.selectVolumeObj.diskUUID = "00000000-0000-0000-0000-000000000000";  // listed before the stick was swapped
    WipeRun run = eraseWholeDrive(wipe);
    ASSERT_TRUE(run.ended);
    EXPECT_FALSE(run.succeeded);
    EXPECT_TRUE(run.endText.contains("\"STICK\" (/dev/disk2s1)")) << run.endText.toStdString();
    EXPECT_TRUE(run.endText.contains("another file system")) << run.endText.toStdString();

    ASSERT_TRUE(QDir(m_root.path() + "/Volumes/STICK").removeRecursively());
    wipe.selectVolumeObj = volumeFor("disk2s1");
    run = eraseWholeDrive(wipe);
    ASSERT_TRUE(run.ended);
    EXPECT_FALSE(run.succeeded);
    EXPECT_TRUE(run.endText.contains("not mounted")) << run.endText.toStdString();

    EXPECT_FALSE(loggedCommands().join(' ').contains("[reformat]"));
    EXPECT_EQ(volumeHistoryItems(), QStringList({"Erase Hard Drive:STICK|Failed", "Erase Hard Drive:STICK|Failed"}));
}

}  // namespace
}  // namespace velmora::test
