#pragma once

#include <QThread>
#include <QVariant>
#include <atomic>
#include <functional>

namespace velmora {

// A worker thread with an end call on its target's thread. workOn() runs
// work(object, worker) on a new thread, then didEnd(result) on the thread
// of `target` (the main thread for a page); the end call is dropped when the
// target is gone by then. The worker deletes itself once it has finished.
//
// The target must cancel() and wait() for a running worker before it is
// destroyed: the worker posts calls to it.
class ThreadWorker : public QThread {
    Q_OBJECT
public:
    using Work = std::function<QVariant(const QVariant& object, ThreadWorker* worker)>;
    using DidEnd = std::function<void(const QVariant& result)>;

    static ThreadWorker* workOn(QObject* target, Work work, const QVariant& object, DidEnd didEnd);

    // From the work: posts `call` to the target's thread without waiting.
    void performOnTargetThread(const std::function<void()>& call);

    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

protected:
    void run() override;

private:
    ThreadWorker(QObject* target, Work work, const QVariant& object, DidEnd didEnd);

    QObject* m_target;
    Work m_work;
    QVariant m_object;
    DidEnd m_didEnd;
    std::atomic<bool> m_cancelled{false};
};

}  // namespace velmora
