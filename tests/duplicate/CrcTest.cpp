#include "support/DuplicateTestTree.h"
#include "engine/duplicate/algorithm.h"
#include "engine/duplicate/crc.h"

#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

// The definition itself: polynomial division, most significant bit first,
// over bit-reversed input bytes, register all ones, result bit-reversed.
uint64_t bitwiseCrc64(const QByteArray& data) {
    auto reflect = [](uint64_t value, int bits) {
        uint64_t result = 0;
        for (int i = 0; i < bits; ++i)
            if (value & (uint64_t{1} << i)) result |= uint64_t{1} << (bits - 1 - i);
        return result;
    };
    uint64_t reg = ~uint64_t{0};
    for (char byte : data) {
        reg ^= reflect(uint8_t(byte), 8) << 56;
        for (int bit = 0; bit < 8; ++bit)
            reg = (reg >> 63) ? (reg << 1) ^ 0xAD93D23594C935A9 : reg << 1;
    }
    return reflect(reg, 64);
}

TEST(Crc64, MatchesTheBitwiseDefinition) {
    const QByteArray check = "123456789";
    EXPECT_EQ(bitwiseCrc64(check), 0xCAA717168609F281u);  // also ~crc64_jones_refl(0, ...) of ISA-L
    EXPECT_EQ(crc::crc64(check.constData(), 9), 0xCAA717168609F281u);
    for (int size : {1, 7, 8, 255, 256, 257, 1000, 3000}) {
        const QByteArray data = test::randomBytes(size, unsigned(size));
        EXPECT_EQ(crc::crc64(data.constData(), uint32_t(size)), bitwiseCrc64(data)) << size;
    }
    EXPECT_EQ(crc::crc64(nullptr, 10), 0u);
    EXPECT_EQ(crc::crc64(check.constData(), 0), crc::kInitial);
    EXPECT_EQ(crc::crc64Buffer(check.constData(), 0, false, 1234), 1234u);
}

TEST(Crc64, ChainedEqualsOneShot) {
    const QByteArray data = test::randomBytes(100000, 7);
    const uint64_t oneShot = crc::crc64(data.constData(), uint32_t(data.size()));
    std::mt19937 generator(3);
    for (int round = 0; round < 50; ++round) {
        uint64_t chained = 0;
        qsizetype offset = 0;
        bool head = true;
        while (offset < data.size()) {
            const qsizetype piece = qMin<qsizetype>(generator() % 5000, data.size() - offset);
            chained = crc::crc64Buffer(data.constData() + offset, uint32_t(piece), head, chained);
            head = false;
            offset += piece;
        }
        ASSERT_EQ(chained, oneShot) << "round " << round;
    }
}

TEST(Crc64, CarrylessMultiplyEqualsTableForEveryLength) {
    if (!crc::hasCarrylessMultiply()) GTEST_SKIP() << "no carry-less multiply on this processor";
    const QByteArray data = test::randomBytes(4096 + 32, 11);
    std::mt19937_64 generator(5);
    for (size_t length = 0; length <= 4096; ++length) {
        const uint64_t start = generator();
        const char* p = data.constData() + length % 32;  // every alignment
        const uint64_t table = crc::updateWithTable(start, p, length);
        ASSERT_EQ(crc::updateWithCarrylessMultiply(start, p, length), table) << "length " << length;
        ASSERT_EQ(crc::updateWithWideCarrylessMultiply(start, p, length), table) << "256-bit, length " << length;
    }
}

// A sparse file of 2.5 GiB is read one GiB per descriptor; the fingerprint
// (fast kernel) must equal the table kernel run over the same bytes.
TEST(Crc64, WholeFileAcrossDescriptorReopens) {
    test::TestTree tree;
    const QString path = tree.path("sparse.bin");
    const quint64 size = 5 * (quint64(1) << 29);
    const QByteArray marker = test::randomBytes(8192, 99);
    const quint64 markerOffsets[] = {0, (quint64(1) << 30) - 4096, (quint64(2) << 30) - 5, size - 8192};
    {
        const int fd = open(QFile::encodeName(path).constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
        ASSERT_GE(fd, 0);
        ASSERT_EQ(ftruncate(fd, off_t(size)), 0);
        for (quint64 offset : markerOffsets)
            ASSERT_EQ(pwrite(fd, marker.constData(), size_t(marker.size()), off_t(offset)), marker.size());
        close(fd);
    }
    // The same bytes, built chunk by chunk in memory.
    uint64_t expected = crc::kInitial;
    const quint64 chunk = 64 << 20;
    QByteArray buffer(qsizetype(chunk), '\0');
    for (quint64 start = 0; start < size; start += chunk) {
        buffer.fill('\0');
        for (quint64 offset : markerOffsets)
            for (qsizetype i = 0; i < marker.size(); ++i)
                if (offset + quint64(i) >= start && offset + quint64(i) < start + chunk)
                    buffer[qsizetype(offset + quint64(i) - start)] = marker[i];
        expected = crc::updateWithTable(expected, buffer.constData(), size_t(chunk));
    }

    fileAttrbItem item;
    item.filePathName = path;
    item.fileSize = size;
    algorithm reader;
    ASSERT_TRUE(reader.getMD5(item));
    EXPECT_EQ(item.md5, expected);
}

TEST(Fingerprints, FirstBlockOfShortFilesIsZeroPaddedAndEmptyFilesHaveNoWholeFingerprint) {
    test::TestTree tree;
    algorithm reader;
    fileAttrbItem shortFile;
    shortFile.filePathName = tree.write("short", "abc");
    ASSERT_TRUE(reader.getMD5_1K(shortFile));
    QByteArray padded(1024, '\0');
    padded.replace(0, 3, "abc");
    EXPECT_EQ(shortFile.md5_1k, crc::crc64(padded.constData(), 1024));
    EXPECT_EQ(shortFile.md5, crc::crc64("abc", 3));

    fileAttrbItem empty;
    empty.filePathName = tree.write("empty", {});
    EXPECT_TRUE(reader.getMD5_1K(empty));
    EXPECT_FALSE(reader.getMD5(empty));
    EXPECT_EQ(empty.md5, 0u);

    fileAttrbItem missing;
    missing.filePathName = tree.path("missing");
    EXPECT_FALSE(reader.getMD5_1K(missing));
    EXPECT_FALSE(reader.getMD5(missing));
}

}  // namespace
}  // namespace velmora
