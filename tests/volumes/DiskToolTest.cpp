// The disk tool's engine: the name rules of each file system, the format cases, and the
// actions against the fake macOS disk utility (tests/fixtures/volumes/diskutil), whose
// command lines are logged.
#include "VolumeTestSupport.h"
#include "engine/volumes/DiskTool.h"
#include "engine/volumes/FormatChoices.h"
#include "engine/volumes/VolumeNameRules.h"
#include "engine/volumes/VolumeScanner.h"

#include <QEventLoop>
#include <QTimer>

namespace velmora::test {
namespace {

struct NameCase {
    const char* fileSystem;
    QString requested;
    QString expected;  // the name passed on; empty when refused
};

TEST(VolumeNameRulesTest, FatIsCutAndUpperCasedOtherFileSystemsRefuseWhatTheyCannotHold) {
    const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80");  // two UTF-16 units
    const QString eAcute = QString::fromUtf8("\xC3\xA9");         // two UTF-8 bytes
    const NameCase cases[] = {
        {"MS-DOS FAT32", "backup disk 2024", "BACKUP DISK"},
        {"MS-DOS FAT32", "backup disk2", "BACKUP DISK"},  // the cut ends in a blank, which a FAT label does not keep
        {"MS-DOS FAT32", "a b$&!'(x)", "A B$&!'(X)"},
        {"fat32", "x", "X"},
        {"MS-DOS FAT32", "new;name", ""},
        {"MS-DOS FAT32", "caf" + eAcute, ""},
        {"MS-DOS FAT32", "   ", ""},
        {"ExFAT", "new;name $(x)`", "new;name $(x)`"},
        {"ExFAT", QString(15, 'x'), QString(15, 'x')},
        {"ExFAT", QString(16, 'x'), ""},
        {"ExFAT", QString(11, 'x') + emoji + emoji + emoji + emoji, ""},  // 15 characters, 19 units
        {"ext4", "new;name", "new;name"},
        {"ext4", QString(16, 'x'), QString(16, 'x')},
        {"ext4", QString(8, eAcute.at(0)), QString(8, eAcute.at(0))},  // 16 bytes
        {"ext4", QString(15, 'x') + eAcute, ""},                       // 16 characters, 17 bytes
        {"Journaled HFS+", QString(255, 'x'), QString(255, 'x')},
        {"Journaled HFS+", QString(256, 'x'), ""},
        {"NTFS", QString(129, 'x'), ""},
        {"ext4", "", ""},
        {"ext4", " ", ""},
        {"ext4", "line\nbreak", ""},
    };
    for (const NameCase& test : cases) {
        const VolumeNameCheck check = nameForRename(test.fileSystem, test.requested);
        SCOPED_TRACE(std::string(test.fileSystem) + " \"" + test.requested.toStdString() + "\"");
        EXPECT_EQ(check.accepted(), !test.expected.isEmpty()) << check.error.toStdString();
        if (check.accepted()) EXPECT_EQ(check.name, test.expected);
        else EXPECT_FALSE(check.error.isEmpty());
    }
    // A format names an unnamed volume "NEW"; otherwise the same rules.
    EXPECT_EQ(nameForFormat("MS-DOS FAT32", "").name, "NEW");
    EXPECT_EQ(nameForFormat("ExFAT", " ").name, "NEW");
    EXPECT_EQ(nameForFormat("MS-DOS FAT32", "backup disk 2024").name, "BACKUP DISK");
    EXPECT_FALSE(nameForFormat("ExFAT", QString(16, 'x')).accepted());
}

TEST(FormatChoicesTest, NtfsAndApfsHaveAFixedTypeAndEachVolumeItsFormatCase) {
    VolumeObj volume;
    volume.diskType = "NTFS";
    EXPECT_EQ(formatTypeForVolume(volume).typeText, "MS-DOS FAT32");
    EXPECT_TRUE(formatTypeForVolume(volume).fixed);
    EXPECT_EQ(formatCaseForVolume(volume), FormatCase::EraseNtfsAsFat32);
    volume.diskType = "APFS";
    EXPECT_EQ(formatTypeForVolume(volume).typeText, "APFS");
    EXPECT_TRUE(formatTypeForVolume(volume).fixed);
    EXPECT_EQ(formatCaseForVolume(volume), FormatCase::ReformatInPlace);
    volume.diskType = "ExFAT";
    EXPECT_EQ(formatTypeForVolume(volume).typeText, "ExFAT");
    EXPECT_FALSE(formatTypeForVolume(volume).fixed);
    EXPECT_EQ(formatCaseForVolume(volume), FormatCase::EraseWithChosenType);
}

// On Linux the list comes from velmora-diskutil: ext4 always, HFS+ only with its mkfs.
TEST(FormatChoicesTest, LinuxOffersExt4AndHfsPlusOnlyWhereItCanBeMade) {
    ensureApplication();
    const ScopedEnv layout("VELMORA_LAYOUT", "linux");
    const ScopedEnv diskutil("VELMORA_DISKUTIL", binDir() + "/velmora-diskutil");
    TempDataDir data;
    QStringList texts;
    for (const FormatChoice& choice : formatChoices()) texts.append(QString::number(choice.identifier) + " " + choice.typeText);
    const bool hfs = QFileInfo::exists("/usr/sbin/mkfs.hfsplus") || QFileInfo::exists("/sbin/mkfs.hfsplus");
    EXPECT_EQ(texts, hfs ? QStringList({"0 ExFAT", "1 MS-DOS FAT32", "2 Journaled HFS+", "3 ext4"})
                         : QStringList({"0 ExFAT", "1 MS-DOS FAT32", "3 ext4"}));
}

class DiskToolFakeTest : public FakeDiskUtilTestBase {
protected:

