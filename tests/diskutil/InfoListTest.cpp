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

class MountedVolumeInfo : public testing::TestWithParam<FileSystemCase> {};

TEST_P(MountedVolumeInfo, ReportsTheKeysTheApplicationReads) {
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
}

TEST_P(MountedVolumeInfo, FindsTheVolumeByKernelNameMountPointNameAndUuid) {
    LoopVolume volume;
    const std::string label = uniqueLabel("VT");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount(GetParam().mkfsType, label, mountPoint); !why.empty()) GTEST_SKIP() << why;

    const std::string uuid = blkidValue(volume.node(), "UUID");
    for (const std::string& target : {volume.kernelName(), mountPoint, label, uuid}) {
        const CommandResult result = runDiskUtil({"info", "-plist", target});
        EXPECT_EQ(result.exitCode, 0) << target << ": " << result.err;
        EXPECT_EQ(Dictionary(result.out).string("DeviceNode"), volume.node()) << target;
    }
}

TEST_P(MountedVolumeInfo, FreeSpaceShrinksByWhatIsWritten) {
    LoopVolume volume;
    const std::string label = uniqueLabel("VF");
    std::string mountPoint;
    if (std::string why = volume.formatAndMount(GetParam().mkfsType, label, mountPoint); !why.empty()) GTEST_SKIP() << why;

    const uint64_t before = freeSpace(volume.node());
    constexpr uint64_t written = 8 * 1024 * 1024;
    {
        std::ofstream file(mountPoint + "/filler.bin", std::ios::binary);
        const std::vector<char> block(written, 'x');
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    sync();
    const uint64_t after = freeSpace(volume.node());
    ASSERT_LT(after, before);
    EXPECT_GE(before - after, written);
    EXPECT_LE(before - after, written + 1024 * 1024);  // allocation overhead only
}

INSTANTIATE_TEST_SUITE_P(FileSystems, MountedVolumeInfo,
                         testing::Values(FileSystemCase{"vfat", "MS-DOS FAT32", "msdos"},
                                         FileSystemCase{"exfat", "ExFAT", "exfat"},
                                         FileSystemCase{"ext4", "ext4", "ext4"}),
                         [](const auto& info) { return std::string(info.param.mkfsType); });

TEST(DiskUtilList, ShowsMountedFat32AndExt4Volumes) {
    LoopVolume fat;
    LoopVolume ext;
    const std::string fatLabel = uniqueLabel("LF");
    const std::string extLabel = uniqueLabel("LE");
    std::string fatMount;
    std::string extMount;
    if (std::string why = fat.formatAndMount("vfat", fatLabel, fatMount); !why.empty()) GTEST_SKIP() << why;
    if (std::string why = ext.formatAndMount("ext4", extLabel, extMount); !why.empty()) GTEST_SKIP() << why;

    const CommandResult result = runDiskUtil({"list", "-plist"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Dictionary list(result.out);
    ASSERT_TRUE(list.valid()) << result.out;
    const std::vector<std::string> allDisks = stringsOf(list.node("AllDisks"));
    const std::vector<std::string> wholeDisks = stringsOf(list.node("WholeDisks"));
    const std::vector<std::string> volumeNames = stringsOf(list.node("VolumesFromDisks"));

    const std::pair<const LoopVolume*, std::pair<std::string, std::string>> expected[] = {
        {&fat, {fatLabel, fatMount}}, {&ext, {extLabel, extMount}}};
    for (const auto& [volume, labelAndMount] : expected) {
        const auto& [label, mountPoint] = labelAndMount;
        EXPECT_TRUE(contains(allDisks, volume->kernelName())) << volume->kernelName();
        EXPECT_TRUE(contains(wholeDisks, volume->kernelName())) << volume->kernelName();
        EXPECT_TRUE(contains(volumeNames, label)) << label;

        plist_t disks = list.node("AllDisksAndPartitions");
        plist_t entry = nullptr;
        for (uint32_t i = 0; disks && i < plist_array_get_size(disks); ++i) {
            plist_t disk = plist_array_get_item(disks, i);
            if (stringOf(plist_dict_get_item(disk, "DeviceIdentifier")) == volume->kernelName()) entry = disk;
        }
        ASSERT_NE(entry, nullptr) << volume->kernelName() << " missing from AllDisksAndPartitions";
        EXPECT_EQ(stringOf(plist_dict_get_item(entry, "VolumeName")), label);
        EXPECT_EQ(stringOf(plist_dict_get_item(entry, "MountPoint")), mountPoint);
        EXPECT_NE(plist_dict_get_item(entry, "Partitions"), nullptr);
    }
}

}  // namespace
}  // namespace velmora::test
