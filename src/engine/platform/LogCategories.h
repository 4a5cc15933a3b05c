#pragma once

#include <QLoggingCategory>

// The diagnostic lines of the application, the CLI and the engine, one category per
// subsystem. All are silent by default (they never reach standard output, which
// carries the CLI's results); turn them on with, e.g.,
// QT_LOGGING_RULES="velmora.*=true" or "velmora.erase.info=true".
Q_DECLARE_LOGGING_CATEGORY(lcApp)        // velmora.app
Q_DECLARE_LOGGING_CATEGORY(lcErase)      // velmora.erase
Q_DECLARE_LOGGING_CATEGORY(lcHistory)    // velmora.history
Q_DECLARE_LOGGING_CATEGORY(lcVolumes)    // velmora.volumes
Q_DECLARE_LOGGING_CATEGORY(lcInter)      // velmora.inter
Q_DECLARE_LOGGING_CATEGORY(lcUninstall)  // velmora.uninstall
Q_DECLARE_LOGGING_CATEGORY(lcCopy)       // velmora.copy
Q_DECLARE_LOGGING_CATEGORY(lcPlatform)   // velmora.platform
