// The size texts and parsers of both utility families, with their odd factors.
#include "engine/erase/PublicUtilities.h"
#include "engine/volumes/CommUti.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/VolumeScanner.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct SizeCase {
    qint64 bytes;
    const char* text;
};

void expectTexts(QString (*format)(qint64), std::initializer_list<SizeCase> cases) {
    for (const SizeCase& c : cases) EXPECT_EQ(format(c.bytes).toStdString(), c.text) << "bytes " << c.bytes;
}

TEST(SizeText, ByteToSizeWithByteSwitchesUnitAtEachPowerOfThousand) {
    expectTexts(&VolumeScanner::byteToSizeWithByte, {{0, "0 byte"},
                                                      {999, "999 byte"},
                                                      {1000, "1.00 KB"},
                                                      {999999, "1000.00 KB"},
                                                      {1000000, "1.00 MB"},
                                                      {1500000000, "1.50 GB"},
                                                      {999999999999, "1000.00 GB"},
                                                      {1000000000000, "1.00 TB"},
                                                      {2500000000000, "2.50 TB"}});
}

TEST(SizeText, GeneralConvertVolSpaceCallsTerabytesGigabytesAndNegativesGigabytes) {
    expectTexts(&PublicUtilities::convertVolSpace, {{0, "0 byte"},
                                                     {999, "999 byte"},
                                                     {1000, "1.00 KB"},
                                                     {2500000, "2.50 MB"},
                                                     {3000000000, "3.00 GB"},
                                                     {2000000000000, "2.00 GB"},
                                                     {-5000000000, "-5.00 GB"}});
}

TEST(SizeText, CommonConvertVolSpaceShowsSmallSizesInKilobytes) {
    expectTexts(&CommUti::convertVolSpace, {{0, "0.00 KB"},
                                             {1, "0.00 KB"},
                                             {999, "1.00 KB"},
                                             {999999, "1000.00 KB"},
                                             {1000000, "1.00 MB"},
                                             {45000000000, "45.00 GB"},
                                             {2000000000000, "2.00 GB"},
                                             {-1, "-0.00 GB"}});
}

TEST(SizeText, LonglongTextsUseTerabytes) {
    for (auto format : {&CommUti::longlongDiskSize, &CommUti::longlongConvertVolSpace}) {
        expectTexts(format, {{999, "999 byte"},
                             {1000, "1.00 KB"},
                             {1234567, "1.23 MB"},
                             {999999999999, "1000.00 GB"},
                             {1000000000000, "1.00 TB"}});
    }
}

TEST(SizeText, GeneralParserDropsTwoCharactersAndUsesSinglePrecisionTerabytes) {
    EXPECT_EQ(PublicUtilities::volSpaceFromString("2TB"), 1999999991808ull);
    EXPECT_EQ(PublicUtilities::volSpaceFromString("1.5 GB"), 1500000000ull);  // the blank is read as part of the number
    EXPECT_EQ(PublicUtilities::volSpaceFromString("250MB"), 250000000ull);
    EXPECT_EQ(PublicUtilities::volSpaceFromString("12KB"), 12000ull);
    EXPECT_EQ(PublicUtilities::volSpaceFromString("-3KB"), 0ull);  // KB counts only positive numbers
    EXPECT_EQ(PublicUtilities::volSpaceFromString("999 byte"), 0ull);
    EXPECT_EQ(PublicUtilities::volSpaceFromString(""), 0ull);
    EXPECT_EQ(PublicUtilities::volSpaceFromString(QString()), 0ull);
}

TEST(SizeText, CommonParserDropsSpaceAndUnit) {
    EXPECT_EQ(CommUti::volSpaceFromString("1.5 GB"), 1500000000ull);
    EXPECT_EQ(CommUti::volSpaceFromString("2 TB"), 1999999991808ull);
    EXPECT_EQ(CommUti::volSpaceFromString("0.25 MB"), 250000ull);
    EXPECT_EQ(CommUti::volSpaceFromString("0.00 KB"), 0ull);
    EXPECT_EQ(CommUti::volSpaceFromString("2TB"), 0ull);  // "2TB" minus three characters leaves nothing
    EXPECT_EQ(CommUti::volSpaceFromString("7 PB"), 0ull);
    // A size text formatted by the same family reads back to about its value.
    EXPECT_EQ(CommUti::volSpaceFromString(CommUti::convertVolSpace(45000000000)), 45000000000ull);
}

TEST(SizeText, IsMoreThan2GBIsReallyTwoHundredMegabytes) {
    EXPECT_FALSE(PublicUtilities::isMoreThan2GB(0));
    EXPECT_FALSE(PublicUtilities::isMoreThan2GB(999999));
    EXPECT_FALSE(PublicUtilities::isMoreThan2GB(200999999));
    EXPECT_TRUE(PublicUtilities::isMoreThan2GB(201000000));
    EXPECT_TRUE(PublicUtilities::isMoreThan2GB(5000000000));
}

TEST(SizeText, FileSystemTypeForInt) {
    const char* names[] = {"FAT12", "FAT16", "FAT32", "NTFS", "EXT2", "EXT3", "RAW", "EXFAT", "HFS+", "Unknown"};
    for (int code = 0; code < 10; ++code) EXPECT_EQ(PublicUtilities::fileSystemTypeForInt(code, false).toStdString(), names[code]);
    EXPECT_EQ(PublicUtilities::fileSystemTypeForInt(10, false), "Disk");
    EXPECT_EQ(PublicUtilities::fileSystemTypeForInt(-1, false), "Disk");
    EXPECT_EQ(PublicUtilities::fileSystemTypeForInt(2, true), "Disk Image");
}

TEST(SizeText, ElapsedTimeText) {
    EXPECT_EQ(FreeSpaceWipe::elapsedTimeText(0), "00:00:00");
    EXPECT_EQ(FreeSpaceWipe::elapsedTimeText(9), "0:00:09");
    EXPECT_EQ(FreeSpaceWipe::elapsedTimeText(70), "0:01:10");
    EXPECT_EQ(FreeSpaceWipe::elapsedTimeText(3600 * 27 + 60 * 9 + 10), "27:09:10");
}

}  // namespace
}  // namespace velmora
