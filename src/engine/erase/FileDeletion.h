#pragma once

#include <QString>

namespace velmora::FileDeletion {

// Whether the current process may delete the item: its folder must be writable
// and searchable, and a sticky folder also requires owning the item or the folder.
// The item itself need not exist.
bool isDeletableFileAtPath(const QString& path);

// The ordinary delete: a file or link is unlinked, a folder removed with all its
// contents. The path's folder is resolved once; from there on nothing is followed:
// links are removed as links and mounts inside a folder are left. False when
// anything stays.
bool removeItemAtPath(const QString& path);

// Gives the item's owner the write permission, which is what deleting a folder's
// contents needs, and nothing more. Never follows a link (a link is refused), and
// never opens other permissions.
bool addOwnerWrite(const QString& path);

}  // namespace velmora::FileDeletion
