// Carry-less-multiply CRC-64: eight 128-bit lanes are folded forward over the
// data, 128 bytes per step, then folded into one lane whose 16 bytes, with the
// tail, go through the table kernel. The lanes stay congruent to the message
// modulo the polynomial, so the result equals the table kernel's exactly.
#include "engine/duplicate/crc.h"

#include "engine/duplicate/crc64_tables.h"


#if defined(__x86_64__) || defined(_M_X64)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#if defined(__linux__)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif
#endif

namespace velmora {

namespace {

constexpr size_t kLanes = 8;
constexpr size_t kBlock = kLanes * 16;

using crc64_tables::foldConstants;
constexpr auto kFoldBlock = foldConstants(kBlock * 8);
// kFoldLane[i] brings lane i forward onto the last lane.
constexpr crc64_tables::FoldConstants kFoldLane[kLanes - 1] = {
    foldConstants(7 * 128), foldConstants(6 * 128), foldConstants(5 * 128), foldConstants(4 * 128),
    foldConstants(3 * 128), foldConstants(2 * 128), foldConstants(1 * 128),
};

// Shared tail: the folded lane and the bytes after the last full block.
uint64_t finish(const unsigned char lane[16], const unsigned char* tail, size_t tailLength) {
    const uint64_t reg = crc::updateWithTable(0, lane, 16);
    return crc::updateWithTable(reg, tail, tailLength);
}

#if defined(__x86_64__) || defined(_M_X64)

#define VELMORA_CLMUL_TARGET __attribute__((target("pclmul,sse4.1")))

VELMORA_CLMUL_TARGET inline __m128i fold(__m128i lane, __m128i constants) {
    return _mm_xor_si128(_mm_clmulepi64_si128(lane, constants, 0x00), _mm_clmulepi64_si128(lane, constants, 0x11));
}

VELMORA_CLMUL_TARGET inline __m128i pack(crc64_tables::FoldConstants k) {
    return _mm_set_epi64x(static_cast<long long>(k.last), static_cast<long long>(k.first));
}

// Folds the eight lanes onto the last one and finishes with the tail.
VELMORA_CLMUL_TARGET uint64_t reduceLanes(const __m128i (&lanes)[kLanes], const unsigned char* tail, size_t length) {
    __m128i last = lanes[kLanes - 1];
    for (size_t i = 0; i + 1 < kLanes; ++i) last = _mm_xor_si128(last, fold(lanes[i], pack(kFoldLane[i])));
    unsigned char lane[16];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lane), last);
    return finish(lane, tail, length);
}

VELMORA_CLMUL_TARGET uint64_t foldBlocks(uint64_t reg, const unsigned char* p, size_t length) {
    __m128i lanes[kLanes];
    for (size_t i = 0; i < kLanes; ++i) lanes[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
    lanes[0] = _mm_xor_si128(lanes[0], _mm_cvtsi64_si128(static_cast<long long>(reg)));
    p += kBlock;
    length -= kBlock;

    const __m128i blockConstants = pack(kFoldBlock);
    for (; length >= kBlock; p += kBlock, length -= kBlock)
        for (size_t i = 0; i < kLanes; ++i)
            lanes[i] = _mm_xor_si128(fold(lanes[i], blockConstants),
                                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i)));
    return reduceLanes(lanes, p, length);
}

// The same folding with 256-bit registers (VPCLMULQDQ): each register holds
// two neighbouring lanes, so one instruction folds both.
#define VELMORA_WIDE_CLMUL_TARGET __attribute__((target("vpclmulqdq,avx2,pclmul,sse4.1")))

VELMORA_WIDE_CLMUL_TARGET inline __m256i foldWide(__m256i lanes, __m256i constants) {
    return _mm256_xor_si256(_mm256_clmulepi64_epi128(lanes, constants, 0x00),
                            _mm256_clmulepi64_epi128(lanes, constants, 0x11));
}

