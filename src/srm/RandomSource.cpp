#include "srm/RandomSource.h"

#include "srm/AesCtr.h"
#include "srm/ChaCha20.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

#include <sys/random.h>

namespace velmora {

namespace {

constexpr std::size_t kMaxStreams = 8;
constexpr std::size_t kParallelFrom = 1 << 20; // smaller fills are not worth a thread

std::unique_ptr<KeystreamGenerator> makeStream(const std::array<std::uint32_t, 8>& key, std::uint64_t nonce)
{
#if defined(__x86_64__)
    if (AesCtr::available()) {
        std::array<std::uint8_t, 16> aesKey;
        std::memcpy(aesKey.data(), key.data(), aesKey.size());
        return std::make_unique<AesCtr>(aesKey, nonce, 0);
    }
#endif
    return std::make_unique<ChaCha20>(key, nonce, 0);
}

} // namespace

RandomSource::RandomSource()
{
    std::array<std::uint32_t, 8> key;
    std::uint64_t nonce = 0;
    kernelBytes(key.data(), sizeof key);
    kernelBytes(&nonce, sizeof nonce);
    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    for (std::size_t i = 0; i < std::min(cores, kMaxStreams); ++i)
        streams_.push_back(makeStream(key, nonce + i));
}

void RandomSource::fill(std::uint8_t* out, std::size_t length)
{
    const std::size_t slices = length >= kParallelFrom ? streams_.size() : 1;
    const std::size_t sliceBytes = length / kBlockBytes / slices * kBlockBytes;
    std::vector<std::future<void>> helpers;
    for (std::size_t i = 0; i + 1 < slices; ++i) {
        helpers.push_back(std::async(std::launch::async, [this, i, out, sliceBytes] {
            streams_[i]->generate(out + i * sliceBytes, sliceBytes);
        }));
    }
    // The last slice, with whatever the even split left over, is done right here.
    const std::size_t lastStart = (slices - 1) * sliceBytes;
    streams_[slices - 1]->generate(out + lastStart, length - lastStart);
    for (auto& helper : helpers)
        helper.wait();
}

void RandomSource::kernelBytes(void* out, std::size_t length)
{
    auto* bytes = static_cast<unsigned char*>(out);
    while (length > 0) {
#if defined(__APPLE__)
        const std::size_t chunk = length < 256 ? length : 256;
        if (getentropy(bytes, chunk) != 0)
            throw std::runtime_error(std::string("getentropy: ") + std::strerror(errno));
        const std::size_t got = chunk;
#else
        const ssize_t result = getrandom(bytes, length, 0);
        if (result < 0) {
            if (errno == EINTR)
                continue;
            throw std::runtime_error(std::string("getrandom: ") + std::strerror(errno));
        }
        const std::size_t got = static_cast<std::size_t>(result);
#endif
        bytes += got;
        length -= got;
    }
}

} // namespace velmora
