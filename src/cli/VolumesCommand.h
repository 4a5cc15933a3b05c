#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QStringList>
#include <optional>

namespace velmora::cli {

// velmora-cli volumes [--json]: the mounted volumes as the erase screens list them.
int runVolumesCommand(QStringList args);

// The listed volume an argument names: its mount point, its device node or its
// name. Empty, with *error set, when none or several match.
std::optional<VolumeObj> volumeForArgument(const QString& argument, QString* error);

}  // namespace velmora::cli
