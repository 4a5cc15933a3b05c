// velmora-cli format, rename and eject on loop volumes (FAT32 through fusefat, exFAT
// through exfat-fuse where the kernel has no driver), checked with blkid and the mount
// table.
#include "VolumeTestSupport.h"
#include "support/BusyFolder.h"
#include "support/LoopVolume.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStorageInfo>

namespace velmora::test {
namespace {

class DiskToolLoopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        if (const std::string why = loopDevicesUnavailable(); !why.empty()) GTEST_SKIP() << "SKIPPED: " << why;
    }

    static QStringList mountPoints(const LoopVolume& volume) {
        QStringList points;
        for (const std::string& point : mountPointsOf(volume.node())) points.append(QString::fromStdString(point));
        return points;
    }

    // Formats and mounts the loop volume with the label; fails the test when it cannot.
    static QString mounted(LoopVolume& volume, const char* type, const char* label) {
        std::string point;
        const std::string problem = volume.formatAndMount(type, label, point);
        EXPECT_EQ(problem, "");
        return QString::fromStdString(point);
    }
};

// ext4 -> FAT32 "backup disk 2024" (issued as BACKUP DISK) -> exFAT with no name (NEW)
// -> ext4 again: each volume is mounted again beside the old one under its new name.
TEST_F(DiskToolLoopTest, FormatsThroughFat32AndExfatBackToExt4) {
    LoopVolume volume(64);
    const QString first = mounted(volume, "ext4", uniqueLabel("FMT").c_str());
    ASSERT_FALSE(first.isEmpty());
    const QString folder = QString::fromStdString(volume.folder());
    QByteArray output;

    ASSERT_EQ(cli({"format", "--yes", first, "fat32", "backup disk 2024"}, &output), 0) << output.toStdString();
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "vfat");
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), "BACKUP DISK");
    EXPECT_EQ(mountPoints(volume), QStringList{folder + "/BACKUP DISK"});

    ASSERT_EQ(cli({"format", "--yes", "--json", folder + "/BACKUP DISK", "ExFAT", ""}, &output), 0) << output.toStdString();
    const QJsonObject result = QJsonDocument::fromJson(output).object();
    EXPECT_TRUE(result.value("succeeded").toBool()) << output.toStdString();
    EXPECT_EQ(result.value("name").toString(), "NEW");
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "exfat");
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), "NEW");

    ASSERT_EQ(cli({"format", "--yes", QString::fromStdString(volume.node()), "EXT4", "Archive"}, &output), 0)
        << output.toStdString();
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "ext4");
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), "Archive");
    EXPECT_EQ(mountPoints(volume), QStringList{folder + "/Archive"});

    // Without --yes and with no one to answer, nothing happens.
    EXPECT_EQ(cli({"format", folder + "/Archive", "fat32"}, &output), 1);
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "ext4");
    EXPECT_EQ(cli({"format", "--yes", folder + "/Archive", "ntfs"}, &output), 2);
    EXPECT_EQ(cli({"format", "--yes", folder + "/Archive"}, &output), 2);
}

struct RenameCase {
    const char* type;
    QString name;
    QString label;       // what blkid reads afterwards
    QString refusedName; // a name the file system cannot hold
};

// Names are arguments: blanks, quotes and shell characters are part of the name and
// nothing runs. A name the file system cannot hold is refused and the label stays.
TEST_F(DiskToolLoopTest, RenamesKeepShellCharactersAsTextAndRefuseWhatTheFileSystemCannotHold) {
    const RenameCase cases[] = {
        {"vfat", "a b$&!'(x)", "A B$&!'(X)", "new;name"},
        {"exfat", "n;m $(x)`", "n;m $(x)`", QString(16, 'x')},
        {"ext4", "new;name", "new;name", QString(17, 'x')},
        {"ext4", "$(touch pwn)", "$(touch pwn)", ""},
    };
    for (const RenameCase& test : cases) {
        SCOPED_TRACE(std::string(test.type) + " \"" + test.name.toStdString() + "\"");
        LoopVolume volume(64);
        const QString oldLabel = QString::fromStdString(uniqueLabel("RN")).left(11);
        const QString point = mounted(volume, test.type, oldLabel.toUtf8().constData());
        ASSERT_FALSE(point.isEmpty());
        const QString device = QString::fromStdString(volume.node());
        QByteArray output;
        if (!test.refusedName.isEmpty()) {
            EXPECT_EQ(cli({"rename", device, test.refusedName}, &output), 1) << output.toStdString();
            EXPECT_TRUE(output.contains("could not be renamed")) << output.toStdString();
            EXPECT_EQ(blkidValue(volume.node(), "LABEL"), oldLabel);
        }
        QTemporaryDir folder;
        ASSERT_EQ(cli({"rename", point, test.name}, &output, folder.path()), 0) << output.toStdString();
        EXPECT_EQ(blkidValue(volume.node(), "LABEL"), test.label);
        EXPECT_EQ(mountPoints(volume), QStringList{QString::fromStdString(volume.folder()) + "/" + test.label});
        EXPECT_FALSE(QFileInfo::exists(folder.filePath("pwn")));
    }
}

// A busy volume is neither renamed, formatted nor ejected, and the error names what
// holds it; once free it is ejected (the loop device detached). The startup volume
// is refused.
TEST_F(DiskToolLoopTest, BusyAndStartupVolumesAreRefusedAndAFreeOneIsEjected) {
    LoopVolume volume(64);
    const QString label = QString::fromStdString(uniqueLabel("EJ"));
    const QString point = mounted(volume, "ext4", label.toUtf8().constData());
    ASSERT_FALSE(point.isEmpty());
    QByteArray output;
    {
        const BusyFolder busy(point.toStdString());
        ASSERT_GT(busy.pid(), 0);
        const QByteArray holder = "in use by sleep (pid " + QByteArray::number(busy.pid());
        EXPECT_EQ(cli({"rename", point, "Other"}, &output), 1);
        EXPECT_TRUE(output.contains(holder)) << output.toStdString();
        EXPECT_EQ(cli({"format", "--yes", point, "exfat", "X"}, &output), 1);
        EXPECT_TRUE(output.contains(holder)) << output.toStdString();
        EXPECT_EQ(cli({"eject", point}, &output), 1);
        EXPECT_TRUE(output.contains(holder)) << output.toStdString();
        EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
        EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "ext4");
        EXPECT_EQ(mountPoints(volume), QStringList{point});
    }
    ASSERT_EQ(cli({"eject", point}, &output), 0) << output.toStdString();
    EXPECT_TRUE(mountPoints(volume).isEmpty());
    EXPECT_FALSE(volume.attachedToImage());

    if (!QStorageInfo::root().device().startsWith("/dev/")) GTEST_SKIP() << "SKIPPED: the root is no block device here";
    for (const QStringList& command : {QStringList{"format", "--yes", "/", "exfat"}, QStringList{"rename", "/", "x"},
                                       QStringList{"eject", "/"}}) {
        EXPECT_EQ(cli(command, &output), 1) << output.toStdString();
        EXPECT_TRUE(output.contains("is the startup volume")) << output.toStdString();
    }
}

}  // namespace
}  // namespace velmora::test
