#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli dupes [--hidden] [--system] [--json] [--delete [--yes]] DIR:
// lists the duplicate groups below DIR, the copy to keep last in each, and
// with --delete removes every other copy.
int runDupesCommand(QStringList args);

}  // namespace velmora::cli
