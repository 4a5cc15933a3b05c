// The free-space fill on real file systems over loop devices (root; skipped
// otherwise): every chosen pass runs and fills the volume to its last free unit,
// the fill folder cannot be redirected off the volume, a failed or cancelled run
// says so, and a run without administrator rights tells what it could not reach.
#include "VolumeTestSupport.h"
#include "WipeRun.h"
#include "engine/erase/EraserLevel.h"
#include "support/LoopVolume.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <memory>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace velmora::test {
namespace {

class FillLoopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        EraserLevel::store(1);
    }

    // Formats and mounts a volume of the type; the reason when this machine cannot
    // (no loop devices, no driver for the type).
    std::string mountVolume(const std::string& type, const std::string& label, bool readOnly = false,
                            const std::vector<std::string>& formatOptions = {}) {
        if (std::string why = loopDevicesUnavailable(); !why.empty()) return why;
        m_volume = std::make_unique<LoopVolume>(48);
        if (!m_volume->setupProblem().empty()) return m_volume->setupProblem();
        if (std::string why = m_volume->format(type, label, formatOptions); !why.empty()) return why;
        const std::string point = m_volume->mount(type, label, readOnly);
        if (point.empty()) return "SKIPPED: " + type + " cannot be mounted here";
        m_mountPoint = QString::fromStdString(point);
        m_label = QString::fromStdString(label);
        return {};
    }

    // The volume as a page hands it to the wipe: pinned by its device number.
    void chooseVolume(FreeSpaceWipe& wipe, qint64 freeBytes) const {
        struct stat info;
        ASSERT_EQ(::stat(QFile::encodeName(m_mountPoint).constData(), &info), 0);
        wipe.selectEraserType = 1;
        wipe.selectVolumeObj.volumeName = m_label;
        wipe.selectVolumeObj.volumeType = "ext4";
        wipe.selectVolumeObj.volumeMountPoint = m_mountPoint;
        wipe.selectVolumeObj.deviceNumber = quint64(info.st_dev);
        wipe.selectVolumeObj.volumeFreeSizeNum = freeBytes;
    }

    static WipeRun runUntilEnd(FreeSpaceWipe& wipe, const std::function<void(const QString&)>& onProgress = {}) {
        return WipeRun::until(wipe, [&wipe] { wipe.doFreeSpaceAction(); }, 240000, onProgress);
    }

    // A file full of the marker on the volume, deleted the ordinary way.
    void deleteMarkerFileOnVolume(const QByteArray& marker) {
        writeAndDeleteMarkerFile(m_mountPoint + "/secret.txt", marker);
        ASSERT_GT(m_volume->countInImage(marker.toStdString()), 0) << "the marker never reached the image";
    }

    TempDataDir m_data;
    QTemporaryDir m_outsideRoot;
    std::unique_ptr<LoopVolume> m_volume;
    QString m_mountPoint;
    QString m_label;
};

// The wipe is told nothing is free: the planned files are empty, and only the file
// written until the volume is full reaches the deleted marker. Three passes all
// run (a run with less than two fill units free once stopped after its first).
class FillToTheLastUnitTest : public FillLoopTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(FillToTheLastUnitTest, EveryPassRunsAndTheDeletedMarkerIsGone) {
    const std::string type = GetParam();
    if (const std::string why = mountVolume(type, "VELLAST"); !why.empty()) {
        ASSERT_NE(type, "ext4") << why;
        GTEST_SKIP() << why;
    }
    writeFile(m_mountPoint + "/kept.txt", "still here\n");
    const QByteArray marker = uniqueMarker();
    deleteMarkerFileOnVolume(marker);

    EraserLevel::store(3);
    FreeSpaceWipe wipe;
    chooseVolume(wipe, 0);
    const WipeRun run = runUntilEnd(wipe);
    ASSERT_TRUE(run.ended) << "timed out " << run.timedOut;
    EXPECT_TRUE(run.succeeded) << run.endText.toStdString();
    EXPECT_EQ(run.progressTexts, QStringList({"Erased 100% in 1 of 3 passes", "Erased 100% in 2 of 3 passes",
                                              "Erased 100% in 3 of 3 passes"}));
    EXPECT_EQ(run.closeWindowCount, 1);
    EXPECT_EQ(wipe.iRoundTimes(), 3);
    EXPECT_EQ(entriesOf(m_mountPoint).filter(".Velmora"), QStringList());
    EXPECT_EQ(readAll(m_mountPoint + "/kept.txt"), "still here\n");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:VELLAST|Erased"});

    ASSERT_TRUE(m_volume->unmountAll());
    EXPECT_EQ(m_volume->countInImage(marker.toStdString()), 0);
}

INSTANTIATE_TEST_SUITE_P(LoopVolumes, FillToTheLastUnitTest, ::testing::Values("ext4", "vfat", "exfat"));