    // The disk tool's record of a fixture volume, with its folder under the volumes root.
    VolumeObj volumeFor(const QString& bsdName, const QString& folder) {
        EXPECT_TRUE(QDir().mkpath(m_root.path() + "/Volumes/" + folder));
        VolumeList list;
        VolumeScanner(VolumeScanner::Screen::DiskTool).getVolumeAllObjWithVolumeName(bsdName, list);
        QFile::remove(m_root.filePath("diskutil.log"));
        return list.value(0);
    }

    struct Finished {
        bool ended = false;
        bool succeeded = false;
        QString message;
        QString volumeName;
    };

    static Finished runToEnd(const std::function<void(DiskTool&)>& start) {
        DiskTool tool;
        Finished result;
        QEventLoop loop;
        QObject::connect(&tool, &DiskTool::finished, &loop,
                         [&](DiskTool::Action, bool succeeded, const QString& message, const QString& name) {
                             result = {true, succeeded, message, name};
                             loop.quit();
                         });
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        start(tool);
        if (!result.ended) loop.exec();
        return result;
    }
};

// The three cases: NTFS is erased as FAT32 named NEW and APFS reformatted in place,
// whatever name and type were given; both on the pinned device node.
TEST_F(DiskToolFakeTest, NtfsIsErasedAsFat32NamedNewAndApfsReformattedInPlace) {
    ASSERT_TRUE(QDir().mkpath(m_root.path() + "/Volumes/NEW"));
    const VolumeObj ntfs = volumeFor("disk3s1", "WINDATA");
    ASSERT_EQ(ntfs.diskType, "NTFS");
    Finished result = runToEnd([&](DiskTool& tool) { tool.formatVolume(ntfs, "My Name", "ExFAT"); });
    EXPECT_TRUE(result.succeeded) << result.message.toStdString();
    EXPECT_EQ(result.volumeName, "NEW");
    EXPECT_TRUE(loggedCommands().contains("[eraseVolume][MS-DOS FAT32][NEW][/dev/disk3s1]")) << loggedCommands().join(' ').toStdString();

    const VolumeObj apfs = volumeFor("disk4s1", "Backup");
    ASSERT_EQ(apfs.diskType, "APFS");
    result = runToEnd([&](DiskTool& tool) { tool.formatVolume(apfs, "Other", "ExFAT"); });
    EXPECT_TRUE(result.succeeded) << result.message.toStdString();
    EXPECT_EQ(result.volumeName, "Backup");
    EXPECT_TRUE(loggedCommands().contains("[reformat][/dev/disk4s1]")) << loggedCommands().join(' ').toStdString();
}

// Refusals before any command: the startup volume, a name the file system cannot
// hold. A command that fails ends with the disk utility's message and the old name.
TEST_F(DiskToolFakeTest, RefusalsRunNothingAndAFailedCommandKeepsTheOldName) {
    const VolumeObj startup = volumeFor("disk1s1", "Macintosh HD");
    ASSERT_EQ(startup.volumeMountPoint, "/");
    Finished result = runToEnd([&](DiskTool& tool) { tool.formatVolume(startup, "X", "ExFAT"); });
    EXPECT_FALSE(result.succeeded);
    EXPECT_TRUE(result.message.contains("startup volume")) << result.message.toStdString();

    const VolumeObj stick = volumeFor("disk2s1", "STICK");
    result = runToEnd([&](DiskTool& tool) { tool.renameVolume(stick, "no;semicolons"); });
    EXPECT_FALSE(result.succeeded);
    EXPECT_TRUE(result.message.contains("cannot hold the character \";\"")) << result.message.toStdString();
    result = runToEnd([&](DiskTool& tool) { tool.formatVolume(stick, QString(16, 'x'), "ExFAT"); });
    EXPECT_FALSE(result.succeeded);
    EXPECT_TRUE(result.message.contains("at most 15")) << result.message.toStdString();
    EXPECT_EQ(loggedCommands(), QStringList());

    // The fake knows no rename: it answers with its error dictionary.
    result = runToEnd([&](DiskTool& tool) { tool.renameVolume(stick, "photos 2024 backup"); });
    EXPECT_FALSE(result.succeeded);
    EXPECT_EQ(result.volumeName, "STICK");
    EXPECT_TRUE(result.message.contains("Could not find disk")) << result.message.toStdString();
    EXPECT_TRUE(loggedCommands().contains("[rename][/dev/disk2s1][PHOTOS 2024]")) << loggedCommands().join(' ').toStdString();
}

}  // namespace
}  // namespace velmora::test
