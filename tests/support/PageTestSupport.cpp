#include "support/PageTestSupport.h"

#include "gui/app/MainWindowController.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QPushButton>
#include <QThread>

namespace velmora::test {

void usePageFontAndStyle() {
    QFont font = QApplication::font();
    font.setPointSize(12);
    QApplication::setFont(font);
    Style::apply(*qApp);
}

bool waitUntil(const std::function<bool()>& condition, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(timeoutMs)) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
    return true;
}

void serveEventsFor(int ms) {
    QElapsedTimer clock;
    clock.start();
    while (!clock.hasExpired(ms)) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool sidebarLocked(const MainWindowController& window) {
    for (SidebarButton* button : window.allTypeButArr())
        if (button->isEnabled()) return false;
    return true;
}

bool dragAndDrop(QWidget* target, const QMimeData* data) {
    const QPoint where(target->width() / 2, qMin(20, target->height() / 2));
    QDragEnterEvent enter(where, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(QPointF(where), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    return true;
}

QPushButton* stopAndQuitButton(const MainWindowController& window) {
    if (!window.quitQuestion()) return nullptr;
    const QList<QPushButton*> buttons = window.quitQuestion()->findChildren<QPushButton*>();
    return !buttons.isEmpty() && buttons.last()->text() == "Stop and Quit" ? buttons.last() : nullptr;
}

bool quitDuringJob(MainWindowController& window) {
    if (!window.isJobRunning()) return false;
    window.requestQuit();
    QPushButton* stop = stopAndQuitButton(window);
    if (!stop) return false;
    stop->click();
    return true;
}

}  // namespace velmora::test
