#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <functional>

namespace velmora::AppWalkers {

using Found = std::function<void(const AMAppItemPtr&)>;

// The three tabs' walkers: each lists a root's entries in listing order and descends into
// every other folder without a depth limit, relative to folder descriptors, never through
// a link. A found bundle is not entered. Records are built with size "0KB".
// Applications: "app" bundles that are not the system's; on the Linux layout *.AppImage
// files, and in ~/Applications, ~/.local/opt and /opt folders that carry a .desktop launcher.
void applicationsInPath(const QString& root, const Found& found);
// Widgets: "wdgt" bundles, Apple's too; on the Linux layout each folder of an extension root.
void widgetsInPath(const QString& root, const Found& found);
// Plug-ins: bundles with a plug-in extension; on the Linux layout each entry of a root.
void pluginsInPath(const QString& root, const Found& found);

}  // namespace velmora::AppWalkers
