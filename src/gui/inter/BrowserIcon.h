#pragma once

#include "engine/inter/BrowerObj.h"

#include <QIcon>

namespace velmora {

// The icon a browser row shows: the application's own icon where the system
// has one (the icon file of a macOS application; on Linux the icon named by
// the browser's .desktop entry, from the icon theme or as a file), else our
// artwork named by the entry, else the generic browser picture.
QIcon browserIcon(const BrowerObj& browser);

// Our artwork by name, or a null icon when there is no such picture.
QIcon artworkIcon(const QString& imageName);

}  // namespace velmora