VELMORA_WIDE_CLMUL_TARGET uint64_t foldBlocksWide(uint64_t reg, const unsigned char* p, size_t length) {
    constexpr size_t kPairs = kLanes / 2;
    __m256i pairs[kPairs];
    for (size_t i = 0; i < kPairs; ++i) pairs[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32 * i));
    pairs[0] = _mm256_xor_si256(pairs[0], _mm256_set_epi64x(0, 0, 0, static_cast<long long>(reg)));
    p += kBlock;
    length -= kBlock;

    const __m256i blockConstants = _mm256_broadcastsi128_si256(pack(kFoldBlock));
    for (; length >= kBlock; p += kBlock, length -= kBlock)
        for (size_t i = 0; i < kPairs; ++i)
            pairs[i] = _mm256_xor_si256(foldWide(pairs[i], blockConstants),
                                        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32 * i)));

    __m128i lanes[kLanes];
    for (size_t i = 0; i < kPairs; ++i) {
        lanes[2 * i] = _mm256_castsi256_si128(pairs[i]);
        lanes[2 * i + 1] = _mm256_extracti128_si256(pairs[i], 1);
    }
    return reduceLanes(lanes, p, length);
}

bool detectCarrylessMultiply() {
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
}

bool detectWideCarrylessMultiply() {
    return detectCarrylessMultiply() && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("vpclmulqdq");
}

#elif defined(__aarch64__)

#if defined(__clang__)
#define VELMORA_CLMUL_TARGET __attribute__((target("aes")))
#else
#define VELMORA_CLMUL_TARGET __attribute__((target("+crypto")))
#endif

VELMORA_CLMUL_TARGET inline uint64x2_t fold(uint64x2_t lane, crc64_tables::FoldConstants k) {
    const poly128_t first = vmull_p64(vgetq_lane_u64(lane, 0), k.first);
    const poly128_t last = vmull_p64(vgetq_lane_u64(lane, 1), k.last);
    return veorq_u64(vreinterpretq_u64_p128(first), vreinterpretq_u64_p128(last));
}

VELMORA_CLMUL_TARGET uint64_t foldBlocks(uint64_t reg, const unsigned char* p, size_t length) {
    uint64x2_t lanes[kLanes];
    for (size_t i = 0; i < kLanes; ++i) lanes[i] = vreinterpretq_u64_u8(vld1q_u8(p + 16 * i));
    lanes[0] = veorq_u64(lanes[0], vcombine_u64(vcreate_u64(reg), vcreate_u64(0)));
    p += kBlock;
    length -= kBlock;

    for (; length >= kBlock; p += kBlock, length -= kBlock)
        for (size_t i = 0; i < kLanes; ++i)
            lanes[i] = veorq_u64(fold(lanes[i], kFoldBlock), vreinterpretq_u64_u8(vld1q_u8(p + 16 * i)));

    uint64x2_t last = lanes[kLanes - 1];
    for (size_t i = 0; i + 1 < kLanes; ++i) last = veorq_u64(last, fold(lanes[i], kFoldLane[i]));
    unsigned char lane[16];
    vst1q_u8(lane, vreinterpretq_u8_u64(last));
    return finish(lane, p, length);
}

bool detectCarrylessMultiply() {
#if defined(__APPLE__)
    return true;  // every 64-bit Apple processor has PMULL
#elif defined(__linux__)
    return (getauxval(AT_HWCAP) & HWCAP_PMULL) != 0;
#else
    return false;
#endif
}

#endif

}  // namespace

bool crc::hasCarrylessMultiply() {
#if defined(__x86_64__) || defined(_M_X64) || defined(__aarch64__)
    static const bool available = detectCarrylessMultiply();
    return available;
#else
    return false;
#endif
}

uint64_t crc::updateWithCarrylessMultiply(uint64_t reg, const void* data, size_t length) {
    auto p = static_cast<const unsigned char*>(data);
#if defined(__x86_64__) || defined(_M_X64) || defined(__aarch64__)
    // Below two blocks the table is as quick and the set-up is not worth it.
    if (length >= 2 * kBlock && hasCarrylessMultiply()) return foldBlocks(reg, p, length);
#endif
    return updateWithTable(reg, p, length);
}

bool crc::hasWideCarrylessMultiply() {
#if defined(__x86_64__) || defined(_M_X64)
    static const bool available = detectWideCarrylessMultiply();
    return available;
#else
    return false;
#endif
}

uint64_t crc::updateWithWideCarrylessMultiply(uint64_t reg, const void* data, size_t length) {
#if defined(__x86_64__) || defined(_M_X64)
    if (length >= 2 * kBlock && hasWideCarrylessMultiply())
        return foldBlocksWide(reg, static_cast<const unsigned char*>(data), length);
#endif
    return updateWithCarrylessMultiply(reg, data, length);
}

}  // namespace velmora
