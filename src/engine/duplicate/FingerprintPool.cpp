#include "engine/duplicate/FingerprintPool.h"

#include <QFuture>
#include <QList>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

namespace velmora {

bool FingerprintPool::run(qsizetype count, const Job& job, const std::atomic<bool>& stop) {
    std::atomic<qsizetype> next{0};
    auto work = [&] {
        algorithm worker;
        for (;;) {
            if (stop.load(std::memory_order_relaxed)) return;
            const qsizetype index = next.fetch_add(1, std::memory_order_relaxed);
            if (index >= count) return;
            job(worker, index);
        }
    };
    QThreadPool* pool = QThreadPool::globalInstance();
    const qsizetype helpers = qMax<qsizetype>(0, qMin<qsizetype>(pool->maxThreadCount(), count - 1));
    QList<QFuture<void>> running;
    for (qsizetype i = 0; i < helpers; ++i) running.append(QtConcurrent::run(pool, work));
    work();
    for (QFuture<void>& future : running) future.waitForFinished();
    return next.load(std::memory_order_relaxed) >= count;
}

}  // namespace velmora
