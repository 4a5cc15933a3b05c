// The system's own devices are never changed: the guard classifies the real "/" device
// (read-only: nothing is run against it), and the tool refuses an active swap area, a
// volume holding a swap file and a device with a holder on real loop devices, leaving
// them as they were. Queries read the label and UUID from the device itself, also for
// a user who is not root, right after a relabel.
#include "diskutil/BlockDevice.h"
#include "diskutil/DiskUtilTestSupport.h"
#include "diskutil/FileSystemProbe.h"
#include "diskutil/MountTable.h"
#include "diskutil/SystemDevices.h"
#include "support/ChildProcess.h"
#include "support/LoopVolume.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace velmora::test {
namespace {

using diskutil::BlockDevice;

std::string majorMinorOf(dev_t device) {
    return std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

std::optional<BlockDevice> blockDeviceNumbered(const std::string& majorMinor) {
    std::error_code error;
    const auto link = std::filesystem::read_symlink("/sys/dev/block/" + majorMinor, error);
    if (error) return std::nullopt;
    return diskutil::readBlockDevice(link.filename().string());
}

// Every changing command on the device is refused with the reason, before it acts.
void expectEveryChangeRefused(const std::string& node, const std::string& reasonPart) {
    const std::vector<std::vector<std::string>> commands = {
        {"reformat", node}, {"eraseVolume", "ExFAT", "NEW", node}, {"eraseVolume", "ext4", "NEW", node},
        {"rename", node, "NEW"}, {"eject", node},
    };
    for (const std::vector<std::string>& command : commands) {
        SCOPED_TRACE(command.front());
        const std::string message = errorMessageOf(runDiskUtil(command));
        EXPECT_NE(message.find("Refusing to change " + node), std::string::npos) << message;
        EXPECT_NE(message.find(reasonPart), std::string::npos) << message;
    }
}

// swapon for the lifetime of the object; swapoff when it goes, also after a failure.
class ActiveSwap {
public:
    explicit ActiveSwap(const std::string& path) : m_path(path) {
        const ProcessResult made = runProcess({programPath("mkswap"), path});
        const ProcessResult on = made.status == 0 ? runProcess({programPath("swapon"), path}) : made;
        if (on.status != 0) m_problem = "cannot activate a swap area on " + path + ": " + on.err;
    }
    ~ActiveSwap() {
        if (m_problem.empty()) runProcess({programPath("swapoff"), m_path});
    }
    const std::string& problem() const { return m_problem; }

private:
    std::string m_path;
    std::string m_problem;
};

// A device-mapper device over a loop device, which makes it the loop's holder; removed
// when the object goes.
class LinearMapping {
public:
    LinearMapping(const std::string& name, const std::string& node, uint64_t sectors) : m_name(name) {
        const std::string table = "0 " + std::to_string(sectors) + " linear " + node + " 0";
        const ProcessResult made = runProcess({programPath("dmsetup"), "create", name, "--noudevsync", "--table", table});
        if (made.status != 0) m_problem = "device-mapper is not usable here (dmsetup create: " + made.err + ")";
    }
    ~LinearMapping() {
        if (m_problem.empty()) runProcess({programPath("dmsetup"), "remove", "--noudevsync", m_name});
    }
    const std::string& problem() const { return m_problem; }

private:
    std::string m_name;
    std::string m_problem;
};

// Hands a device node to another user for the lifetime of the object, then back to root.
class NodeOwner {
public:
    NodeOwner(const std::string& node, uid_t uid, gid_t gid) : m_node(node) {
        m_changed = chown(node.c_str(), uid, gid) == 0;
    }
    ~NodeOwner() {
        if (m_changed) chown(m_node.c_str(), 0, 0);
    }
    bool changed() const { return m_changed; }

private:
    std::string m_node;
    bool m_changed = false;
};

}  // namespace

TEST(SystemDevices, TheRealRootDeviceAndItsDiskAreProtected) {
    const std::vector<diskutil::MountEntry> table = diskutil::readMountTable();
    const std::vector<diskutil::SystemUse> uses = diskutil::systemMountUses(table);
    std::optional<BlockDevice> root;
    for (const diskutil::SystemUse& use : uses) {
        if (use.use == "holds /") root = blockDeviceNumbered(use.majorMinor);
    }
    if (!root) GTEST_SKIP() << "SKIPPED: \"/\" is not on a block device here (an overlay or network root)";
    EXPECT_EQ(diskutil::protectionReason(*root, uses), "it holds /");
    const std::optional<BlockDevice> disk = diskutil::readBlockDevice(root->wholeDisk);
    ASSERT_TRUE(disk);
    EXPECT_FALSE(diskutil::protectionReason(*disk, uses).empty());
}

TEST(SystemDevices, SwapFilesAreFoundThroughTheirEscapedPath) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / ("velmora-swaps-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const std::filesystem::path file = folder / "swap\tfile one";
    { std::ofstream(file) << "x"; }
    struct stat info;
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    const std::string text = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n" + folder.string()
        + "/swap\\011file\\040one                  file\t\t1024\t\t0\t\t-2\n/velmora/no/such/swap file 1 0 -3\n";
    const std::vector<diskutil::SystemUse> uses = diskutil::swapUses(text, diskutil::readMountTable());
    std::filesystem::remove_all(folder);
    if (major(info.st_dev) == 0) GTEST_SKIP() << "SKIPPED: the temporary folder is not on a block device here";
    ASSERT_EQ(uses.size(), 1u);
    EXPECT_EQ(uses[0].majorMinor, majorMinorOf(info.st_dev));
    EXPECT_EQ(uses[0].use, "holds the active swap file " + file.string());
}

TEST(SystemDevices, AnActiveSwapAreaIsRefusedAndKept) {
    LoopVolume volume(16);
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    ActiveSwap swap(volume.node());
    if (!swap.problem().empty()) GTEST_SKIP() << "SKIPPED: " << swap.problem();

    expectEveryChangeRefused(volume.node(), "is an active swap area");
    EXPECT_EQ(blkidValue(volume.node(), "TYPE"), "swap");
    // An ordinary volume right beside it is not protected.
    const std::optional<BlockDevice> device = diskutil::readBlockDevice(volume.kernelName());
    ASSERT_TRUE(device);
    LoopVolume other(16);
    ASSERT_EQ(other.setupProblem(), "");
    const std::optional<BlockDevice> otherDevice = diskutil::readBlockDevice(other.kernelName());
    ASSERT_TRUE(otherDevice);
    const std::vector<diskutil::MountEntry> table = diskutil::readMountTable();
    std::vector<diskutil::SystemUse> uses = diskutil::systemMountUses(table);
    std::ifstream swaps("/proc/swaps");
    const std::string swapText((std::istreambuf_iterator<char>(swaps)), std::istreambuf_iterator<char>());
    for (const diskutil::SystemUse& use : diskutil::swapUses(swapText, table)) uses.push_back(use);
    EXPECT_EQ(diskutil::protectionReason(*device, uses), "it is an active swap area");
    EXPECT_EQ(diskutil::protectionReason(*otherDevice, uses), "");
}

TEST(SystemDevices, AVolumeHoldingAnActiveSwapFileIsRefusedAndKept) {
    LoopVolume volume;
    std::string mountPoint;
    const std::string label = uniqueLabel("SW");
    if (std::string why = volume.formatAndMount("ext4", label, mountPoint); !why.empty()) GTEST_SKIP() << why;
    const std::string swapFile = mountPoint + "/swap file";
    ASSERT_EQ(runProcess({programPath("fallocate"), "-l", "8M", swapFile}).status, 0);
    ASSERT_EQ(chmod(swapFile.c_str(), 0600), 0);
    ActiveSwap swap(swapFile);
    if (!swap.problem().empty()) GTEST_SKIP() << "SKIPPED: " << swap.problem();

    expectEveryChangeRefused(volume.node(), "holds the active swap file " + swapFile);
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{mountPoint});
    EXPECT_TRUE(std::filesystem::exists(swapFile));
}

