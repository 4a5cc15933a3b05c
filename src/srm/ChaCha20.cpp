#include "srm/ChaCha20.h"

#include <cassert>
#include <cstring>

namespace velmora {

namespace {

typedef std::uint32_t Lanes __attribute__((vector_size(32)));
typedef std::uint8_t LaneBytes __attribute__((vector_size(32)));

constexpr int kLanes = 8;

// Rotations by whole bytes are byte shuffles within each word: one instruction
// instead of two shifts and an or.
#if defined(__clang__)
#define SHUFFLE_WORD_BYTES(v, a, b, c, d) \
    __builtin_shufflevector(v, v, a, b, c, d, 4 + a, 4 + b, 4 + c, 4 + d, 8 + a, 8 + b, 8 + c, 8 + d, \
                            12 + a, 12 + b, 12 + c, 12 + d, 16 + a, 16 + b, 16 + c, 16 + d, 20 + a, 20 + b, \
                            20 + c, 20 + d, 24 + a, 24 + b, 24 + c, 24 + d, 28 + a, 28 + b, 28 + c, 28 + d)
#else
#define SHUFFLE_WORD_BYTES(v, a, b, c, d) \
    __builtin_shuffle(v, LaneBytes{a, b, c, d, 4 + a, 4 + b, 4 + c, 4 + d, 8 + a, 8 + b, 8 + c, 8 + d, \
                                   12 + a, 12 + b, 12 + c, 12 + d, 16 + a, 16 + b, 16 + c, 16 + d, 20 + a, \
                                   20 + b, 20 + c, 20 + d, 24 + a, 24 + b, 24 + c, 24 + d, 28 + a, 28 + b, \
                                   28 + c, 28 + d})
#endif

__attribute__((always_inline)) inline Lanes rotateLeft16(Lanes v)
{
    return reinterpret_cast<Lanes>(SHUFFLE_WORD_BYTES(reinterpret_cast<LaneBytes>(v), 2, 3, 0, 1));
}

__attribute__((always_inline)) inline Lanes rotateLeft8(Lanes v)
{
    return reinterpret_cast<Lanes>(SHUFFLE_WORD_BYTES(reinterpret_cast<LaneBytes>(v), 3, 0, 1, 2));
}

__attribute__((always_inline)) inline Lanes rotateLeft(Lanes v, int bits)
{
    return (v << bits) | (v >> (32 - bits));
}

__attribute__((always_inline)) inline void quarterRound(Lanes& a, Lanes& b, Lanes& c, Lanes& d)
{
    a += b; d ^= a; d = rotateLeft16(d);
    c += d; b ^= c; b = rotateLeft(b, 12);
    a += b; d ^= a; d = rotateLeft8(d);
    c += d; b ^= c; b = rotateLeft(b, 7);
}

__attribute__((always_inline)) inline Lanes broadcast(std::uint32_t value)
{
    return Lanes{value, value, value, value, value, value, value, value};
}

// One group of eight blocks. On x86-64 Linux an AVX2 copy is chosen at load time where
// the processor has it; elsewhere the compiler's generic vector code runs.
#if defined(__x86_64__) && defined(__linux__)
__attribute__((target_clones("avx2", "default")))
#endif
void generateGroup(const std::uint32_t* state, std::uint8_t* out)
{
    Lanes input[16];
    for (int i = 0; i < 16; ++i)
        input[i] = broadcast(state[i]);
    const Lanes counterLow = input[12];
    input[12] += Lanes{0, 1, 2, 3, 4, 5, 6, 7};
    // A lane whose low counter word wrapped carries into the high word (compare gives -1).
    input[13] -= reinterpret_cast<Lanes>(input[12] < counterLow);

    Lanes x[16];
    for (int i = 0; i < 16; ++i)
        x[i] = input[i];
    for (int round = 0; round < 10; ++round) {
        quarterRound(x[0], x[4], x[8], x[12]);
        quarterRound(x[1], x[5], x[9], x[13]);
        quarterRound(x[2], x[6], x[10], x[14]);
        quarterRound(x[3], x[7], x[11], x[15]);
        quarterRound(x[0], x[5], x[10], x[15]);
        quarterRound(x[1], x[6], x[11], x[12]);
        quarterRound(x[2], x[7], x[8], x[13]);
        quarterRound(x[3], x[4], x[9], x[14]);
    }
    for (int i = 0; i < 16; ++i) {
        const Lanes word = x[i] + input[i];
        std::memcpy(out + i * sizeof(Lanes), &word, sizeof(Lanes));
    }
}

} // namespace

ChaCha20::ChaCha20(const std::array<std::uint32_t, 8>& key, std::uint64_t nonce, std::uint64_t counter)
{
    // "expand 32-byte k"
    state_[0] = 0x61707865;
    state_[1] = 0x3320646e;
    state_[2] = 0x79622d32;
    state_[3] = 0x6b206574;
    for (int i = 0; i < 8; ++i)
        state_[4 + i] = key[i];
    state_[12] = static_cast<std::uint32_t>(counter);
    state_[13] = static_cast<std::uint32_t>(counter >> 32);
    state_[14] = static_cast<std::uint32_t>(nonce);
    state_[15] = static_cast<std::uint32_t>(nonce >> 32);
}

void ChaCha20::generate(std::uint8_t* out, std::size_t length)
{
    assert(length % kGroupBytes == 0);
    for (std::size_t done = 0; done < length; done += kGroupBytes) {
        generateGroup(state_.data(), out + done);
        const std::uint64_t counter = ((std::uint64_t(state_[13]) << 32) | state_[12]) + kLanes;
        state_[12] = static_cast<std::uint32_t>(counter);
        state_[13] = static_cast<std::uint32_t>(counter >> 32);
    }
}

} // namespace velmora
