#pragma once

#include "srm/KeystreamGenerator.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace velmora {

// ChaCha20 keystream generator (20 rounds, 256-bit key, 64-bit block counter,
// 64-bit nonce). Eight consecutive blocks are computed side by side and written
// word-interleaved: word i of block b lands at 32-bit position i * 8 + b of each
// 512-byte group. That is a fixed reordering of the standard keystream, so it is
// exactly as unpredictable, and it lets the vector code store without transposing.
class ChaCha20 : public KeystreamGenerator {
public:
    static constexpr std::size_t kGroupBytes = 512;

    ChaCha20(const std::array<std::uint32_t, 8>& key, std::uint64_t nonce, std::uint64_t counter);

    void generate(std::uint8_t* out, std::size_t length) override;

private:
    std::array<std::uint32_t, 16> state_;
};

} // namespace velmora
