#pragma once

#include <QLoggingCategory>

// The duplicate finder's log lines; silent unless enabled with
// QT_LOGGING_RULES="velmora.duplicate*=true".
Q_DECLARE_LOGGING_CATEGORY(lcDuplicate)
