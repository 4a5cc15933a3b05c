#pragma once

#include <cstddef>
#include <cstdint>

namespace velmora {

// CRC-64 with the Jones polynomial 0xAD93D23594C935A9 in reflected form: the
// register starts at all ones and is not inverted at the end. It is the
// duplicate finder's only content fingerprint.
//
// The work is done by a carry-less-multiply kernel (PCLMULQDQ, or its
// 256-bit form VPCLMULQDQ, on x86-64; PMULL on ARMv8) when the processor has
// one, else by tables; all give the same value for every input.
class crc {
public:
    static constexpr uint64_t kInitial = ~uint64_t{0};

    // CRC-64 of one buffer. A null buffer yields 0, an empty one kInitial.
    static uint64_t crc64(const void* buffer, uint32_t bufferSize);

    // Continues a CRC over a further buffer. With isHead the register starts
    // at kInitial and previous is ignored, else it starts at previous. A null
    // buffer yields 0, an empty one the starting register.
    static uint64_t crc64Buffer(const void* buffer, uint32_t buffSize, bool isHead, uint64_t previous);

    // Advances a register over any length with the fastest kernel available.
    static uint64_t update(uint64_t reg, const void* data, size_t length);

    // The kernels, exposed so that they can be compared and measured. Each
    // falls back to the next simpler one where the processor lacks it.
    static uint64_t updateWithTable(uint64_t reg, const void* data, size_t length);
    static uint64_t updateWithCarrylessMultiply(uint64_t reg, const void* data, size_t length);
    static uint64_t updateWithWideCarrylessMultiply(uint64_t reg, const void* data, size_t length);  // x86-64 VPCLMULQDQ
    static bool hasCarrylessMultiply();
    static bool hasWideCarrylessMultiply();
};

}  // namespace velmora
