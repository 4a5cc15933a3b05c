#pragma once

#include "srm/KeystreamGenerator.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmora {

// Cryptographically strong random bytes for the overwrite passes: cipher keystreams
// keyed once per process from the kernel's generator, AES-128-CTR where the processor
// has AES instructions (several times cheaper), else ChaCha20. Every call continues
// the streams, so no two buffers ever hold the same bytes. A large fill is shared out
// among the processor's cores, one stream (its own nonce) per core, so that fast
// drives are not held back by one core's speed.
class RandomSource {
public:
    static constexpr std::size_t kBlockBytes = 512;

    RandomSource();

    // `length` must be a multiple of kBlockBytes.
    void fill(std::uint8_t* out, std::size_t length);

    // Bytes straight from the kernel's generator, for small needs such as file names.
    static void kernelBytes(void* out, std::size_t length);

private:
    std::vector<std::unique_ptr<KeystreamGenerator>> streams_;
};

} // namespace velmora
