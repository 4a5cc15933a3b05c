// The tool's mountinfo parser on recorded text: no root needed.
#include "diskutil/MountTable.h"

#include <gtest/gtest.h>

using velmora::diskutil::parseMountTable;

TEST(MountTable, FieldsAreSplitOnlyAtSpaces) {
    // Carriage returns, vertical tabs and form feeds are not escaped by the kernel: a
    // label holding one names a mount point that must be read whole, not split apart.
    const auto table = parseMountTable(
        "40 22 8:17 / /media/u/A\vB\rC\fD rw,nosuid shared:30 master:2 - vfat /dev/sdb1 rw,fmask=0022\n"
        "41 22 7:1 /sub\\040dir /mnt/x\\134y\\011z rw - ext4 /dev/loop1 rw\n");
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(table[0].mountPoint, "/media/u/A\vB\rC\fD");
    EXPECT_EQ(table[0].fsType, "vfat");
    EXPECT_EQ(table[0].source, "/dev/sdb1");
    EXPECT_EQ(table[1].majorMinor, "7:1");
    EXPECT_EQ(table[1].root, "/sub dir");
    EXPECT_EQ(table[1].mountPoint, "/mnt/x\\y\tz");
}

TEST(MountTable, LinesWithoutTypeAndSourceAreSkipped) {
    const auto table = parseMountTable("garbage\n40 22 8:17 / /m rw shared:1 -\n40 22 8:17 / /m rw - ext4 /dev/sda1\n");
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(table[0].source, "/dev/sda1");
}
