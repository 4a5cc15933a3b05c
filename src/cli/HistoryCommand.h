#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli history: lists, deletes, clears and exports the erasure history.
int runHistoryCommand(QStringList args);

}  // namespace velmora::cli
