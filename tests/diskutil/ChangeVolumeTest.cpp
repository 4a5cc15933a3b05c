// rename, reformat, eraseVolume and eject on loop volumes, checked with blkid and mountinfo.
#include "diskutil/DiskUtilTestSupport.h"
#include "support/LoopVolume.h"
#include "support/TestFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace velmora::test {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// The progress the application reads from a reformat or eraseVolume run.
void expectEraseProgress(const CommandResult& result, const std::string& kernelName, const std::string& name) {
    const std::vector<std::string> lines = linesOf(result.out);
    EXPECT_NE(std::find(lines.begin(), lines.end(), "Mounting disk"), lines.end()) << result.out;
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "Finished erase on " + kernelName + " " + name);
}

struct RenameCase {
    const char* mkfsType;
    const char* requestedName;
    const char* expectedLabel;
};

void PrintTo(const RenameCase& value, std::ostream* out) {
    *out << value.mkfsType << " renamed to \"" << value.requestedName << "\"";
}

class RenameVolume : public testing::TestWithParam<RenameCase> {};

TEST_P(RenameVolume, RelabelsAndMountsAgainUnderTheNewName) {
    LoopVolume volume;
    const std::string oldLabel = uniqueLabel("RO");
    std::string oldMount;
    if (std::string why = volume.formatAndMount(GetParam().mkfsType, oldLabel, oldMount); !why.empty()) GTEST_SKIP() << why;
    writeFile(oldMount + "/keep.txt", "still here");

    // The application names the volume by its VolumeUUID.
    const CommandResult result = runDiskUtil({"rename", blkidValue(volume.node(), "UUID"), GetParam().requestedName});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    const std::string label = GetParam().expectedLabel;
    EXPECT_EQ(result.out, "Volume on " + volume.kernelName() + " renamed to " + label + "\n");
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
    const std::string newMount = volume.folder() + "/" + label;
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{newMount});
    EXPECT_EQ(readFile(newMount + "/keep.txt"), "still here");
    EXPECT_FALSE(fs::exists(oldMount));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, RenameVolume,
                         testing::Values(RenameCase{"vfat", "photos 2024 backup", "PHOTOS 2024"},
                                         RenameCase{"exfat", "Photos", "Photos"},
                                         RenameCase{"ext4", "Photos Archive", "Photos Archive"}),
                         [](const auto& info) { return std::string(info.param.mkfsType); });

class ReformatVolume : public testing::TestWithParam<const char*> {};

TEST_P(ReformatVolume, EmptiesTheVolumeAndKeepsNameFileSystemAndMountPoint) {
    LoopVolume volume;
    const std::string label = uniqueLabel("RF");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount(GetParam(), label, mountPoint); !why.empty()) GTEST_SKIP() << why;
    fs::create_directory(mountPoint + "/folder");
    writeFile(mountPoint + "/folder/secret.txt", "secret");
    writeFile(mountPoint + "/top.txt", "top");
    const std::string typeBefore = blkidValue(volume.node(), "TYPE");
    const std::string versionBefore = blkidValue(volume.node(), "VERSION");

    const CommandResult result = runDiskUtil({"reformat", volume.node()});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    expectEraseProgress(result, volume.kernelName(), label);
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), typeBefore);
    EXPECT_EQ(blkidValue(volume.node(), "VERSION"), versionBefore);
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{mountPoint});
    EXPECT_FALSE(fs::exists(mountPoint + "/top.txt"));
    EXPECT_FALSE(fs::exists(mountPoint + "/folder"));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, ReformatVolume, testing::Values("vfat", "exfat", "ext4"),
                         [](const auto& info) { return std::string(info.param); });

struct EraseCase {
    const char* fromType;
    const char* format;
    const char* requestedName;
    const char* expectedLabel;
    const char* expectedType;  // blkid TYPE afterwards
};

void PrintTo(const EraseCase& value, std::ostream* out) {
    *out << value.fromType << " erased as \"" << value.format << "\" \"" << value.requestedName << "\"";
}

class EraseVolume : public testing::TestWithParam<EraseCase> {};