// More free space planned than the volume has: the planned files keep their
// progress texts, a full volume on the way is no failure.
TEST_F(FillLoopTest, PlannedFilesKeepTheirTextsWhenTheVolumeFillsEarly) {
    ASSERT_EQ(mountVolume("ext4", "VELPLAN"), "");
    FreeSpaceWipe wipe;
    chooseVolume(wipe, 384000001);  // fill files 1 and 2, remainder file 3, 25% a step
    const WipeRun run = runUntilEnd(wipe);
    ASSERT_TRUE(run.ended);
    EXPECT_TRUE(run.succeeded) << run.endText.toStdString();
    EXPECT_EQ(run.progressTexts,
              QStringList({"Erased 25.00% in 1 of 1 pass", "Erased 50.00% in 1 of 1 pass", "Erased 100% in 1 of 1 pass"}));
    EXPECT_EQ(run.percents, QList<float>({25.0f, 50.0f, 100.0f}));
    EXPECT_EQ(wipe.wipeScanPathStr(), m_mountPoint + "/.Velmora");
    EXPECT_FALSE(QFileInfo::exists(m_mountPoint + "/.Velmora"));
}

// A cancel ends the run in the failure view with its note, and leaves nothing
// that holds up the next run on the same wipe.
TEST_F(FillLoopTest, CancelledRunFailsAndTheNextRunStillRuns) {
    ASSERT_EQ(mountVolume("ext4", "VELCANCEL"), "");
    FreeSpaceWipe wipe;
    chooseVolume(wipe, 384000001);
    const WipeRun cancelled = runUntilEnd(wipe, [&wipe](const QString&) { wipe.cancelWipeSpaceButtonAction(); });
    ASSERT_TRUE(cancelled.ended);
    EXPECT_FALSE(cancelled.succeeded);
    EXPECT_TRUE(cancelled.cancelled);
    EXPECT_EQ(cancelled.endText, "The operation was canceled by the user.");
    EXPECT_EQ(cancelled.progressTexts, QStringList{"Erased 25.00% in 1 of 1 pass"});
    EXPECT_FALSE(QFileInfo::exists(m_mountPoint + "/.Velmora"));

    const WipeRun next = runUntilEnd(wipe);
    ASSERT_TRUE(next.ended);
    EXPECT_TRUE(next.succeeded) << next.endText.toStdString();
    EXPECT_EQ(volumeHistoryItems(), QStringList({"Erase Free Space:VELCANCEL|Failed", "Erase Free Space:VELCANCEL|Erased"}));
}

// ext4 keeps clusters in reserve that no file may take, not even root's. Old data
// there (the marker, written while the test had the reserve released, so it covers
// every free cluster) is reached by a run with administrator rights, nothing is
// left unreachable, and the reserve is what it was afterwards.
TEST_F(FillLoopTest, RunAsAdministratorReachesTheClustersExt4KeepsInReserve) {
    ASSERT_EQ(mountVolume("ext4", "VELRESC"), "");
    const QString reserve = QString::fromStdString("/sys/fs/ext4/" + m_volume->kernelName() + "/reserved_clusters");
    const QByteArray kept = readAll(reserve).trimmed();
    ASSERT_GT(kept.toLongLong(), 0) << reserve.toStdString();
    const QByteArray marker = uniqueMarker();
    {
        QFile sysfs(reserve);
        ASSERT_TRUE(sysfs.open(QIODevice::WriteOnly));
        ASSERT_EQ(sysfs.write("0"), 1);
    }
    {
        QFile file(m_mountPoint + "/secret.txt");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QByteArray lines;
        while (lines.size() < 65536) lines += marker + "\n";
        while (file.write(lines) > 0) {
        }
        ::fsync(file.handle());
    }
    {
        QFile sysfs(reserve);
        ASSERT_TRUE(sysfs.open(QIODevice::WriteOnly));
        ASSERT_EQ(sysfs.write(kept), kept.size());
    }
    ASSERT_TRUE(QFile::remove(m_mountPoint + "/secret.txt"));
    ::sync();

    FreeSpaceWipe wipe;
    chooseVolume(wipe, 0);
    const WipeRun run = runUntilEnd(wipe);
    ASSERT_TRUE(run.ended) << "timed out " << run.timedOut;
    EXPECT_TRUE(run.succeeded) << run.endText.toStdString();
    EXPECT_EQ(wipe.unreachableBytes(), 0);
    EXPECT_EQ(readAll(reserve).trimmed(), kept);
    ASSERT_TRUE(m_volume->unmountAll());
    EXPECT_EQ(m_volume->countInImage(marker.toStdString()), 0);
}

