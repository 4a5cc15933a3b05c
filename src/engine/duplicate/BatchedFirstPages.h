#pragma once

#include "engine/duplicate/DescriptorBudget.h"
#include "engine/duplicate/FileIdentity.h"
#include "engine/duplicate/algorithm.h"

#include <QByteArray>
#include <memory>

namespace velmora {

// Reads the first pages of many small files with few system calls: the
// opens, the checks that each opened file is the regular file listed, the
// reads and the closes of a batch are each submitted at once through
// io_uring. Where io_uring is missing or refused (and on macOS) it is not
// ready, and files are read one by one as before. One instance per thread.
class BatchedFirstPages {
public:
    static constexpr size_t kMaxBatch = 32;

    enum class Outcome { Read, Failed, NotTried };
    struct Request {
        QByteArray path;
        FileIdentity listed;
        Fingerprints* out = nullptr;
        OpenedFile* file = nullptr;  // receives the descriptor when kept open
        bool keepOpen = false;
        Outcome outcome = Outcome::NotTried;
    };

    // Takes one descriptor (the ring's) from the budget; not ready when the
    // budget has none or io_uring cannot be used.
    explicit BatchedFirstPages(DescriptorBudget& budget);
    ~BatchedFirstPages();
    BatchedFirstPages(const BatchedFirstPages&) = delete;
    BatchedFirstPages& operator=(const BatchedFirstPages&) = delete;

    bool ready() const { return m_ring != nullptr; }
    // Reads up to kMaxBatch requests; each holds a descriptor for the length
    // of the call, which the caller has taken from the budget. Requests left
    // NotTried (a path too long for one open, a moment without descriptors)
    // are for the one-by-one path.
    void read(Request* requests, size_t count);

private:
    struct Ring;
    DescriptorBudget& m_budget;
    std::unique_ptr<Ring> m_ring;
};

}  // namespace velmora
