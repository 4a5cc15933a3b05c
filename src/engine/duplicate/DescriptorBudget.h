#pragma once

#include <QtGlobal>
#include <atomic>

namespace velmora {

// The file descriptors a duplicate search may hold open at once: the
// process limit (RLIMIT_NOFILE) less those open when the search starts and
// a reserve for the rest of the process. Without it a large group of
// same-size files, read in parallel, would run out of descriptors and its
// files would fail to open. Slots are taken and given back from any thread.
class DescriptorBudget {
public:
    static constexpr qsizetype kReserve = 16;

    explicit DescriptorBudget(qsizetype capacity) : m_free(capacity), m_capacity(capacity) {}
    // The slots free in this process now (at least 1).
    static qsizetype availableNow();

    qsizetype capacity() const { return m_capacity; }
    // Takes `count` slots if that many are free.
    bool tryTake(qsizetype count);
    void giveBack(qsizetype count) { m_free.fetch_add(count, std::memory_order_relaxed); }

private:
    std::atomic<qsizetype> m_free;
    qsizetype m_capacity;
};

}  // namespace velmora
