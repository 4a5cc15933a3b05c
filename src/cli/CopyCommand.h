#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli copy [--yes] [--verify] [--json] SOURCE DEST [--only PATH...]: copies all
// of a volume or folder (or the items --only picks under it) into a new dated folder on
// another volume or in another folder.
int runCopyCommand(QStringList args);

}  // namespace velmora::cli
