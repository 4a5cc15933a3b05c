#include "engine/duplicate/crc.h"

#include "engine/duplicate/crc64_tables.h"

#include <bit>
#include <cstring>

namespace velmora {

uint64_t crc::crc64(const void* buffer, uint32_t bufferSize) {
    return crc64Buffer(buffer, bufferSize, true, 0);
}

uint64_t crc::crc64Buffer(const void* buffer, uint32_t buffSize, bool isHead, uint64_t previous) {
    if (!buffer) return 0;
    return update(isHead ? kInitial : previous, buffer, buffSize);
}

uint64_t crc::update(uint64_t reg, const void* data, size_t length) {
    return updateWithWideCarrylessMultiply(reg, data, length);
}

// Slicing by eight: one 64-bit load and eight lookups advance the register by
// eight bytes; a byte-wise loop does the rest.
uint64_t crc::updateWithTable(uint64_t reg, const void* data, size_t length) {
    const auto& t = crc64_tables::kSlices;
    auto p = static_cast<const unsigned char*>(data);
    while (length >= 8) {
        uint64_t word;
        std::memcpy(&word, p, 8);
        if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
        reg ^= word;
        reg = t[7][reg & 0xFF] ^ t[6][(reg >> 8) & 0xFF] ^ t[5][(reg >> 16) & 0xFF] ^ t[4][(reg >> 24) & 0xFF] ^
              t[3][(reg >> 32) & 0xFF] ^ t[2][(reg >> 40) & 0xFF] ^ t[1][(reg >> 48) & 0xFF] ^ t[0][reg >> 56];
        p += 8;
        length -= 8;
    }
    while (length--) reg = (reg >> 8) ^ t[0][(reg ^ *p++) & 0xFF];
    return reg;
}

}  // namespace velmora
