#pragma once

#include "srm/ChaCha20.h"

#include <cstddef>
#include <cstdint>

namespace velmora {

// Cryptographically strong random bytes for the overwrite passes: a ChaCha20 stream
// keyed once per process from the kernel's generator. Every call continues the
// stream, so no two buffers ever hold the same bytes.
class RandomSource {
public:
    RandomSource();

    // `length` must be a multiple of ChaCha20::kGroupBytes.
    void fill(std::uint8_t* out, std::size_t length) { stream_.generate(out, length); }

    // Bytes straight from the kernel's generator, for small needs such as file names.
    static void kernelBytes(void* out, std::size_t length);

private:
    static ChaCha20 seededStream();

    ChaCha20 stream_;
};

} // namespace velmora
