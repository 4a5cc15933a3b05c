#pragma once

#include <cstddef>
#include <cstdint>

namespace velmora {

// A cipher run as a generator of unpredictable bytes under a random key.
class KeystreamGenerator {
public:
    virtual ~KeystreamGenerator() = default;

    // Fills `length` bytes with the next bytes of the stream; `length` must be a
    // multiple of 512, so that the stream never repeats or skips a block.
    virtual void generate(std::uint8_t* out, std::size_t length) = 0;
};

} // namespace velmora
