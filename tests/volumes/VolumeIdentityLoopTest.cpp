// Whole-drive erase and free-space wipe through velmora-cli on real loop volumes,
// attacked through what identifies a volume: a second volume with the same label,
// labels holding shell syntax, a reformat that fails, and a reformat that keeps
// the old blocks (so only stage 2 can have erased them).
#include "VolumeTestSupport.h"
#include "support/LoopVolume.h"
#include "engine/erase/EraserLevel.h"


namespace velmora::test {
namespace {

class VolumeIdentityLoopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        EraserLevel::store(1);
        if (const std::string why = loopDevicesUnavailable(); !why.empty()) GTEST_SKIP() << "SKIPPED: " << why;
    }

    // An ext4 loop volume with this label, mounted at FOLDER/vol (the folder's
    // name never carries the label, so the label alone is under test).
    std::unique_ptr<LoopVolume> ext4Volume(const QString& label, QString& mountPoint, int sizeMiB = 32) {
        auto volume = std::make_unique<LoopVolume>(sizeMiB);
        EXPECT_EQ(volume->setupProblem(), "");
        EXPECT_EQ(volume->format("ext4", label.toStdString()), "");
        mountPoint = QString::fromStdString(volume->mount("ext4", "vol"));
        EXPECT_FALSE(mountPoint.isEmpty());
        return volume;
    }

