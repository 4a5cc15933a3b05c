// The volume engine and velmora-cli on real file systems over loop devices:
// discovery, mount notifications, and the residue check of both wipes (a
// deleted file's unique marker must be nowhere in the raw image afterwards).
#include "LoopVolume.h"
#include "engine/erase/EraserLevel.h"
#include "engine/platform/NotificationCenter.h"
#include "engine/volumes/DiskMedium.h"
#include "engine/volumes/FileManagerVolumeScan.h"
#include "engine/volumes/VolumeScanner.h"
#include "engine/volumes/WatchMountUnmount.h"

#include <QElapsedTimer>
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

    // Runs velmora-cli from the build; its exit code (-1 when it did not end).
    static int cli(const QStringList& arguments, QByteArray* output, int timeoutMs = 300000) {
        return run(binDir() + "/velmora-cli", arguments, output, timeoutMs);
    }

    // A file full of the marker, written through to the disk and then deleted
    // the ordinary way: its blocks are free but still hold the marker.
    static void writeAndDeleteMarkerFile(const QString& path, const QByteArray& marker) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        for (int i = 0; i < 4000; ++i) file.write(marker + " " + QByteArray::number(i) + "\n");
        file.flush();
        ::fsync(file.handle());
        file.close();
        ::sync();
        ASSERT_TRUE(QFile::remove(path));
        ::sync();
    }

    // Serves the event loop until the condition holds (false after 30 seconds).
    static bool waitUntil(const std::function<bool()>& condition) {
        QElapsedTimer clock;
        clock.start();
        while (!condition()) {
            if (clock.hasExpired(30000)) return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            QThread::msleep(10);
        }
        return true;
    }

    TempDataDir m_data;
    QTemporaryDir m_folder;
};

TEST_F(LoopVolumeTest, ScansListTheMountedLoopVolume) {
    SKIP_UNLESS_ROOT_WITH_LOOP_DEVICES();
    LoopVolume volume(m_folder.path(), "ext4", "VELSCAN", 48);
    ASSERT_TRUE(volume.isReady()) << volume.error().toStdString();

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
        if (record.volumePath == volume.device()) found = record;
    EXPECT_EQ(found.volumeName, "VELSCAN");
    EXPECT_EQ(found.volumeType, "ext4");
    EXPECT_EQ(found.volumeMountPoint, volume.mountPoint());
    EXPECT_EQ(found.volRootDir, volume.device());
    EXPECT_EQ(found.volumeTotalSizeNum, 48 << 20);
    EXPECT_GT(found.volumeFreeSizeNum, 30 << 20);
    EXPECT_LT(found.volumeFreeSizeNum, 48 << 20);

    QByteArray output;
    ASSERT_EQ(cli({"volumes", "--json"}, &output), 0) << output.toStdString();
    QJsonObject listed;
    for (const QJsonValue& entry : QJsonDocument::fromJson(output).array())
        if (entry["device"].toString() == volume.device()) listed = entry.toObject();
    EXPECT_EQ(listed["name"].toString(), "VELSCAN");
    EXPECT_EQ(listed["mountPoint"].toString(), volume.mountPoint());
    EXPECT_EQ(listed["fileSystem"].toString(), "ext4");
    EXPECT_EQ(listed["totalBytes"].toInteger(), 48 << 20);
    EXPECT_GT(listed["freeBytes"].toInteger(), 30 << 20);

    // The drive-copy picker's scan lists the same volume by its mount path.
    FileManagerVolumeScan picker;
    picker.doGetAllVolume();
    const auto byPath = std::find_if(picker.allVolumeArr().cbegin(), picker.allVolumeArr().cend(),
                                     [&](const VolumeObj& record) { return record.volumePath == volume.mountPoint(); });
    ASSERT_NE(byPath, picker.allVolumeArr().cend());
    EXPECT_EQ(byPath->volumeType, "ext4");
    EXPECT_EQ(byPath->volumeTotalSizeNum, QStorageInfo(volume.mountPoint()).bytesTotal());

    // The loop device's own rotational flag decides the solid-state test.
    QFile rotational("/sys/block/" + QFileInfo(volume.device()).fileName() + "/queue/rotational");
    ASSERT_TRUE(rotational.open(QIODevice::ReadOnly));
    EXPECT_EQ(isSolidState(volume.mountPoint() + "/lost+found"), rotational.readAll().trimmed() == "0");
}

