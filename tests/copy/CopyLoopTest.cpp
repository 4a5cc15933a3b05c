// velmora-cli copy between real file systems on loop devices: a whole volume copied and
// verified, a destination too small, and FAT32, which holds neither links nor permissions.
#include "CopyTestSupport.h"

#include "support/LoopVolume.h"
#include "support/TestFiles.h"

#include <unistd.h>

namespace velmora::test {
namespace {

#define SKIP_WITHOUT_LOOP_DEVICES()                                                \
    do {                                                                           \
        const std::string problem = loopDevicesUnavailable();                      \
        if (!problem.empty()) GTEST_SKIP() << "SKIPPED: " << problem;              \
    } while (0)

// A mounted volume for the test, or the reason to skip.
struct MountedVolume {
    MountedVolume(int sizeMiB, const std::string& type) : volume(sizeMiB) {
        problem = volume.setupProblem();
        if (problem.empty()) problem = volume.formatAndMount(type, uniqueLabel("CP"), mountPoint);
    }
    LoopVolume volume;
    std::string mountPoint;
    std::string problem;
};

void fillSource(const std::string& root) {
    mkdir((root + "/docs").c_str(), 0750);
    writeFile(root + "/docs/report.txt", "report");
    chmod((root + "/docs/report.txt").c_str(), 0604);
    writeFile(root + "/docs/data.bin", randomBytes(3 << 20));
    symlink("report.txt", (root + "/docs/latest").c_str());
    symlink("/etc", (root + "/system").c_str());
    writeFile(root + "/top.txt", "top");
}

TEST(CopyLoop, AWholeVolumeIsCopiedAndVerifiedWithItsLinks) {
    SKIP_WITHOUT_LOOP_DEVICES();
    MountedVolume source(64, "ext4");
    MountedVolume destination(64, "ext4");
    if (!source.problem.empty() || !destination.problem.empty())
        GTEST_SKIP() << "SKIPPED: " << source.problem << destination.problem;
    fillSource(source.mountPoint);

    const ProcessResult run = runCli({"copy", "--yes", "--verify", source.mountPoint, destination.mountPoint});
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    const std::string clone = onlyEntryStartingWith(destination.mountPoint, "VLclone(");
    ASSERT_FALSE(clone.empty());
    const std::string copy = destination.mountPoint + "/" + clone;
    EXPECT_NE(run.out.find("Destination: " + copy), std::string::npos) << run.out;
    const ProcessResult diff = runProcess({"diff", "-r", "--no-dereference", source.mountPoint, copy});
    EXPECT_EQ(diff.status, 0) << diff.out << diff.err;
    EXPECT_TRUE(diff.out.empty()) << diff.out;
    EXPECT_TRUE(S_ISLNK(lstatOf(copy + "/system").st_mode));
    EXPECT_TRUE(S_ISLNK(lstatOf(copy + "/docs/latest").st_mode));
    EXPECT_EQ(lstatOf(copy + "/docs/report.txt").st_mode & 07777, 0604u);
}

TEST(CopyLoop, ADestinationTooSmallIsRefusedBeforeAnythingIsWritten) {
    SKIP_WITHOUT_LOOP_DEVICES();
    MountedVolume source(64, "ext4");
    MountedVolume destination(16, "ext4");
    if (!source.problem.empty() || !destination.problem.empty())
        GTEST_SKIP() << "SKIPPED: " << source.problem << destination.problem;
    writeFile(source.mountPoint + "/big", randomBytes(24 << 20));

    const ProcessResult run = runCli({"copy", "--yes", source.mountPoint, destination.mountPoint});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("Insufficient disk space on this destination drive, please select another drive."),
              std::string::npos) << run.err;
    EXPECT_TRUE(onlyEntryStartingWith(destination.mountPoint, "VLclone").empty());
    // Picking a small item instead fits.
    writeFile(source.mountPoint + "/small", "small");
    const ProcessResult picked = runCli({"copy", "--yes", "--json", source.mountPoint, destination.mountPoint,
                                         "--only", "small"});
    EXPECT_EQ(picked.status, 0) << picked.out << picked.err;
    EXPECT_NE(picked.out.find("\"complete\": true"), std::string::npos) << picked.out;
}

TEST(CopyLoop, OntoFat32LinksAndPermissionsAreReportedNotLostSilently) {
    SKIP_WITHOUT_LOOP_DEVICES();
    TempDir source;
    MountedVolume destination(64, "vfat");
    if (!destination.problem.empty()) GTEST_SKIP() << "SKIPPED: " << destination.problem;
    fillSource(source.path());

    const ProcessResult run = runCli({"copy", "--yes", "--verify", source.path(), destination.mountPoint});
    EXPECT_EQ(run.status, 1) << run.out << run.err;
    EXPECT_NE(run.out.find("Failed  " + source.path() + "/system: the symbolic link could not be made here"),
              std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Failed  " + source.path() + "/docs/latest: the symbolic link"), std::string::npos);
    EXPECT_NE(run.out.find("Not kept  permissions could not be kept"), std::string::npos) << run.out;
    const std::string clone = onlyEntryStartingWith(destination.mountPoint, "VLclone");
    ASSERT_FALSE(clone.empty());
    const std::string copy = destination.mountPoint + "/" + clone;
    EXPECT_EQ(readFile(copy + "/docs/report.txt"), "report");
    EXPECT_EQ(readFile(copy + "/docs/data.bin"), readFile(source.path() + "/docs/data.bin"));
    EXPECT_EQ(run.out.find("Differs"), std::string::npos) << run.out;
}

}  // namespace
}  // namespace velmora::test
