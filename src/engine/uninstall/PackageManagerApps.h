#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <QStringList>

namespace velmora::PackageManagerApps {

// Flatpak and Snap applications of the Linux layout, from their tools' listings (found
// on PATH; none when a tool is missing). Each record's path is its install folder.
AMAppItemList flatpakApplications();
AMAppItemList snapApplications();
// The listings' parsers, for the recorded outputs of the tests.
AMAppItemList parseFlatpakList(const QByteArray& output);
AMAppItemList parseSnapList(const QByteArray& output);

// Whether `flatpak ps` lists the Flatpak application as running.
bool isFlatpakRunning(const QString& applicationId);

// The argument list that removes a manager's application ("flatpak uninstall --user
// --noninteractive ID", "snap remove NAME"); empty for other records.
QStringList removalArguments(const AMAppItem& item);
// Runs it (through pkexec for a Snap or a system Flatpak when not root); true when the
// tool reported success and the install folder is gone, else false with the reason.
bool removeApplication(const AMAppItem& item, QString* reason);

}  // namespace velmora::PackageManagerApps
