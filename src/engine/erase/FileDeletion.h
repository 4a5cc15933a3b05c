#pragma once

#include <QString>

namespace velmora::FileDeletion {

// Whether the current process may delete the item: its folder must be writable
// and searchable, and a sticky folder also requires owning the item or the folder.
// The item itself need not exist.
bool isDeletableFileAtPath(const QString& path);

// The ordinary delete: a file or link is unlinked, a folder removed with all its
// contents (links inside are removed, never followed). False when anything stays.
bool removeItemAtPath(const QString& path);

}  // namespace velmora::FileDeletion
