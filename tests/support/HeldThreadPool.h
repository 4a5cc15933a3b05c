#pragma once

#include <QSemaphore>
#include <memory>

class QObject;

// Every thread of the application's background queue (the global thread pool) held busy,
// so that background work a page starts waits until release(): a test then sees the page
// while its work is still under way, and can prove that the page's own thread goes on
// serving events meanwhile (work done on that thread would be finished instead).
// Qt scales large images on the same pool and waits for it, so nothing paints while it is
// held; the windows are drawn again on release.
namespace velmora::test {

class HeldThreadPool {
public:
    HeldThreadPool();   // returns once every thread of the pool is held
    ~HeldThreadPool();  // releases
    HeldThreadPool(const HeldThreadPool&) = delete;
    HeldThreadPool& operator=(const HeldThreadPool&) = delete;

    void release();

private:
    struct Gates {
        QSemaphore holding;   // a permit for each thread held
        QSemaphore released;  // the permits that let them go
    };
    // Shared with the held threads: one may still be leaving acquire() after release().
    std::shared_ptr<Gates> m_gates = std::make_shared<Gates>();
    int m_held = 0;
    std::unique_ptr<QObject> m_paintBlocker;
};

// Whether an event posted now to this thread is handled (within a generous time): true
// while the thread serves its event loop, false while something holds it.
bool postedEventIsServed();

}  // namespace velmora::test
