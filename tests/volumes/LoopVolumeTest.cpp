// The volume engine and velmora-cli on real file systems over loop devices:
// discovery, mount notifications, and the residue check of the whole-drive erase
// (a deleted file's unique marker must be nowhere in the raw image afterwards).
#include "VolumeTestSupport.h"
#include "support/LoopVolume.h"
#include "support/PageTestSupport.h"
#include "engine/erase/EraserLevel.h"
#include "engine/platform/NotificationCenter.h"
#include "engine/volumes/DiskMedium.h"
#include "engine/volumes/FileManagerVolumeScan.h"
#include "engine/volumes/VolumeScanner.h"
#include "engine/volumes/WatchMountUnmount.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStorageInfo>
#include <QTimer>

namespace velmora::test {
namespace {

class LoopVolumeTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        EraserLevel::store(1);
    }

    // Formats and mounts a loop volume; fails the test when that cannot be done.
    static void mountLoopVolume(LoopVolume& volume, const QString& type, const QString& label, QString& mountPoint) {
        std::string point;
        ASSERT_EQ(volume.formatAndMount(type.toStdString(), label.toStdString(), point), "");
        mountPoint = QString::fromStdString(point);
    }

    TempDataDir m_data;
};

TEST_F(LoopVolumeTest, ScansListTheMountedLoopVolume) {
    if (const std::string why = loopDevicesUnavailable(); !why.empty()) GTEST_SKIP() << why;
    LoopVolume volume(48);
    QString mountPoint;
    mountLoopVolume(volume, "ext4", "VELSCAN", mountPoint);
    const QString device = QString::fromStdString(volume.node());

    // The list is emptied at once and filled in the background; a second request
    // while the scan runs is ignored.
    VolumeScanner scanner;
    int began = 0;
    QEventLoop loop;
    QObject::connect(&scanner, &VolumeScanner::scanBegan, [&] { ++began; });
    QObject::connect(&scanner, &VolumeScanner::scanEnded, &loop, &QEventLoop::quit);
    scanner.getallVolumes();
    EXPECT_TRUE(scanner.isScanV());
    EXPECT_TRUE(scanner.allVolumeArr().isEmpty());
    scanner.getallVolumes();
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_FALSE(scanner.isScanV());
    EXPECT_EQ(began, 1);
    VolumeObj found;
    for (const VolumeObj& record : scanner.allVolumeArr())
        if (record.volumePath == device) found = record;
    EXPECT_EQ(found.volumeName, "VELSCAN");
    EXPECT_EQ(found.volumeType, "ext4");
    EXPECT_EQ(found.volumeMountPoint, mountPoint);
    EXPECT_EQ(found.volRootDir, device);
    EXPECT_EQ(found.volumeTotalSizeNum, 48 << 20);
    EXPECT_GT(found.volumeFreeSizeNum, 30 << 20);
    EXPECT_LT(found.volumeFreeSizeNum, 48 << 20);

    QByteArray output;
    ASSERT_EQ(cli({"volumes", "--json"}, &output), 0) << output.toStdString();
    QJsonObject listed;
    for (const QJsonValue& entry : QJsonDocument::fromJson(output).array())
        if (entry["device"].toString() == device) listed = entry.toObject();
    EXPECT_EQ(listed["name"].toString(), "VELSCAN");
    EXPECT_EQ(listed["mountPoint"].toString(), mountPoint);
    EXPECT_EQ(listed["fileSystem"].toString(), "ext4");
    EXPECT_EQ(listed["totalBytes"].toInteger(), 48 << 20);
    EXPECT_GT(listed["freeBytes"].toInteger(), 30 << 20);

    // The drive-copy picker's scan lists the same volume by its mount path.
    FileManagerVolumeScan picker;
    picker.doGetAllVolume();
    const auto byPath = std::find_if(picker.allVolumeArr().cbegin(), picker.allVolumeArr().cend(),
                                     [&](const VolumeObj& record) { return record.volumePath == mountPoint; });
    ASSERT_NE(byPath, picker.allVolumeArr().cend());
    EXPECT_EQ(byPath->volumeType, "ext4");
    EXPECT_EQ(byPath->volumeTotalSizeNum, QStorageInfo(mountPoint).bytesTotal());

    // The loop device's own rotational flag decides the solid-state test.
    QFile rotational("/sys/block/" + QFileInfo(device).fileName() + "/queue/rotational");
    ASSERT_TRUE(rotational.open(QIODevice::ReadOnly));
    EXPECT_EQ(isSolidState(mountPoint + "/lost+found"), rotational.readAll().trimmed() == "0");
}

TEST_F(LoopVolumeTest, MountsAndUnmountsAreRepostedAndFollowedByThePicker) {
    if (const std::string why = loopDevicesUnavailable(); !why.empty()) GTEST_SKIP() << why;
    LoopVolume volume(16);
    QString mountPoint;
    mountLoopVolume(volume, "ext4", "VELWATCH", mountPoint);
    const QString device = QString::fromStdString(volume.node());
    ASSERT_TRUE(volume.unmountAll());

    WatchMountUnmount watcher;
    FileManagerVolumeScan picker;
    picker.getDiskCallBack();
    const auto pickerHasVolume = [&] {
        return std::any_of(picker.allVolumeArr().cbegin(), picker.allVolumeArr().cend(),
                           [&](const VolumeObj& record) { return record.volumePath == device; });
    };
    QStringList posted;
    QObject::connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, &picker,
                     [&](const QString& name, const QVariant& info) {
                         if (info.toMap().value("NSDevicePath") == mountPoint) posted.append(name);
                     });
    // The notification comes at once; the picker's record after its background query.
    ASSERT_EQ(volume.mount("ext4", "VELWATCH"), mountPoint.toStdString());
    EXPECT_TRUE(waitUntil([&] { return posted.size() == 1 && pickerHasVolume(); }));
    EXPECT_EQ(posted, QStringList{"MCVolumeMount"});
    EXPECT_TRUE(pickerHasVolume());

    ASSERT_TRUE(volume.unmountAll());
    EXPECT_TRUE(waitUntil([&] { return posted.size() == 2 && !pickerHasVolume(); }));
    EXPECT_EQ(posted, QStringList({"MCVolumeMount", "MCVolumeUnmount"}));
    EXPECT_FALSE(pickerHasVolume());
}

TEST_F(LoopVolumeTest, EraseDriveRemovesEveryFileAndRemountsTheVolumeUnderItsName) {
    if (const std::string why = loopDevicesUnavailable(); !why.empty()) GTEST_SKIP() << why;
    LoopVolume volume(64);
    QString mountPoint;
    mountLoopVolume(volume, "ext4", "VELDRIVE", mountPoint);
    ASSERT_TRUE(QDir().mkpath(mountPoint + "/photos/2024"));
    const QByteArray marker = uniqueMarker();
    writeFile(mountPoint + "/photos/2024/secret.txt", marker.repeated(4000));
    writeFile(mountPoint + "/notes.txt", "notes");
    ::sync();
    ASSERT_GT(volume.countInImage(marker.toStdString()), 0);

    QByteArray output;
    EXPECT_EQ(cli({"erase-drive", "--yes", mountPoint}, &output), 0) << output.toStdString();
    EXPECT_EQ(volume.mountPoints(), std::vector<std::string>{mountPoint.toStdString()});
    EXPECT_EQ(entriesOf(mountPoint), QStringList());
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), "VELDRIVE");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:VELDRIVE|Erased"});

    ASSERT_TRUE(volume.unmountAll());
    EXPECT_EQ(volume.countInImage(marker.toStdString()), 0);
}

}  // namespace
}  // namespace velmora::test
