#pragma once

#include "srm/PassScheme.h"
#include "srm/RandomSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmora {

// Writes the passes over an open file. Each pass covers the file's size rounded up
// to its block size and reaches the device before the next pass starts. The next
// buffer is filled on a second thread while the current one is written, so random
// data costs no time beyond the device's own.
class Overwriter {
public:
    // `stopAfterPass` > 0 ends the process after that pass (a test hook; see main).
    Overwriter(RandomSource& random, std::vector<Pass> passes, bool verbose, int stopAfterPass);

    // Returns an empty string on success, else the reason for the failure.
    std::string overwrite(int fd, const std::string& path);

    std::size_t passCount() const { return passes_.size(); }
    // How many bytes from the start of the file the last overwrite covered (its size
    // then, rounded up to whole blocks).
    std::uint64_t coveredBytes() const { return coveredBytes_; }

    static constexpr int kStoppedByTestHook = 3;

private:
    std::string writePass(int fd, const Pass& pass, std::uint64_t size, std::uint64_t length);
    void fill(const Pass& pass, int slot, std::uint64_t offset, std::size_t length);

    RandomSource& random_;
    std::vector<Pass> passes_;
    bool verbose_;
    int stopAfterPass_;
    std::uint64_t coveredBytes_ = 0;
    struct FreeDeleter {
        void operator()(std::uint8_t* p) const;
    };
    std::unique_ptr<std::uint8_t, FreeDeleter> buffers_[2];
};

} // namespace velmora
