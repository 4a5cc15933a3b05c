#pragma once

#include "engine/inter/BrowerObj.h"

#include <QString>
#include <QStringList>

namespace velmora::BrowserFiles {

// The user's login name: the USER environment variable.
QString userName();
// A category's path: its urlStr with the user put in. On the macOS layout "%@" takes
// the login name (below the system root when that is redirected); on Linux it takes the
// home folder, which is not derived from the login name there.
QString pathWithUser(const QString& urlStr);

// The direct entries of a folder (names), sorted; none when the path is missing, " " or "".
QStringList getAllFileWithPath(const QString& path);
// The Firefox profile folder inside the folder given ("%@%@", the folder ends with "/"):
// the last entry, in name order, that ends with ".default"; "" when none does.
QString getDefaultWithPath(const QString& path);
// The Firefox profile in use below a profiles folder: on Linux the install's default
// of profiles.ini, else its profile marked Default=1, else getDefaultWithPath, else the
// last ".default-release" folder; on the macOS layout getDefaultWithPath. "" when none.
QString firefoxProfileWithPath(const QString& profilesFolder);
// Removes a file or a folder tree, the immutable flag cleared first, without following
// links. False with the reason in `failure` when something stays.
bool deleteFileWithPath(const QString& path, QString* failure = nullptr);
// A file's size, the sum of the files below a folder (links not followed), 0 if missing.
qint64 fileSizeWithPath(const QString& path);

// "%d Items", or "0 Item" for a count of 0.
QString countText(int count);

}  // namespace velmora::BrowserFiles
