#include "engine/duplicate/FingerprintPool.h"

#include <QThreadPool>
#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace velmora {

bool FingerprintPool::run(qsizetype count, const Job& job, const std::atomic<bool>& stop, qsizetype maxWorkers) {
    std::atomic<qsizetype> next{0};
    onThreads(std::min(count, maxWorkers) - 1, [&] {
        algorithm worker;
        for (;;) {
            if (stop.load(std::memory_order_relaxed)) return;
            const qsizetype index = next.fetch_add(1, std::memory_order_relaxed);
            if (index >= count) return;
            job(worker, index);
        }
    });
    return next.load(std::memory_order_relaxed) >= count;
}

void FingerprintPool::forEach(qsizetype count, const std::function<void(qsizetype index)>& job, qsizetype maxWorkers) {
    std::atomic<qsizetype> next{0};
    onThreads(std::min(count, maxWorkers) - 1, [&] {
        for (qsizetype index; (index = next.fetch_add(1, std::memory_order_relaxed)) < count;) job(index);
    });
}

// The hand-over to the pool and back is made with standard atomics and a
// condition variable rather than QFuture, so that the order of every access
// to the shared state is visible to ThreadSanitizer.
void FingerprintPool::onThreads(qsizetype helpers, const std::function<void()>& work) {
    // A pool of its own: Qt paints large areas on its global pool and waits for
    // it, so reading threads there would hold the window still until they end.
    static QThreadPool ownPool;
    helpers = std::clamp<qsizetype>(helpers, 0, ownPool.maxThreadCount());
    std::atomic<bool> started{false};
    std::mutex mutex;
    std::condition_variable allDone;
    qsizetype running = helpers;
    started.store(true, std::memory_order_release);
    for (qsizetype i = 0; i < helpers; ++i) {
        ownPool.start([&] {
            started.load(std::memory_order_acquire);
            work();
            std::lock_guard lock(mutex);
            if (--running == 0) allDone.notify_all();
        });
    }
    work();
    std::unique_lock lock(mutex);
    allDone.wait(lock, [&] { return running == 0; });
}

}  // namespace velmora
