#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli apps [--json] [--tab applications|widgets|plugins]: what the uninstaller lists.
int runAppsCommand(QStringList args);
// velmora-cli related [--json] APP: the application's related files in the scanner's order,
// each with its size and whether it is pre-ticked.
int runRelatedCommand(QStringList args);
// velmora-cli uninstall [--yes] [--include-possible] [--json] APP...: removes the
// pre-ticked entries; exit 0 only when all of them were removed.
int runUninstallCommand(QStringList args);

}  // namespace velmora::cli
