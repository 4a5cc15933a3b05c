// The shell: opening the window and switching to each page through the sidebar (the disk
// pages list the volumes as they open).
#include "GuiBench.h"
#include "gui/app/MainWindowController.h"

namespace velmora::bench {

void benchShell(BenchContext& context) {
    MainWindowController* window = nullptr;
    context.measure("Shell", "open the window", [&] {
        window = new MainWindowController;
        window->show();
    }, [&] { return window->isVisible() && window->isActiveWindow(); });

    const struct {
        int tag;
        const char* action;
    } switches[] = {{1, "switch to Erase Hard Drive"}, {2, "switch to Erase Free Space"}, {3, "switch to Disk Tool"},
                    {5, "switch to Internet Cleaner"}, {6, "switch to Uninstaller"}, {7, "switch to Duplicate Finder"},
                    {0, "switch to Erase Files"}};
    for (const auto& pageSwitch : switches) {
        QWidget* page = window->allBaseViewArr().at(MainWindowController::slotForTag(pageSwitch.tag));
        context.measure("Shell", pageSwitch.action, [&] { window->mouseClickAction(pageSwitch.tag); },
                        [&] { return page->isVisible() && page->y() == 0; });
    }
    delete window;
}

}  // namespace velmora::bench
