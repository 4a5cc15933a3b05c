#pragma once

#include "engine/inter/BrowerObj.h"

#include <QList>
#include <QString>

namespace velmora {

struct RunningBrowser {
    QString name;  // the browser entry's name, for the close dialog
    qint64 pid = 0;
};

namespace RunningBrowsers {

// Before scanning: the current user's processes of every browser known to the platform.
// macOS layout: an application whose name contains "Safari" or is "Google Chrome",
// "Opera" or "Firefox"; Linux: a process whose executable (/proc/PID/exe) or comm
// matches a program of the catalogue.
QList<RunningBrowser> checkOpenBrower();
// Before cleaning: the processes of the ticked browser entries (each entry's programs).
QList<RunningBrowser> checkOpenBrower(const BrowserArr& browserArr);
// The names joined with ",", as the close dialog shows them.
QString joinedNames(const QList<RunningBrowser>& running);
// Ends each process with "/bin/kill PID" (an argument list, no shell). False with the
// reason when a kill failed or a process still runs two seconds later.
bool closeBrowsers(const QList<RunningBrowser>& running, QString* failure = nullptr);

}  // namespace RunningBrowsers
}  // namespace velmora
