#include "support/HeldThreadPool.h"

#include "support/PageTestSupport.h"

#include <QApplication>
#include <QEvent>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QTimer>
#include <QWidget>

namespace velmora::test {
namespace {

// Keeps every window from drawing while installed: the windows open now and those shown
// meanwhile; they are drawn again when it goes.
class PaintBlocker : public QObject {
public:
    PaintBlocker() {
        for (QWidget* window : QApplication::topLevelWidgets()) keepStill(window);
        qApp->installEventFilter(this);
    }
    ~PaintBlocker() override {
        qApp->removeEventFilter(this);
        for (const QPointer<QWidget>& window : std::as_const(m_stillWindows))
            if (window) window->setUpdatesEnabled(true);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && watched->isWidgetType()) {
            auto* widget = static_cast<QWidget*>(watched);
            if (widget->isWindow()) keepStill(widget);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void keepStill(QWidget* window) {
        if (!window->updatesEnabled()) return;
        window->setUpdatesEnabled(false);
        m_stillWindows.append(window);
    }

    QList<QPointer<QWidget>> m_stillWindows;
};

}  // namespace

HeldThreadPool::HeldThreadPool() : m_paintBlocker(std::make_unique<PaintBlocker>()) {
    QThreadPool* pool = QThreadPool::globalInstance();
    m_held = pool->maxThreadCount();
    for (int i = 0; i < m_held; ++i)
        pool->start([gates = m_gates] {
            gates->holding.release();
            gates->released.acquire();
        });
    // Work already on the pool may wait for this thread (a blocking queued call): events
    // are served until every thread is held.
    waitUntil([this] { return m_gates->holding.available() >= m_held; });
    m_gates->holding.acquire(m_held);
}

HeldThreadPool::~HeldThreadPool() { release(); }

void HeldThreadPool::release() {
    m_gates->released.release(m_held);
    m_held = 0;
    m_paintBlocker.reset();
}

bool postedEventIsServed() {
    bool served = false;
    QObject receiver;  // a timer not yet fired when this returns goes with it
    QTimer::singleShot(0, &receiver, [&served] { served = true; });
    return waitUntil([&served] { return served; }, 10000);
}

}  // namespace velmora::test
