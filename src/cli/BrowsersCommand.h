#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli browsers [--json]: the installed browsers, their categories, tick states
// and shown values.
int runBrowsersCommand(QStringList args);

// velmora-cli clean-browsers [--yes] [--thorough] [--close] [BROWSER[/CATEGORY]...]:
// cleans the default ticks, or the browsers and categories named.
int runCleanBrowsersCommand(QStringList args);

}  // namespace velmora::cli
