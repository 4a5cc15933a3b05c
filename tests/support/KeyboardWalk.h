#pragma once

#include "support/LayoutCheck.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

// Driving a page from the keyboard only, as the keyboard walks of the page tests do.
namespace keyboardwalk {

inline QWidget* focused() { return QApplication::focusWidget(); }

// One key to whatever has the focus (or the active window when nothing has it).
inline void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* target = focused() ? focused() : QApplication::activeWindow();
    if (target) QTest::keyClick(target, Qt::Key(key), modifiers);
}

// Presses Tab until `target` has the focus; false when it is not reached, or when a
// stop on the way is a control the user cannot see. The target's window is made active
// first, as the window manager does when a panel over it closes. The limit leaves room
// for pages that list every mounted volume (loop volumes of other tests among them).
inline bool tabTo(QWidget* target, int limit = 100) {
    QWidget* window = target->window();
    if (QApplication::activeWindow() != window) {
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window)) return false;
    }
    for (int step = 0; step < limit && focused() != target; ++step) {
        press(Qt::Key_Tab);
        QWidget* now = focused();
        if (!now || !now->isVisible() || layoutcheck::visiblePart(now, now->window()).isEmpty()) {
            qWarning("Tab stopped on a control the user cannot see: %s %s", now ? now->metaObject()->className() : "nothing", now ? qPrintable(now->objectName()) : "");
            return false;
        }
    }
    return focused() == target;
}

}  // namespace keyboardwalk
