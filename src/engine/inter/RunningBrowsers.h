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

// The current user's processes that belong to the given browsers (all of them, or the
// ticked ones only, as before cleaning). macOS layout: the application names of the
// Part (a name containing "Safari", or "Google Chrome", "Opera", "Firefox"); Linux:
// a process whose executable (/proc/PID/exe) or comm matches a program of the entry.
QList<RunningBrowser> checkOpenBrower(const BrowserArr& browserArr, bool tickedOnly);
// The names joined with ",", as the close dialog shows them.
QString joinedNames(const QList<RunningBrowser>& running);
// Ends each process with "/bin/kill PID" (an argument list, no shell). False with the
// reason when a kill failed or a process still runs two seconds later.
bool closeBrowsers(const QList<RunningBrowser>& running, QString* failure = nullptr);

}  // namespace RunningBrowsers
}  // namespace velmora
