#pragma once

#include <QStringList>
#include <functional>

namespace velmora {
class FreeSpaceWipe;
}

namespace velmora::cli {

// velmora-cli wipe-free [--yes] VOLUME: overwrites the free space of a volume.
int runWipeFreeCommand(QStringList args);

// How a wipe run ended.
struct WipeOutcome {
    bool succeeded = false;
    QString text;  // the end text
};

// Runs a wipe in an event loop with a progress bar until its end step (every run
// reaches it); `start` begins the run. Ctrl-C cancels the run the way the Cancel
// button does.
WipeOutcome runWipeUntilEnd(FreeSpaceWipe& wipe, const QString& title, const std::function<void()>& start);

}  // namespace velmora::cli