TEST_F(LoopVolumeTest, MountsAndUnmountsAreRepostedAndFollowedByThePicker) {
    SKIP_UNLESS_ROOT_WITH_LOOP_DEVICES();
    LoopVolume volume(m_folder.path(), "ext4", "VELWATCH", 16);
    ASSERT_TRUE(volume.isReady()) << volume.error().toStdString();
    volume.unmount();

    WatchMountUnmount watcher;
    FileManagerVolumeScan picker;
    picker.getDiskCallBack();
    const auto pickerHasVolume = [&] {
        return std::any_of(picker.allVolumeArr().cbegin(), picker.allVolumeArr().cend(),
                           [&](const VolumeObj& record) { return record.volumePath == volume.device(); });
    };
    QStringList posted;
    QObject::connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, &picker,
                     [&](const QString& name, const QVariant& info) {
                         if (info.toMap().value("NSDevicePath") == volume.mountPoint()) posted.append(name);
                     });
    // The notification comes at once; the picker's record after its background query.
    ASSERT_TRUE(volume.mount());
    EXPECT_TRUE(waitUntil([&] { return posted.size() == 1 && pickerHasVolume(); }));
    EXPECT_EQ(posted, QStringList{"MCVolumeMount"});
    EXPECT_TRUE(pickerHasVolume());

    volume.unmount();
    EXPECT_TRUE(waitUntil([&] { return posted.size() == 2 && !pickerHasVolume(); }));
    EXPECT_EQ(posted, QStringList({"MCVolumeMount", "MCVolumeUnmount"}));
    EXPECT_FALSE(pickerHasVolume());
}

// The wipe of a FAT32 volume and of an ext4 volume, each with less than one fill
// unit (128,000,000 bytes) free, so the remainder file covers all of it.
class WipeFreeTest : public LoopVolumeTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(WipeFreeTest, DeletedMarkerIsGoneFromTheRawImageAndKeptFilesStay) {
    SKIP_UNLESS_ROOT_WITH_LOOP_DEVICES();
    const QString type = GetParam();
    LoopVolume volume(m_folder.path(), type, type == "ext4" ? "VELEXT" : "VELFAT", 64);
    if (type == "vfat" && volume.error().startsWith("mount:"))
        GTEST_SKIP() << "SKIPPED: FAT32 cannot be mounted here (no kernel vfat, no usable fusefat): "
                     << volume.error().toStdString();
    ASSERT_TRUE(volume.isReady()) << volume.error().toStdString();
    const QString kept = volume.mountPoint() + "/kept.txt";
    {
        QFile file(kept);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("still here\n");
    }
    const QByteArray marker = uniqueMarker();
    writeAndDeleteMarkerFile(volume.mountPoint() + "/secret.txt", marker);
    ASSERT_GT(countInFile(volume.image(), marker), 0) << "the marker never reached the image";

    QByteArray output;
    EXPECT_EQ(cli({"wipe-free", "--yes", volume.mountPoint()}, &output), 0) << output.toStdString();
    EXPECT_FALSE(QFileInfo::exists(volume.mountPoint() + "/.Velmora"));
    QFile file(kept);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "still here\n");
    file.close();
    const QString name = type == "ext4" ? "VELEXT" : "VELFAT";
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:" + name + "|Erased"});

    volume.unmount();
    EXPECT_EQ(countInFile(volume.image(), marker), 0);
}

INSTANTIATE_TEST_SUITE_P(LoopVolumes, WipeFreeTest, ::testing::Values("vfat", "ext4"));

TEST_F(LoopVolumeTest, EraseDriveRemovesEveryFileAndRemountsTheVolumeUnderItsName) {
    SKIP_UNLESS_ROOT_WITH_LOOP_DEVICES();
    LoopVolume volume(m_folder.path(), "ext4", "VELDRIVE", 64);
    ASSERT_TRUE(volume.isReady()) << volume.error().toStdString();
    ASSERT_TRUE(QDir().mkpath(volume.mountPoint() + "/photos/2024"));
    const QByteArray marker = uniqueMarker();
    {
        QFile file(volume.mountPoint() + "/photos/2024/secret.txt");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        for (int i = 0; i < 4000; ++i) file.write(marker + "\n");
        QFile other(volume.mountPoint() + "/notes.txt");
        ASSERT_TRUE(other.open(QIODevice::WriteOnly));
        other.write("notes");
    }
    ::sync();
    ASSERT_GT(countInFile(volume.image(), marker), 0);

    QByteArray output;
    EXPECT_EQ(cli({"erase-drive", "--yes", volume.mountPoint()}, &output), 0) << output.toStdString();
    EXPECT_EQ(volume.mountPointsOfDevice(), QStringList{volume.mountPoint()});
    EXPECT_EQ(QDir(volume.mountPoint()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
              QStringList());
    QByteArray label;
    run("blkid", {"-s", "LABEL", "-o", "value", volume.device()}, &label);
    EXPECT_EQ(label.trimmed(), "VELDRIVE");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:VELDRIVE|Erased"});

    volume.unmount();
    EXPECT_EQ(countInFile(volume.image(), marker), 0);
}

}  // namespace
}  // namespace velmora::test
