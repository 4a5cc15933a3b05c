#include "srm/ChaCha20.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace velmora {
namespace {

// Block `lane` of a 512-byte group, back in the standard byte order.
std::vector<std::uint8_t> block(const std::vector<std::uint8_t>& group, int lane)
{
    std::vector<std::uint8_t> bytes(64);
    for (int word = 0; word < 16; ++word)
        std::memcpy(&bytes[word * 4], &group[(word * 8 + lane) * 4], 4);
    return bytes;
}

std::vector<std::uint8_t> firstGroup(const std::array<std::uint32_t, 8>& key, std::uint64_t nonce, std::uint64_t counter)
{
    ChaCha20 stream(key, nonce, counter);
    std::vector<std::uint8_t> group(ChaCha20::kGroupBytes);
    stream.generate(group.data(), group.size());
    return group;
}

TEST(ChaCha20, MatchesTheBlockFunctionTestVectors)
{
    // Key 00 01 .. 1f, block counter 1, nonce 00 00 00 09 00 00 00 4a 00 00 00 00: the
    // 64-bit counter's high word holds the first nonce word of the 96-bit layout.
    const std::array<std::uint32_t, 8> key{0x03020100, 0x07060504, 0x0b0a0908, 0x0f0e0d0c,
                                           0x13121110, 0x17161514, 0x1b1a1918, 0x1f1e1d1c};
    const std::vector<std::uint8_t> expected{
        0x10, 0xf1, 0xe7, 0xe4, 0xd1, 0x3b, 0x59, 0x15, 0x50, 0x0f, 0xdd, 0x1f, 0xa3, 0x20, 0x71, 0xc4,
        0xc7, 0xd1, 0xf4, 0xc7, 0x33, 0xc0, 0x68, 0x03, 0x04, 0x22, 0xaa, 0x9a, 0xc3, 0xd4, 0x6c, 0x4e,
        0xd2, 0x82, 0x64, 0x46, 0x07, 0x9f, 0xaa, 0x09, 0x14, 0xc2, 0xd7, 0x05, 0xd9, 0x8b, 0x02, 0xa2,
        0xb5, 0x12, 0x9c, 0xd1, 0xde, 0x16, 0x4e, 0xb9, 0xcb, 0xd0, 0x83, 0xe8, 0xa2, 0x50, 0x3c, 0x4e};
    EXPECT_EQ(block(firstGroup(key, 0x4a000000, 1 | (std::uint64_t(0x09000000) << 32)), 0), expected);

    // All-zero key, nonce and counter.
    const std::vector<std::uint8_t> zeroKeyBlock{
        0x76, 0xb8, 0xe0, 0xad, 0xa0, 0xf1, 0x3d, 0x90, 0x40, 0x5d, 0x6a, 0xe5, 0x53, 0x86, 0xbd, 0x28,
        0xbd, 0xd2, 0x19, 0xb8, 0xa0, 0x8d, 0xed, 0x1a, 0xa8, 0x36, 0xef, 0xcc, 0x8b, 0x77, 0x0d, 0xc7,
        0xda, 0x41, 0x59, 0x7c, 0x51, 0x57, 0x48, 0x8d, 0x77, 0x24, 0xe0, 0x3f, 0xb8, 0xd8, 0x4a, 0x37,
        0x6a, 0x43, 0xb8, 0xf4, 0x15, 0x18, 0xa1, 0x1c, 0xc3, 0x87, 0xb6, 0x69, 0xb2, 0xee, 0x65, 0x86};
    EXPECT_EQ(block(firstGroup({}, 0, 0), 0), zeroKeyBlock);
}

// Each lane is the block of its own counter, the low counter word carries into the
// high one, and successive calls continue the stream without a gap or a repeat.
TEST(ChaCha20, LanesAreConsecutiveBlocksAcrossTheCounterCarry)
{
    const std::array<std::uint32_t, 8> key{1, 2, 3, 4, 5, 6, 7, 8};
    const std::uint64_t nonce = 0x0123456789abcdef;
    const std::uint64_t start = 0xfffffffcull;

    ChaCha20 stream(key, nonce, start);
    std::vector<std::uint8_t> groups(2 * ChaCha20::kGroupBytes);
    stream.generate(groups.data(), ChaCha20::kGroupBytes);
    stream.generate(groups.data() + ChaCha20::kGroupBytes, ChaCha20::kGroupBytes);
    const std::vector<std::uint8_t> second(groups.begin() + ChaCha20::kGroupBytes, groups.end());

    for (int lane = 0; lane < 8; ++lane) {
        EXPECT_EQ(block(groups, lane), block(firstGroup(key, nonce, start + lane), 0)) << "lane " << lane;
        EXPECT_EQ(block(second, lane), block(firstGroup(key, nonce, start + 8 + lane), 0)) << "lane " << lane;
    }
}

} // namespace
} // namespace velmora
