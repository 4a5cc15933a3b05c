#pragma once

#include "engine/duplicate/algorithm.h"

#include <QtGlobal>
#include <atomic>
#include <functional>

namespace velmora {

// The duplicate search's own threads. run() calls job(worker, i) for i = 0
// .. count-1, the indices taken in order by the calling thread and the
// background threads together, so that independent files are read in
// parallel. Each worker has its own algorithm (and read buffer). At most
// maxWorkers threads work at once, the calling one included. No new index is
// started once `stop` is set; the answer tells whether every index was
// started. forEach() does the same for work that needs no reader.
class FingerprintPool {
public:
    using Job = std::function<void(algorithm& worker, qsizetype index)>;

    static bool run(qsizetype count, const Job& job, const std::atomic<bool>& stop, qsizetype maxWorkers);
    static void forEach(qsizetype count, const std::function<void(qsizetype index)>& job, qsizetype maxWorkers);

private:
    // Runs work() on the calling thread and on up to `helpers` background
    // threads at once, and returns when all have returned.
    static void onThreads(qsizetype helpers, const std::function<void()>& work);
};

}  // namespace velmora
