#pragma once

#include <QString>
#include <functional>

class QObject;
class QUrl;

namespace velmora::DesktopOpen {

// Hands a file to the desktop's default application, or shows a folder in the file
// manager, through the desktop's opener (xdg-open; /usr/bin/open on the macOS layout),
// run from an argument list. `failed` is called, on the owner's thread, when nothing
// answered: the opener could not be started or ended with an error. An opener still
// running after a few seconds has handed the item on and counts as an answer.
void openUrl(QObject* owner, const QUrl& url, const std::function<void()>& failed);
// Shows the item selected in its folder where the opener can (macOS), else opens the folder.
void reveal(QObject* owner, const QString& path, const QUrl& folderUrl, const std::function<void()>& failed);

}  // namespace velmora::DesktopOpen
