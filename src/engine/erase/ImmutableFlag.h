#pragma once

#include <QString>

namespace velmora::ImmutableFlag {

// The immutable flag forbids any change to a file, even by its owner, so it must
// be cleared before the secure-remove tool can overwrite and unlink the file.
// macOS: the user-immutable flag (UF_IMMUTABLE). Linux: FS_IMMUTABLE_FL, which
// only a process with CAP_LINUX_IMMUTABLE (root) may change.
bool isSet(const QString& path);
// Clears the flag; false when it could not be cleared.
bool clear(const QString& path);

}  // namespace velmora::ImmutableFlag
