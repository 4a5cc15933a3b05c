#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli erase-drive [--yes] VOLUME: reformats a volume and overwrites all of it.
int runEraseDriveCommand(QStringList args);

}  // namespace velmora::cli
