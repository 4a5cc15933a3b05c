#pragma once

#include <QByteArray>
#include <optional>
#include <sys/types.h>

namespace velmora::TreeRemoval {

// What an item is, whatever its path: its file system and its inode.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const Identity&) const = default;
};

// The identity of the item itself at the path (a link is the link), none when it
// cannot be read.
std::optional<Identity> identityOf(const QByteArray& path);

// The path with its folder resolved once (realpath) and its last component kept as it
// is, so a chosen link stays the link. The path unchanged when the folder cannot be
// resolved.
QByteArray withResolvedFolder(const QByteArray& path);

// Empties the open folder the same way (path names it in the reasons). Answers an
// empty text on success, else the first reason something stayed.
QByteArray removeContents(int folderFd, const QByteArray& path);

// Removes the item at the path, a folder with everything in it, through folder
// descriptors: no link on the way to it or inside it is followed (links inside are
// removed as links), and nothing mounted inside a folder is entered (it is reported
// and left). With `expected`, only the item of that identity is removed. Answers an
// empty text on success, else why something is left.
QByteArray remove(const QByteArray& path, const std::optional<Identity>& expected = std::nullopt);

}  // namespace velmora::TreeRemoval