TEST(SystemDevices, ADeviceWithAHolderIsRefusedAndKept) {
    LoopVolume volume(16);
    const std::string label = uniqueLabel("DM");
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    ASSERT_EQ(volume.format("ext4", label), "");
    LinearMapping mapping("velmora-holder-" + std::to_string(getpid()), volume.node(), 16 * 2048);
    if (!mapping.problem().empty()) GTEST_SKIP() << "SKIPPED: " << mapping.problem();

    expectEveryChangeRefused(volume.node(), "is in use by dm-");
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
}

// The label and UUID come from the superblock: right after a relabel, for root and for
// a user who may read the device (the tool as nobody); never from blkid's cache.
TEST(VolumeQueries, ShowTheNewLabelAtOnceAlsoWithoutRoot) {
    LoopVolume volume(16);
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    const std::string oldLabel = uniqueLabel("OL");
    ASSERT_EQ(volume.format("ext4", oldLabel), "");
    const std::string uuid = blkidValue(volume.node(), "UUID");
    const std::string newLabel = uniqueLabel("NL");
    ASSERT_EQ(runDiskUtil({"rename", volume.node(), newLabel}).exitCode, 0);
    const auto query = [&](bool unprivileged) {
        const std::string tool = std::string(std::getenv("VELMORA_BIN_DIR")) + "/velmora-diskutil";
        ProcessOptions options;
        options.unprivileged = unprivileged;
        const ProcessResult result = runProcess({tool, "info", "-plist", volume.node()}, options);
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        Dictionary info(result.out);
        EXPECT_TRUE(info.valid()) << result.out;
        return std::make_pair(info.string("VolumeName"), info.string("VolumeUUID"));
    };
    EXPECT_EQ(query(false), std::make_pair(newLabel, uuid));
    const std::string thirdLabel = uniqueLabel("TL");
    {
        // A user who may read the device, as a desktop grants the user at the seat.
        NodeOwner owner(volume.node(), unprivilegedUid(), unprivilegedGid());
        ASSERT_TRUE(owner.changed());
        EXPECT_EQ(query(true), std::make_pair(newLabel, uuid));
        ASSERT_EQ(runCommand({"e2label", volume.node(), thirdLabel}).exitCode, 0);
        EXPECT_EQ(query(true), std::make_pair(thirdLabel, uuid));
    }
    // A user who may not read it gets no label (or udev's current one), never what
    // blkid's cache kept from an earlier probe.
    const auto [name, shownUuid] = query(true);
    EXPECT_TRUE(name.empty() || name == thirdLabel) << name;
    EXPECT_TRUE(shownUuid.empty() || shownUuid == uuid) << shownUuid;
}

TEST(VolumeQueries, UdevRecordsGiveTypeLabelAndUuid) {
    const diskutil::FileSystemProbe probe = diskutil::parseUdevProperties(
        "S:disk/by-uuid/1234-ABCD\nI:123\nE:ID_FS_LABEL=MY_DISK\nE:ID_FS_LABEL_ENC=MY\\x20DISK\\x3btouch\\x20x\\xzz\n"
        "E:ID_FS_UUID=1234-ABCD\nE:ID_FS_VERSION=FAT32\nE:ID_FS_TYPE=vfat\nG:systemd\n");
    EXPECT_EQ(probe.type, "vfat");
    EXPECT_EQ(probe.version, "FAT32");
    EXPECT_EQ(probe.label, "MY DISK;touch x\\xzz");
    EXPECT_EQ(probe.uuid, "1234-ABCD");
    EXPECT_TRUE(probe.partitionTable.empty());
    EXPECT_EQ(diskutil::parseUdevProperties("E:ID_PART_TABLE_TYPE=gpt\n").partitionTable, "gpt");
}

}  // namespace velmora::test
