#pragma once

#include "engine/duplicate/algorithm.h"

#include <QtGlobal>
#include <atomic>
#include <functional>

namespace velmora {

// Runs job(worker, i) for i = 0 .. count-1, the indices taken in order by the
// calling thread and the background thread pool together, so that
// independent files are read in parallel. Each worker has its own algorithm
// (and read buffer). At most maxWorkers threads work at once, the calling
// one included. No new index is started once `stop` is set; the answer tells
// whether every index was started.
class FingerprintPool {
public:
    using Job = std::function<void(algorithm& worker, qsizetype index)>;

    static bool run(qsizetype count, const Job& job, const std::atomic<bool>& stop, qsizetype maxWorkers);
};

}  // namespace velmora
