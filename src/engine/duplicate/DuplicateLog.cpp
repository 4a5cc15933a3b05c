#include "engine/duplicate/DuplicateLog.h"

Q_LOGGING_CATEGORY(lcDuplicate, "velmora.duplicate", QtWarningMsg)
