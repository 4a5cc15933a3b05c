#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QStringList>
#include <optional>

namespace velmora::cli {

// velmora-cli volumes [--json]: the mounted volumes as the erase screens list them.
int runVolumesCommand(QStringList args);

// The one VOLUME operand of a command (its flags already taken out). Prints the
// usage or the error and answers empty when the arguments name no single volume.
std::optional<VolumeObj> volumeOperand(const QStringList& args, const char* usage);

}  // namespace velmora::cli
