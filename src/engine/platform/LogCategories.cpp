#include "engine/platform/LogCategories.h"

// Critical is the lowest level on by default: debug, info and warning lines wait for a rule.
Q_LOGGING_CATEGORY(lcApp, "velmora.app", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcErase, "velmora.erase", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcHistory, "velmora.history", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcVolumes, "velmora.volumes", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcInter, "velmora.inter", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcUninstall, "velmora.uninstall", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcCopy, "velmora.copy", QtCriticalMsg)
Q_LOGGING_CATEGORY(lcPlatform, "velmora.platform", QtCriticalMsg)
