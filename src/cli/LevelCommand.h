#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli level [1|2|3|7|35]: shows or sets the erasure level.
int runLevelCommand(QStringList args);

}  // namespace velmora::cli
