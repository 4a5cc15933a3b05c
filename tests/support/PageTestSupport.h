#pragma once

#include <functional>

class QMimeData;
class QPushButton;
class QWidget;
// What the page tests share: the look the pages are laid out for, and serving the
// event loop while a page or the engine behind it works.
namespace velmora {
class MainWindowController;
}

namespace velmora::test {

// A 12-point application font and the product's style, so that layout checks and
// screenshots measure the pages as users see them.
void usePageFontAndStyle();

// Serves the event loop until the condition holds; false after the timeout.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs = 60000);

// Serves the event loop for a while (animations, deferred deletes).
void serveEventsFor(int ms);

// The "Stop and Quit" button of the question the window asks when it is closed during a
// job; null while no such question is open.
QPushButton* stopAndQuitButton(const MainWindowController& window);

// Whether every sidebar entry is disabled, as while a page runs a job.
bool sidebarLocked(const MainWindowController& window);

// Drags the data over the widget and drops it there, as the window system delivers it:
// the drop reaches only a widget that accepted the drag. Answers whether it was accepted.
bool dragAndDrop(QWidget* target, const QMimeData* data);

// Closes the window as the red button does while a job runs and answers "Stop and Quit";
// false when no job runs or the window did not ask.
bool quitDuringJob(MainWindowController& window);

}  // namespace velmora::test
