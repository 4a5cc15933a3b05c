// Only x86-64 has these instructions here; elsewhere this file compiles to nothing
// and RandomSource uses ChaCha20 alone.
#if defined(__x86_64__)

#include "srm/AesCtr.h"

#include <cassert>

#include <immintrin.h>

namespace velmora {

namespace {

constexpr int kBlocksAtOnce = 8; // enough independent blocks to keep the AES unit busy

__attribute__((target("aes,sse2"))) __m128i nextRoundKey(__m128i key, __m128i assist)
{
    assist = _mm_shuffle_epi32(assist, _MM_SHUFFLE(3, 3, 3, 3));
    key = _mm_xor_si128(key, _mm_slli_si128(key, 4));
    key = _mm_xor_si128(key, _mm_slli_si128(key, 4));
    key = _mm_xor_si128(key, _mm_slli_si128(key, 4));
    return _mm_xor_si128(key, assist);
}

__attribute__((target("aes,sse2"))) void expandKey(const std::uint8_t* key, std::uint8_t* roundKeys)
{
    __m128i k[11];
    k[0] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(key));
    // The round constant must be an immediate, hence one line per round.
    k[1] = nextRoundKey(k[0], _mm_aeskeygenassist_si128(k[0], 0x01));
    k[2] = nextRoundKey(k[1], _mm_aeskeygenassist_si128(k[1], 0x02));
    k[3] = nextRoundKey(k[2], _mm_aeskeygenassist_si128(k[2], 0x04));
    k[4] = nextRoundKey(k[3], _mm_aeskeygenassist_si128(k[3], 0x08));
    k[5] = nextRoundKey(k[4], _mm_aeskeygenassist_si128(k[4], 0x10));
    k[6] = nextRoundKey(k[5], _mm_aeskeygenassist_si128(k[5], 0x20));
    k[7] = nextRoundKey(k[6], _mm_aeskeygenassist_si128(k[6], 0x40));
    k[8] = nextRoundKey(k[7], _mm_aeskeygenassist_si128(k[7], 0x80));
    k[9] = nextRoundKey(k[8], _mm_aeskeygenassist_si128(k[8], 0x1b));
    k[10] = nextRoundKey(k[9], _mm_aeskeygenassist_si128(k[9], 0x36));
    for (int i = 0; i < 11; ++i)
        _mm_store_si128(reinterpret_cast<__m128i*>(roundKeys + 16 * i), k[i]);
}

__attribute__((target("aes,sse2"))) void encryptCounters(const std::uint8_t* roundKeys, std::uint64_t nonce,
                                                          std::uint64_t counter, std::uint8_t* out,
                                                          std::size_t length)
{
    __m128i k[11];
    for (int i = 0; i < 11; ++i)
        k[i] = _mm_load_si128(reinterpret_cast<const __m128i*>(roundKeys + 16 * i));
    for (std::size_t done = 0; done < length; done += 16 * kBlocksAtOnce, counter += kBlocksAtOnce) {
        // Fully unrolled, so that the blocks stay in registers.
        __m128i block[kBlocksAtOnce];
#pragma GCC unroll 8
        for (int j = 0; j < kBlocksAtOnce; ++j)
            block[j] = _mm_xor_si128(_mm_set_epi64x(static_cast<long long>(nonce), static_cast<long long>(counter + j)), k[0]);
#pragma GCC unroll 9
        for (int round = 1; round < 10; ++round) {
#pragma GCC unroll 8
            for (int j = 0; j < kBlocksAtOnce; ++j)
                block[j] = _mm_aesenc_si128(block[j], k[round]);
        }
#pragma GCC unroll 8
        for (int j = 0; j < kBlocksAtOnce; ++j)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + done + 16 * j), _mm_aesenclast_si128(block[j], k[10]));
    }
}

} // namespace

bool AesCtr::available()
{
    return __builtin_cpu_supports("aes");
}

AesCtr::AesCtr(const std::array<std::uint8_t, 16>& key, std::uint64_t nonce, std::uint64_t counter)
    : nonce_(nonce)
    , counter_(counter)
{
    expandKey(key.data(), roundKeys_.data());
}

void AesCtr::generate(std::uint8_t* out, std::size_t length)
{
    assert(length % 512 == 0);
    encryptCounters(roundKeys_.data(), nonce_, counter_, out, length);
    counter_ += length / 16;
}

} // namespace velmora

#endif
