#pragma once

#include <array>
#include <cstdint>

// Tables and folding constants of the reflected CRC-64 (Jones polynomial),
// all computed at compile time from the polynomial.
namespace velmora::crc64_tables {

inline constexpr uint64_t kPolynomial = 0xAD93D23594C935A9;          // x^64 implied
inline constexpr uint64_t kReflectedPolynomial = 0x95AC9329AC4BC9B5;  // bit order reversed

constexpr uint64_t reflect(uint64_t value) {
    uint64_t result = 0;
    for (int bit = 0; bit < 64; ++bit)
        if (value & (uint64_t{1} << bit)) result |= uint64_t{1} << (63 - bit);
    return result;
}
static_assert(reflect(kPolynomial) == kReflectedPolynomial);

// kSlices[0] is the classic byte table; kSlices[k][b] is the register after
// byte b followed by k zero bytes, which lets eight bytes go at once.
constexpr std::array<std::array<uint64_t, 256>, 8> makeSlices() {
    std::array<std::array<uint64_t, 256>, 8> slices{};
    for (uint64_t byte = 0; byte < 256; ++byte) {
        uint64_t reg = byte;
        for (int bit = 0; bit < 8; ++bit) reg = (reg >> 1) ^ ((reg & 1) ? kReflectedPolynomial : 0);
        slices[0][byte] = reg;
    }
    for (int k = 1; k < 8; ++k)
        for (int byte = 0; byte < 256; ++byte)
            slices[k][byte] = (slices[k - 1][byte] >> 8) ^ slices[0][slices[k - 1][byte] & 0xFF];
    return slices;
}
inline constexpr auto kSlices = makeSlices();
static_assert(kSlices[0][1] == 0x7AD870C830358979);

// x^n mod P, with bit i standing for x^i.
constexpr uint64_t xPowerModP(int n) {
    uint64_t remainder = 1;
    for (int i = 0; i < n; ++i) remainder = (remainder << 1) ^ ((remainder >> 63) ? kPolynomial : 0);
    return remainder;
}

// Folding a 128-bit lane forward by `bits`: the lane's first eight bytes
// (the higher powers) are multiplied by x^(bits+63) mod P and its last eight
// by x^(bits-1) mod P. The exponents are one short because the carry-less
// product of two reflected operands comes out shifted by one place.
struct FoldConstants {
    uint64_t first;  // for the lane's first eight bytes
    uint64_t last;   // for the lane's last eight bytes
};
constexpr FoldConstants foldConstants(int bits) {
    return {reflect(xPowerModP(bits + 63)), reflect(xPowerModP(bits - 1))};
}

}  // namespace velmora::crc64_tables
