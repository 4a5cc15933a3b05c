#pragma once

#include <QString>

namespace velmora {

// Facts about the disk under a volume, found from any path on the volume.
// Linux reads sysfs; macOS asks the disk utility's "info -plist".

// The solid-state test: true when the disk holding the path does not rotate.
bool isSolidState(const QString& path);

// True when the disk holding the path has removable media.
bool isRemovableMedium(const QString& path);

}  // namespace velmora
