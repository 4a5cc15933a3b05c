#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <QStringList>

namespace velmora::RunningApplications {

// Whether a process of the current user runs the application: its executable is the
// application's file or lies inside its folder, or (macOS layout) it runs from a bundle
// with the application's identifier; a Flatpak application when `flatpak ps` lists it.
bool isRunning(const AMAppItem& application);

// The executables of the current user's processes, read from /proc once, so that many
// applications are checked against one reading.
QStringList runningExecutables();
bool isRunning(const AMAppItem& application, const QStringList& executables);

}  // namespace velmora::RunningApplications
