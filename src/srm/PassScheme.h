#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// The mode letters: -s, -E, -m, or none for the full scheme.
enum class PassMode { Single, ThreePass, SevenPass, ThirtyFivePass };

// One overwrite pass: fresh random data, or a pattern of one to three bytes repeated
// from the start of the file.
struct Pass {
    bool random = false;
    std::vector<std::uint8_t> pattern;

    static Pass randomData() { return Pass{true, {}}; }
    static Pass bytes(std::vector<std::uint8_t> pattern) { return Pass{false, std::move(pattern)}; }

    std::string describe() const; // "random" or "0x92 0x49 0x24"
};

// The passes of a mode, followed by one pass of zeros when `zeroPass` is set.
std::vector<Pass> passesFor(PassMode mode, bool zeroPass);

// Fills `length` bytes with a pattern pass's bytes as they lie at `fileOffset`, so the
// pattern keeps its phase from one buffer to the next.
void fillPattern(const Pass& pass, std::uint64_t fileOffset, std::uint8_t* out, std::size_t length);

} // namespace velmora
