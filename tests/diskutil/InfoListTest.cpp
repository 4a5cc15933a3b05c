// info -plist and list -plist on mounted loop volumes.
#include "diskutil/DiskUtilTestSupport.h"
#include "support/LoopVolume.h"

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>
#include <vector>

namespace velmora::test {
namespace {

constexpr uint64_t imageSize = 64 * 1024 * 1024;

struct FileSystemCase {
    const char* mkfsType;
    const char* filesystemName;  // FilesystemName as the application reads it
    const char* filesystemType;
};

void PrintTo(const FileSystemCase& value, std::ostream* out) {
    *out << value.mkfsType;
}

std::string sysfsFlag(const std::string& kernelName, const std::string& file) {
    std::ifstream value("/sys/block/" + kernelName + "/" + file);
    std::string text;
    std::getline(value, text);
    return text;
}

bool contains(const std::vector<std::string>& list, const std::string& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

uint64_t freeSpace(const std::string& target) {
    const CommandResult result = runDiskUtil({"info", "-plist", target});
    return Dictionary(result.out).integer("FreeSpace");
}

// One mounted volume of each file system: info reports the keys the application reads,
// finds the volume by each name the application may pass, follows its free space, and
// list shows it.
class MountedVolumeInfo : public testing::TestWithParam<FileSystemCase> {};

TEST_P(MountedVolumeInfo, InfoAndListReportTheKeysTheApplicationReads) {
    LoopVolume volume;
    const std::string label = uniqueLabel("VI");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount(GetParam().mkfsType, label, mountPoint); !why.empty()) GTEST_SKIP() << why;

    const CommandResult result = runDiskUtil({"info", "-plist", volume.node()});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Dictionary info(result.out);
    ASSERT_TRUE(info.valid()) << result.out;
    EXPECT_EQ(info.string("VolumeName"), label);
    EXPECT_EQ(info.string("DeviceNode"), volume.node());
    EXPECT_EQ(info.string("DeviceIdentifier"), volume.kernelName());
    EXPECT_EQ(info.string("ParentWholeDisk"), volume.kernelName());
    EXPECT_EQ(info.string("MountPoint"), mountPoint);
    EXPECT_EQ(info.string("FilesystemName"), GetParam().filesystemName);
    EXPECT_EQ(info.string("FilesystemType"), GetParam().filesystemType);
    EXPECT_EQ(info.string("VolumeUUID"), blkidValue(volume.node(), "UUID"));
    EXPECT_EQ(info.integer("TotalSize"), imageSize);
    EXPECT_GT(info.integer("FreeSpace"), imageSize / 2);
    EXPECT_LT(info.integer("FreeSpace"), imageSize);
    EXPECT_TRUE(info.boolean("Ejectable"));
    EXPECT_EQ(info.string("BusProtocol"), "Disk Image");
    EXPECT_EQ(info.boolean("SolidState"), sysfsFlag(volume.kernelName(), "queue/rotational") == "0");
    EXPECT_EQ(info.boolean("Removable"), sysfsFlag(volume.kernelName(), "removable") == "1");

    for (const std::string& target : {volume.kernelName(), mountPoint, label, info.string("VolumeUUID")}) {
        const CommandResult found = runDiskUtil({"info", "-plist", target});
        EXPECT_EQ(found.exitCode, 0) << target << ": " << found.err;
        EXPECT_EQ(Dictionary(found.out).string("DeviceNode"), volume.node()) << target;
    }

    constexpr uint64_t written = 8 * 1024 * 1024;
    {
        std::ofstream file(mountPoint + "/filler.bin", std::ios::binary);
        const std::vector<char> block(written, 'x');
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    sync();
    const uint64_t after = freeSpace(volume.node());
    ASSERT_LT(after, info.integer("FreeSpace"));
    EXPECT_GE(info.integer("FreeSpace") - after, written);
    EXPECT_LE(info.integer("FreeSpace") - after, written + 1024 * 1024);  // allocation overhead only

    const CommandResult listed = runDiskUtil({"list", "-plist"});
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    const Dictionary list(listed.out);
    ASSERT_TRUE(list.valid()) << listed.out;
    EXPECT_TRUE(contains(stringsOf(list.node("AllDisks")), volume.kernelName()));
    EXPECT_TRUE(contains(stringsOf(list.node("WholeDisks")), volume.kernelName()));
    EXPECT_TRUE(contains(stringsOf(list.node("VolumesFromDisks")), label));
    plist_t entry = nullptr;
    plist_t disks = list.node("AllDisksAndPartitions");
    for (uint32_t i = 0; disks && i < plist_array_get_size(disks); ++i) {
        plist_t disk = plist_array_get_item(disks, i);
        if (stringOf(plist_dict_get_item(disk, "DeviceIdentifier")) == volume.kernelName()) entry = disk;
    }
    ASSERT_NE(entry, nullptr) << volume.kernelName() << " missing from AllDisksAndPartitions";
    EXPECT_EQ(stringOf(plist_dict_get_item(entry, "VolumeName")), label);
    EXPECT_EQ(stringOf(plist_dict_get_item(entry, "MountPoint")), mountPoint);
    EXPECT_NE(plist_dict_get_item(entry, "Partitions"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(FileSystems, MountedVolumeInfo,
                         testing::Values(FileSystemCase{"vfat", "MS-DOS FAT32", "msdos"},
                                         FileSystemCase{"exfat", "ExFAT", "exfat"},
                                         FileSystemCase{"ext4", "ext4", "ext4"}),
                         [](const auto& info) { return std::string(info.param.mkfsType); });

struct LabelCase {
    const char* mkfsType;
    const char* label;
    const char* name;  // for the test's name
};

void PrintTo(const LabelCase& value, std::ostream* out) {
    *out << value.mkfsType << " " << value.name;
}

// Labels are the volume owner's bytes: accents, quotes, shell characters, blanks, a line
// break and a backslash that looks like an escape are reported exactly, also after a
// reformat, which writes the label it read back onto the fresh file system.
class ExactLabel : public testing::TestWithParam<LabelCase> {};

TEST_P(ExactLabel, InfoListAndReformatKeepTheLabelByteForByte) {
    LoopVolume volume;
    if (!volume.setupProblem().empty()) GTEST_SKIP() << volume.setupProblem();
    const std::string label = GetParam().label;
    if (std::string why = volume.format(GetParam().mkfsType, label); !why.empty()) GTEST_SKIP() << why;
    // Mounted under a folder of another name, so the name can only come from the label.
    const std::string mountPoint = volume.mount(GetParam().mkfsType, "volume");
    if (mountPoint.empty()) GTEST_SKIP() << "no kernel or FUSE driver mounts " << GetParam().mkfsType << " here";
    ASSERT_EQ(blkidValue(volume.node(), "LABEL"), label);

    const CommandResult info = runDiskUtil({"info", "-plist", volume.node()});
    ASSERT_EQ(info.exitCode, 0) << info.err;
    EXPECT_EQ(Dictionary(info.out).string("VolumeName"), label);

    const CommandResult listed = runDiskUtil({"list", "-plist"});
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    const Dictionary list(listed.out);
    EXPECT_TRUE(contains(stringsOf(list.node("VolumesFromDisks")), label));

    const CommandResult reformat = runDiskUtil({"reformat", volume.node()});
    ASSERT_EQ(reformat.exitCode, 0) << reformat.out << reformat.err;
    EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
    EXPECT_EQ(Dictionary(runDiskUtil({"info", "-plist", volume.node()}).out).string("VolumeName"), label);
    // Mounted again beside the old folder, under the volume's name.
    EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{volume.folder() + "/" + label});
}

// mkfs.vfat takes only the blank of these (its labels are upper-case OEM characters).
INSTANTIATE_TEST_SUITE_P(Labels, ExactLabel,
                         testing::Values(LabelCase{"ext4", "Caf\xc3\xa9", "accent"},
                                         LabelCase{"ext4", "x\"y", "quote"},
                                         LabelCase{"ext4", "a;b", "semicolon"},
                                         LabelCase{"ext4", "MY DISK", "blank"},
                                         LabelCase{"ext4", "two\nlines", "newline"},
                                         LabelCase{"ext4", "a\\x41", "backslash"},
                                         LabelCase{"exfat", "Caf\xc3\xa9", "accent"},
                                         LabelCase{"exfat", "x\"y", "quote"},
                                         LabelCase{"exfat", "a;b", "semicolon"},
                                         LabelCase{"exfat", "MY DISK", "blank"},
                                         LabelCase{"vfat", "MY DISK", "blank"}),
                         [](const auto& info) { return std::string(info.param.mkfsType) + "_" + info.param.name; });

}  // namespace
}  // namespace velmora::test