    // A disk utility standing in for velmora-diskutil: "reformat" runs BODY (with
    // $2 the device), everything else goes to the real tool.
    QString standInDiskUtil(const QByteArray& reformatBody) {
        const QString path = m_folder.filePath("diskutil-stand-in");
        QFile script(path);
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nif [ \"$1\" = reformat ]; then\n" + reformatBody + "\nfi\nexec '" +
                     QFile::encodeName(binDir()) + "/velmora-diskutil' \"$@\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    TempDataDir m_data;
    QTemporaryDir m_folder;
};

TEST_F(VolumeIdentityLoopTest, EraseDriveErasesOnlyTheChosenOfTwoVolumesWithTheSameLabel) {
    const QString label = QString::fromStdString(uniqueLabel("TWIN"));
    QString chosenMount, otherMount;
    const auto chosen = ext4Volume(label, chosenMount);
    const auto other = ext4Volume(label, otherMount);
    ASSERT_FALSE(chosenMount.isEmpty() || otherMount.isEmpty());
    writeFile(chosenMount + "/chosen.txt", "erase me");
    writeFile(otherMount + "/other.txt", "keep me");

    QByteArray output;
    // The label names two volumes: it is refused as an operand.
    EXPECT_EQ(cli({"erase-drive", "--yes", label}, &output, m_folder.path()), 2) << output.toStdString();
    EXPECT_TRUE(output.contains("2 volumes are named")) << output.toStdString();
    EXPECT_EQ(readAll(chosenMount + "/chosen.txt"), "erase me");

    ASSERT_EQ(cli({"erase-drive", "--yes", chosenMount}, &output, m_folder.path()), 0) << output.toStdString();
    EXPECT_EQ(entriesOf(chosenMount), QStringList());
    EXPECT_EQ(entriesOf(otherMount), QStringList({"lost+found", "other.txt"}));
    EXPECT_EQ(readAll(otherMount + "/other.txt"), "keep me");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:" + label + "|Erased"});
}

// Labels are data: the volume is queried, wiped and reformatted under its own
// label, and nothing in it runs (a command would create a file in the working
// folder of velmora-cli, or in /tmp).
TEST_F(VolumeIdentityLoopTest, LabelsWithShellSyntaxAreWipedAndReformattedAndNeverRun) {
    const QString tag = QString::fromStdString(uniqueLabel("P")).right(4);
    const QStringList labels = {"x;touch PW" + tag, "$(touch PX" + tag + ")", "MY DISK", "x\"y", "`touch PY" + tag + "`"};
    const QStringList markers = {"PW" + tag, "PX" + tag, "PY" + tag};
    for (const QString& label : labels) {
        SCOPED_TRACE(label.toStdString());
        QString mountPoint;
        const auto volume = ext4Volume(label, mountPoint, 24);
        ASSERT_FALSE(mountPoint.isEmpty());
        writeFile(mountPoint + "/file.txt", "data");

        QByteArray output;
        EXPECT_EQ(cli({"wipe-free", "--yes", mountPoint}, &output, m_folder.path()), 0) << output.toStdString();
        EXPECT_EQ(readAll(mountPoint + "/file.txt"), "data");
        EXPECT_EQ(cli({"erase-drive", "--yes", mountPoint}, &output, m_folder.path()), 0) << output.toStdString();
        EXPECT_EQ(entriesOf(mountPoint), QStringList());
        EXPECT_EQ(blkidValue(volume->node(), "LABEL"), label);
        EXPECT_TRUE(volumeHistoryItems().contains("Erase Hard Drive:" + label + "|Erased"));
        EXPECT_TRUE(volumeHistoryItems().contains("Erase Free Space:" + label + "|Erased"));
    }
    for (const QString& marker : markers) {
        EXPECT_FALSE(QFileInfo::exists(m_folder.filePath(marker))) << marker.toStdString();
        EXPECT_FALSE(QFileInfo::exists("/tmp/" + marker)) << marker.toStdString();
    }
}

// A reformat the disk utility could not do (refused, busy) fails the job before
// any file is touched: exit status 1, "Failed" printed and recorded.
TEST_F(VolumeIdentityLoopTest, FailingReformatFailsTheJobAndTouchesNoFile) {
    const QString label = QString::fromStdString(uniqueLabel("FAIL"));
    QString mountPoint;
    const auto volume = ext4Volume(label, mountPoint);
    ASSERT_FALSE(mountPoint.isEmpty());
    writeFile(mountPoint + "/kept.txt", "still here");
    QProcessEnvironment environment;
    environment.insert("VELMORA_DISKUTIL", standInDiskUtil("echo 'Could not unmount: target is busy' >&2\nexit 1"));

    QByteArray output;
    EXPECT_EQ(cli({"erase-drive", "--yes", mountPoint}, &output, m_folder.path(), environment), 1) << output.toStdString();
    EXPECT_TRUE(output.contains("Failed  Erase Hard Drive:" + label.toUtf8())) << output.toStdString();
    EXPECT_TRUE(output.contains("could not be reformatted")) << output.toStdString();
    EXPECT_TRUE(output.contains("target is busy")) << output.toStdString();
    EXPECT_EQ(readAll(mountPoint + "/kept.txt"), "still here");
    EXPECT_EQ(entriesOf(mountPoint), QStringList({"kept.txt", "lost+found"}));
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Hard Drive:" + label + "|Failed"});
}

// A reformat that writes new tables and keeps the old data blocks: mkfs.vfat as the
// disk utility runs it, and mkfs.ext4 on a device that cannot discard (a stand-in
// disk utility runs it with "-E nodiscard"). That the marker survives stage 1 alone
// is shown first; after the whole erase it is gone from the raw image, so stage 2
// (leftovers and fill) erased it. On ext4 this needs the fill to reach the clusters
// ext4 keeps in reserve and the blocks that pass through its journal.
class StageTwoTest : public VolumeIdentityLoopTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(StageTwoTest, ErasesWhatTheReformatLeaves) {
    const std::string type = GetParam();
    const QString label = QString::fromStdString(uniqueLabel("KEEP")).left(11).toUpper();
    auto volume = std::make_unique<LoopVolume>(48);
    ASSERT_EQ(volume->setupProblem(), "");
    std::string point;
    if (const std::string why = volume->formatAndMount(type, label.toStdString(), point); !why.empty()) {
        ASSERT_NE(type, "ext4") << why;
        GTEST_SKIP() << "SKIPPED: " << type << " cannot be mounted here: " << why;
    }
    const QString mountPoint = QString::fromStdString(point);
    const QString node = QString::fromStdString(volume->node());
    QString diskUtil = binDir() + "/velmora-diskutil";
    if (type == "ext4") {
        const QByteArray mkfs = QByteArray::fromStdString(programPath("mkfs.ext4"));
        diskUtil = standInDiskUtil("umount -- \"$2\" || exit 1\n'" + mkfs + "' -F -q -E nodiscard -L '" + label.toUtf8() +
                                   "' \"$2\" || exit 1\nmount -t ext4 -- \"$2\" '" + QFile::encodeName(mountPoint) +
                                   "' || exit 1\nexit 0");
    }
    const QByteArray marker = uniqueMarker();
    QByteArray contents;
    for (int i = 0; i < 4000; ++i) contents += marker + " " + QByteArray::number(i) + "\n";
    writeFile(mountPoint + "/secret.txt", contents);
    ASSERT_TRUE(volume->unmountAll());
    ASSERT_GT(volume->countInImage(marker.toStdString()), 0) << "the marker never reached the image";
    ASSERT_FALSE(volume->mount(type, label.toStdString()).empty());

    // Stage 1 alone keeps the marker.
    QByteArray output;
    ASSERT_EQ(run(diskUtil, {"reformat", node}, &output), 0) << output.toStdString();
    ASSERT_TRUE(volume->unmountAll());
    ASSERT_GT(volume->countInImage(marker.toStdString()), 0) << "the reformat cleared the old blocks";
    ASSERT_FALSE(volume->mount(type, label.toStdString()).empty());

    QProcessEnvironment environment;
    environment.insert("VELMORA_DISKUTIL", diskUtil);
    ASSERT_EQ(cli({"erase-drive", "--yes", mountPoint}, &output, m_folder.path(), environment), 0) << output.toStdString();
    EXPECT_FALSE(output.contains("could not be overwritten")) << output.toStdString();
    const std::vector<std::string> mounts = volume->mountPoints();
    ASSERT_EQ(mounts.size(), 1u);
    EXPECT_EQ(entriesOf(QString::fromStdString(mounts.front())), QStringList());
    ASSERT_TRUE(volume->unmountAll());
    EXPECT_EQ(volume->countInImage(marker.toStdString()), 0);
}

INSTANTIATE_TEST_SUITE_P(LoopVolumes, StageTwoTest, ::testing::Values("vfat", "ext4"));

}  // namespace
}  // namespace velmora::test