TEST_P(EraseVolume, CreatesTheFormatWithTheNameAndMountsItBesideTheOldOne) {
    const EraseCase& erase = GetParam();
    LoopVolume volume;
    const std::string oldLabel = uniqueLabel("EO");
    std::string oldMount;
    if (std::string why = volume.formatAndMount(erase.fromType, oldLabel, oldMount); !why.empty()) GTEST_SKIP() << why;
    writeFile(oldMount + "/old.txt", "old data");

    const CommandResult result = runDiskUtil({"eraseVolume", erase.format, erase.requestedName, volume.node()});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    expectEraseProgress(result, volume.kernelName(), erase.expectedLabel);
    EXPECT_EQ(linesOf(result.out).front(), "Started erase on " + volume.kernelName() + " " + oldLabel);
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), erase.expectedType);
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), erase.expectedLabel);
    const std::string newMount = volume.folder() + "/" + erase.expectedLabel;
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{newMount});
    EXPECT_FALSE(fs::exists(newMount + "/old.txt"));
    EXPECT_FALSE(fs::exists(oldMount));

    // What info reports afterwards is what the application asked for.
    const Dictionary info(runDiskUtil({"info", "-plist", volume.node()}).out);
    EXPECT_EQ(info.string("FilesystemName"), erase.format);
    EXPECT_EQ(info.string("VolumeName"), erase.expectedLabel);
    EXPECT_EQ(info.string("MountPoint"), newMount);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, EraseVolume,
    testing::Values(EraseCase{"ext4", "MS-DOS FAT32", "backup disk 2024", "BACKUP DISK", "vfat"},
                    EraseCase{"vfat", "ExFAT", "NEW", "NEW", "exfat"},
                    EraseCase{"exfat", "ext4", "Fresh Start", "Fresh Start", "ext4"}),
    [](const auto& info) { return std::string(info.param.expectedType); });

// An exFAT boot sector ends in the 0x55AA of a DOS partition table, so blkid also reports
// PTTYPE=dos for it; it is still one volume, never refused as a partitioned disk.
TEST(DiskUtilErase, ExFatIsAVolumeThoughBlkidAlsoSeesADosPartitionTable) {
    LoopVolume volume;
    const std::string label = uniqueLabel("XD");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount("exfat", label, mountPoint); !why.empty()) GTEST_SKIP() << why;
    ASSERT_EQ(blkidValue(volume.node(), "PTTYPE"), "dos");

    const Dictionary before(runDiskUtil({"info", "-plist", volume.node()}).out);
    EXPECT_EQ(before.string("Content"), "exfat");
    EXPECT_EQ(before.string("FilesystemName"), "ExFAT");
    EXPECT_EQ(before.string("VolumeName"), label);

    const CommandResult result = runDiskUtil({"eraseVolume", "ExFAT", "AGAIN", volume.node()});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "exfat");
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{volume.folder() + "/AGAIN"});
    EXPECT_EQ(Dictionary(runDiskUtil({"info", "-plist", volume.node()}).out).string("VolumeName"), "AGAIN");
}

TEST(DiskUtilErase, TheUserWhoOwnedTheVolumeOwnsItAfterAReformat) {
    LoopVolume volume;
    const std::string label = uniqueLabel("OW");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount("ext4", label, mountPoint); !why.empty()) GTEST_SKIP() << why;
    constexpr uid_t user = 4321;
    constexpr gid_t group = 4322;
    ASSERT_EQ(chown(mountPoint.c_str(), user, group), 0);

    const CommandResult result = runDiskUtil({"reformat", mountPoint});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    struct stat root;
    ASSERT_EQ(stat(mountPoint.c_str(), &root), 0);
    EXPECT_EQ(root.st_uid, user);
    EXPECT_EQ(root.st_gid, group);
}

// Removes a folder the tool created outside the test's own folder.
struct FolderCleanup {
    std::string path;
    ~FolderCleanup() {
        std::error_code error;
        if (path.empty()) return;
        fs::remove(path, error);
        fs::remove(fs::path(path).parent_path(), error);  // /media/<user>, when nothing else is in it
    }
};

TEST(DiskUtilErase, MountsAVolumeThatWasNotMountedUnderMedia) {
    FolderCleanup cleanup;  // declared first: runs after the volume's guard has unmounted
    LoopVolume volume;
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    const std::string label = uniqueLabel("UM");
    ASSERT_EQ(volume.format("ext4", label), "");

    const CommandResult result = runDiskUtil({"reformat", label});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    const std::vector<std::string> mountPoints = mountPointsOf(volume.node());
    ASSERT_EQ(mountPoints.size(), 1u);
    cleanup.path = mountPoints.front();
    const fs::path mountPoint = mountPoints.front();
    EXPECT_EQ(mountPoint.filename(), label);
    EXPECT_EQ(mountPoint.parent_path().parent_path(), "/media");
}

TEST(DiskUtilEject, UnmountsTheVolumeAndDetachesTheImage) {
    LoopVolume volume;
    const std::string label = uniqueLabel("EJ");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount("vfat", label, mountPoint); !why.empty()) GTEST_SKIP() << why;

    const CommandResult result = runDiskUtil({"eject", blkidValue(volume.node(), "UUID")});
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_EQ(result.out, "Disk " + volume.kernelName() + " ejected\n");
    EXPECT_FALSE(volume.attachedToImage());
    std::ifstream table("/proc/self/mountinfo");
    const std::string mounts(std::istreambuf_iterator<char>(table), {});
    EXPECT_EQ(mounts.find(" " + mountPoint + " "), std::string::npos);
    EXPECT_FALSE(fs::exists(mountPoint));
}

}  // namespace
}  // namespace velmora::test
