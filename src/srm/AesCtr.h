#pragma once

#include "srm/KeystreamGenerator.h"

#include <array>
#include <cstdint>

namespace velmora {

// AES-128 in counter mode on the processor's AES instructions (x86-64 AES-NI): the
// encryptions of successive counter blocks under a random key, a keystream as strong
// as the cipher at a fraction of a cycle per byte. The counter block is the 64-bit
// counter followed by the 64-bit nonce, both little-endian.
class AesCtr : public KeystreamGenerator {
public:
    // Whether this processor has the instructions (x86-64 builds only).
    static bool available();

    AesCtr(const std::array<std::uint8_t, 16>& key, std::uint64_t nonce, std::uint64_t counter);

    void generate(std::uint8_t* out, std::size_t length) override;

private:
    alignas(16) std::array<std::uint8_t, 11 * 16> roundKeys_;
    std::uint64_t nonce_;
    std::uint64_t counter_;
};

} // namespace velmora
