// Failures: the error dictionary {Error, ErrorMessage, ExitCode} and a non-zero exit,
// and a volume left as it was when an erase cannot go ahead.
#include "diskutil/DiskUtilTestSupport.h"
#include "support/LoopVolume.h"

#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {
namespace {

void expectErrorDictionary(const CommandResult& result, const std::string& messagePart) {
    const std::string message = errorMessageOf(result);
    EXPECT_NE(message.find(messagePart), std::string::npos) << message;
}

TEST(DiskUtilErrors, BadCommandLinesAndUnknownTargets) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "Usage"},
        {{"frobnicate"}, "Unknown verb: frobnicate"},
        {{"info", "-plist"}, "Usage"},
        {{"info", "sda1"}, "Usage"},
        {{"list"}, "Usage"},
        {{"rename", "only-a-target"}, "Usage"},
        {{"reformat"}, "Usage"},
        {{"info", "-plist", "no-such-volume-velmora"}, "Could not find disk: no-such-volume-velmora"},
        {{"info", "-plist", "/dev/velmora-no-such-node"}, "Could not find disk"},
        {{"eject", "/velmora/no/such/mount/point"}, "Could not find disk"},
        {{"eraseVolume", "FAT99", "NEW", "/dev/velmora-no-such-node"}, "not appear to be a valid file system format"},
    };
    for (const auto& [args, messagePart] : cases) {
        SCOPED_TRACE(testing::PrintToString(args));
        expectErrorDictionary(runDiskUtil(args), messagePart);
    }
}

TEST(DiskUtilErrors, EraseOfABusyVolumeFailsAndLeavesItMounted) {
    LoopVolume volume;
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    const std::string label = uniqueLabel("BZ");
    ASSERT_EQ(volume.format("ext4", label), "");
    const std::string mountPoint = volume.mount("ext4", label);
    ASSERT_FALSE(mountPoint.empty());
    std::ofstream(mountPoint + "/open.txt") << "in use";
    std::ifstream openFile(mountPoint + "/open.txt");  // keeps the volume busy

    expectErrorDictionary(runDiskUtil({"eraseVolume", "MS-DOS FAT32", "NEW", volume.node()}), "Could not unmount");
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "ext4");
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{mountPoint});
}

// An MBR with one Linux partition, as a partitioning tool writes it.
bool writePartitionTable(const std::string& node) {
    unsigned char sector[512] = {};
    unsigned char* entry = sector + 446;
    entry[4] = 0x83;
    const uint32_t start = 2048;
    const uint32_t count = 65536;
    std::memcpy(entry + 8, &start, 4);  // little-endian on the machines this runs on
    std::memcpy(entry + 12, &count, 4);
    sector[510] = 0x55;
    sector[511] = 0xAA;
    const int fd = open(node.c_str(), O_WRONLY | O_CLOEXEC);
    const bool written = fd >= 0 && pwrite(fd, sector, sizeof sector, 0) == sizeof sector && fsync(fd) == 0;
    if (fd >= 0) close(fd);
    return written;
}

TEST(DiskUtilErrors, VolumesTheToolCannotRecreateAreRefusedUntouched) {
    LoopVolume volume;
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    expectErrorDictionary(runDiskUtil({"reformat", volume.node()}), "holds no file system");

    ASSERT_TRUE(writePartitionTable(volume.node()));
    expectErrorDictionary(runDiskUtil({"eraseVolume", "ExFAT", "NEW", volume.node()}), "partitioned disk");
    EXPECT_EQ(blkidValue(volume.node(), "PTTYPE"), "dos");

    const std::string label = uniqueLabel("HF");
    ASSERT_EQ(volume.format("ext4", label), "");
    const std::string mountPoint = volume.mount("ext4", label);
    ASSERT_FALSE(mountPoint.empty());
    if (programInstalled("mkfs.hfsplus")) GTEST_SKIP() << "mkfs.hfsplus is installed, so HFS+ is not refused here";
    expectErrorDictionary(runDiskUtil({"eraseVolume", "Journaled HFS+", "MAC", volume.node()}), "not available");
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "ext4");
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{mountPoint});
}

}  // namespace
}  // namespace velmora::test
