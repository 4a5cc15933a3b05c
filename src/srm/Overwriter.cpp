#include "srm/Overwriter.h"

#include "srm/DeviceIo.h"
#include "srm/Messages.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <future>

#include <sys/stat.h>

namespace velmora {

namespace {

constexpr std::size_t kBufferBytes = 16 << 20;
constexpr std::size_t kBufferAlignment = 4096; // direct I/O wants page-aligned memory

std::uint64_t roundUp(std::uint64_t value, std::uint64_t multiple)
{
    return (value + multiple - 1) / multiple * multiple;
}

} // namespace

void Overwriter::FreeDeleter::operator()(std::uint8_t* p) const
{
    std::free(p);
}

Overwriter::Overwriter(RandomSource& random, std::vector<Pass> passes, bool verbose, int stopAfterPass)
    : random_(random)
    , passes_(std::move(passes))
    , verbose_(verbose)
    , stopAfterPass_(stopAfterPass)
{
}

std::string Overwriter::overwrite(int fd, const std::string& path)
{
    struct stat status;
    if (fstat(fd, &status) != 0)
        return std::strerror(errno);
    const std::uint64_t size = static_cast<std::uint64_t>(status.st_size);
    coveredBytes_ = 0;
    if (size == 0)
        return {};
    // The last block's slack past the end of the file can hold old data too.
    const std::uint64_t blockSize = status.st_blksize > 0 ? static_cast<std::uint64_t>(status.st_blksize) : 4096;
    const std::uint64_t length = roundUp(size, blockSize);

    for (auto& buffer : buffers_) {
        if (!buffer) {
            buffer.reset(static_cast<std::uint8_t*>(std::aligned_alloc(kBufferAlignment, kBufferBytes)));
            if (!buffer)
                return "out of memory";
        }
    }

    for (std::size_t index = 0; index < passes_.size(); ++index) {
        const int number = static_cast<int>(index) + 1;
        if (verbose_)
            printProgress(path + ": pass " + std::to_string(number) + "/" + std::to_string(passes_.size()) + " (" +
                          passes_[index].describe() + ")");
        const std::string failure = writePass(fd, passes_[index], size, length);
        if (!failure.empty())
            return "pass " + std::to_string(number) + ": " + failure;
        if (number == stopAfterPass_) {
            printProgress(path + ": stopped after pass " + std::to_string(number));
            std::exit(kStoppedByTestHook);
        }
    }
    dropCachedPages(fd);
    coveredBytes_ = length;
    return {};
}

std::string Overwriter::writePass(int fd, const Pass& pass, std::uint64_t size, std::uint64_t length)
{
    fill(pass, 0, 0, static_cast<std::size_t>(std::min<std::uint64_t>(kBufferBytes, length)));
    int slot = 0;
    for (std::uint64_t offset = 0; offset < length; offset += kBufferBytes, slot ^= 1) {
        const std::size_t chunk = static_cast<std::size_t>(std::min<std::uint64_t>(kBufferBytes, length - offset));
        const std::uint64_t nextOffset = offset + chunk;
        std::future<void> nextFill;
        if (nextOffset < length) {
            const auto nextChunk = static_cast<std::size_t>(std::min<std::uint64_t>(kBufferBytes, length - nextOffset));
            nextFill = std::async(std::launch::async, [this, &pass, slot, nextOffset, nextChunk] {
                fill(pass, slot ^ 1, nextOffset, nextChunk);
            });
        }
        std::size_t written = 0;
        const int error = writeFully(fd, buffers_[slot].get(), chunk, offset, written);
        if (nextFill.valid())
            nextFill.wait();
        if (error == 0)
            continue;
        // The rounded-up tail may need a new block on some file systems; running out
        // of room there is harmless, as the file's own bytes are all covered.
        if ((error == ENOSPC || error == EFBIG) && offset + written >= size)
            break;
        return std::strerror(error);
    }
    if (!syncToDevice(fd))
        return std::string("sync: ") + std::strerror(errno);
    return {};
}

void Overwriter::fill(const Pass& pass, int slot, std::uint64_t offset, std::size_t length)
{
    std::uint8_t* buffer = buffers_[slot].get();
    if (pass.random)
        random_.fill(buffer, roundUp(length, RandomSource::kBlockBytes));
    else
        fillPattern(pass, offset, buffer, length);
}

} // namespace velmora
