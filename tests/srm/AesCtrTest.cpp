#include "srm/AesCtr.h"

#include <gtest/gtest.h>

#include <vector>

namespace velmora {
namespace {

std::vector<std::uint8_t> keystream(const std::array<std::uint8_t, 16>& key, std::uint64_t nonce,
                                    std::uint64_t counter, std::size_t calls = 1)
{
    AesCtr stream(key, nonce, counter);
    std::vector<std::uint8_t> bytes(512 * calls);
    for (std::size_t call = 0; call < calls; ++call)
        stream.generate(bytes.data() + 512 * call, 512);
    return bytes;
}

std::vector<std::uint8_t> blockAt(const std::vector<std::uint8_t>& bytes, std::size_t index)
{
    return {bytes.begin() + 16 * index, bytes.begin() + 16 * (index + 1)};
}

TEST(AesCtr, FirstBlockIsTheCipherOfTheCounterBlock)
{
    if (!AesCtr::available())
        GTEST_SKIP() << "SKIPPED: this processor has no AES instructions";
    // The AES-128 example of the standard: key 00 01 .. 0f, plaintext 00 11 22 .. ff,
    // which is the counter block for this counter (low half) and nonce (high half).
    const std::array<std::uint8_t, 16> key{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const std::vector<std::uint8_t> expected{0x69, 0xc4, 0xe0, 0xd8, 0x6a, 0x7b, 0x04, 0x30,
                                             0xd8, 0xcd, 0xb7, 0x80, 0x70, 0xb4, 0xc5, 0x5a};
    EXPECT_EQ(blockAt(keystream(key, 0xffeeddccbbaa9988, 0x7766554433221100), 0), expected);
}

TEST(AesCtr, SuccessiveBlocksAndCallsFollowTheCounter)
{
    if (!AesCtr::available())
        GTEST_SKIP() << "SKIPPED: this processor has no AES instructions";
    const std::array<std::uint8_t, 16> key{9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 1, 2, 3, 4, 5, 6};
    const std::uint64_t nonce = 42;
    const std::vector<std::uint8_t> twoCalls = keystream(key, nonce, 1000, 2);
    for (std::size_t index : {std::size_t{1}, std::size_t{7}, std::size_t{8}, std::size_t{31}, std::size_t{32}, std::size_t{63}})
        EXPECT_EQ(blockAt(twoCalls, index), blockAt(keystream(key, nonce, 1000 + index), 0)) << "block " << index;
    EXPECT_NE(blockAt(keystream(key, nonce + 1, 1000), 0), blockAt(twoCalls, 0)) << "the nonce must matter";
}

} // namespace
} // namespace velmora
