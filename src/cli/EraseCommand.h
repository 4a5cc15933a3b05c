#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli erase [--yes] PATH...: erases files and folders beyond recovery at
// the current level, as the "Erase Files" page does, and records the run in the
// history. Exit 0 when every path is gone, 1 otherwise, 2 for refused arguments.
int runEraseCommand(QStringList args);

}  // namespace velmora::cli
