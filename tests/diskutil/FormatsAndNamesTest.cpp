// listFilesystems, and names longer than a file system holds: refused by the tool
// before anything changes, except on FAT, whose label is cut to 11 characters.
#include "diskutil/DiskUtilTestSupport.h"
#include "support/LoopVolume.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(ListFilesystems, ListsEachFormatWithWhetherItCanBeMadeHere) {
    const CommandResult result = runDiskUtil({"listFilesystems", "-plist"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    plist_t root = nullptr;
    plist_from_xml(result.out.data(), uint32_t(result.out.size()), &root);
    ASSERT_TRUE(root && plist_get_node_type(root) == PLIST_ARRAY) << result.out;
    std::map<std::string, bool> formattable;
    for (uint32_t i = 0; i < plist_array_get_size(root); ++i) {
        plist_t entry = plist_array_get_item(root, i);
        uint8_t value = 0;
        plist_get_bool_val(plist_dict_get_item(entry, "Formattable"), &value);
        formattable[stringOf(plist_dict_get_item(entry, "Personality"))] = value != 0;
    }
    plist_free(root);
    EXPECT_EQ(formattable.at("MS-DOS FAT32"), programInstalled("mkfs.vfat"));
    EXPECT_EQ(formattable.at("ExFAT"), programInstalled("mkfs.exfat"));
    EXPECT_EQ(formattable.at("ext4"), programInstalled("mkfs.ext4"));
    EXPECT_EQ(formattable.at("Journaled HFS+"), programInstalled("mkfs.hfsplus"));
}

TEST(NameLimits, TooLongNamesAreRefusedWithoutChangingTheVolume) {
    if (const std::string why = loopDevicesUnavailable(); !why.empty()) GTEST_SKIP() << "SKIPPED: " << why;
    struct Case {
        const char* type;
        std::string tooLong;
    };
    for (const Case& test : {Case{"ext4", std::string(17, 'x')}, Case{"exfat", std::string(16, 'x')}}) {
        SCOPED_TRACE(test.type);
        LoopVolume volume;
        const std::string label = uniqueLabel("NL").substr(0, 11);
        std::string mountPoint;
        if (std::string why = volume.formatAndMount(test.type, label, mountPoint); !why.empty()) GTEST_SKIP() << why;
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"rename", volume.node(), test.tooLong},
              std::vector<std::string>{"eraseVolume", test.type, test.tooLong, volume.node()}}) {
            const CommandResult result = runDiskUtil(command);
            EXPECT_EQ(result.exitCode, 1);
            EXPECT_NE(result.err.find("volume name holds at most"), std::string::npos) << result.err;
        }
        EXPECT_EQ(blkidValue(volume.node(), "LABEL"), label);
        EXPECT_EQ(mountPointsOf(volume.node()), std::vector<std::string>{mountPoint});
    }
}

}  // namespace
}  // namespace velmora::test