// A read-only volume: the run fails, and no fill folder is made anywhere else.
class ReadOnlyFillTest : public FillLoopTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ReadOnlyFillTest, FailsWithoutWritingElsewhere) {
    const std::string type = GetParam();
    if (const std::string why = mountVolume(type, "VELRO", true); !why.empty()) {
        ASSERT_NE(type, "ext4") << why;
        GTEST_SKIP() << why;
    }
    QByteArray output;
    EXPECT_EQ(cli({"wipe-free", "--yes", m_mountPoint}, &output), 1) << output.toStdString();
    EXPECT_TRUE(output.contains("Failed  Erase Free Space:VELRO")) << output.toStdString();
    EXPECT_TRUE(output.contains("read-only")) << output.toStdString();
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:VELRO|Failed"});
    QStringList velmoraFolders;
    for (QDirIterator it(m_data.path(), {".Velmora"}, QDir::AllEntries | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();)
        velmoraFolders.append(it.next());
    EXPECT_EQ(velmoraFolders, QStringList());
}

INSTANTIATE_TEST_SUITE_P(LoopVolumes, ReadOnlyFillTest, ::testing::Values("ext4", "vfat", "exfat"));

// ".Velmora" on the volume linking to a folder elsewhere: the run fails (exit status 1,
// "Failed") and the link and the folder are left as they are.
TEST_F(FillLoopTest, RedirectedFillFolderIsRefusedAndLeftAlone) {
    ASSERT_EQ(mountVolume("ext4", "VELLINK"), "");
    const QString outside = m_outsideRoot.filePath("elsewhere");
    ASSERT_TRUE(QDir().mkpath(outside));
    writeFile(outside + "/keep.txt", "not on the volume");
    writeFile(outside + "/.velmora_1", "named like a fill file");
    ASSERT_TRUE(QFile::link(outside, m_mountPoint + "/.Velmora"));

    QByteArray output;
    EXPECT_EQ(cli({"wipe-free", "--yes", m_mountPoint}, &output), 1) << output.toStdString();
    EXPECT_TRUE(output.contains("Failed  Erase Free Space:VELLINK")) << output.toStdString();
    EXPECT_TRUE(output.contains("is a link")) << output.toStdString();
    EXPECT_TRUE(QFileInfo(m_mountPoint + "/.Velmora").isSymLink());
    EXPECT_EQ(entriesOf(outside), QStringList({".velmora_1", "keep.txt"}));
    EXPECT_EQ(readAll(outside + "/keep.txt"), "not on the volume");
    EXPECT_EQ(readAll(outside + "/.velmora_1"), "named like a fill file");
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:VELLINK|Failed"});
}

// What a killed run leaves (its folder with fill files in it) goes at the next run, which
// velmora-cli runs to its end: the deleted marker is gone from the raw image.
TEST_F(FillLoopTest, FillFolderOfAKilledRunIsRemovedByTheNextRun) {
    ASSERT_EQ(mountVolume("ext4", "VELKILL"), "");
    const QByteArray marker = uniqueMarker();
    deleteMarkerFileOnVolume(marker);
    ASSERT_TRUE(QDir().mkpath(m_mountPoint + "/.Velmora"));
    ASSERT_TRUE(QFile::setPermissions(m_mountPoint + "/.Velmora", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    writeFile(m_mountPoint + "/.Velmora/.velmora_0", QByteArray(1 << 20, '\0'));
    writeFile(m_mountPoint + "/.Velmora/.velmora_1", QByteArray(4096, '\0'));

    QByteArray output;
    EXPECT_EQ(cli({"wipe-free", "--yes", m_mountPoint}, &output), 0) << output.toStdString();
    EXPECT_EQ(entriesOf(m_mountPoint), QStringList{"lost+found"});
    EXPECT_EQ(volumeHistoryItems(), QStringList{"Erase Free Space:VELKILL|Erased"});
    ASSERT_TRUE(m_volume->unmountAll());
    EXPECT_EQ(m_volume->countInImage(marker.toStdString()), 0);
}

// ext4 keeps 5% for the administrator: a run without administrator rights cannot
// write there, and says how many bytes it could not reach.
TEST_F(FillLoopTest, RunWithoutAdministratorRightsReportsTheBytesItCouldNotReach) {
    ASSERT_EQ(mountVolume("ext4", "VELRESV", false, {"-m", "5"}), "");
    constexpr uid_t kNobody = 65534;
    ASSERT_EQ(::chown(QFile::encodeName(m_mountPoint).constData(), kNobody, kNobody), 0);
    struct statvfs before;
    ASSERT_EQ(::statvfs(QFile::encodeName(m_mountPoint).constData(), &before), 0);
    const qint64 reserved = qint64(before.f_bfree - before.f_bavail) * qint64(before.f_frsize);
    ASSERT_GT(reserved, 0);

    // Its own data folder, since the test's is private to root.
    QTemporaryDir nobodyData;
    ASSERT_EQ(::chown(QFile::encodeName(nobodyData.path()).constData(), kNobody, kNobody), 0);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VELMORA_DATA_DIR", nobodyData.path());
    environment.insert("HOME", nobodyData.path());
    environment.remove("XDG_RUNTIME_DIR");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups", "--", binDir() + "/velmora-cli",
                              "wipe-free", "--yes", m_mountPoint});
    ASSERT_TRUE(process.waitForFinished(300000));
    const QByteArray output = process.readAll();
    EXPECT_EQ(process.exitCode(), 0) << output.toStdString();
    const QRegularExpressionMatch told =
        QRegularExpression("([0-9,]+) bytes of free space could not be overwritten").match(QString::fromUtf8(output));
    ASSERT_TRUE(told.hasMatch()) << output.toStdString();
    EXPECT_GE(told.captured(1).remove(',').toLongLong(), reserved) << output.toStdString();
    EXPECT_TRUE(output.contains("administrator")) << output.toStdString();
}

}  // namespace
}  // namespace velmora::test
