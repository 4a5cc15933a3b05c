#include "srm/RandomSource.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include <sys/random.h>

namespace velmora {

RandomSource::RandomSource()
    : stream_(seededStream())
{
}

ChaCha20 RandomSource::seededStream()
{
    std::array<std::uint32_t, 8> key;
    std::uint64_t nonce = 0;
    kernelBytes(key.data(), sizeof key);
    kernelBytes(&nonce, sizeof nonce);
    return ChaCha20(key, nonce, 0);
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
