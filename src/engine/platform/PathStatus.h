#pragma once

#include <QByteArray>
#include <QString>
#include <sys/stat.h>

namespace velmora {

// lstat() for a path of any length: the item itself (a final link is not followed),
// reached folder by folder when the path is longer than the system's limit. 0, or -1
// with errno.
int statWithoutFollowing(const QByteArray& path, struct stat* status);

// Whether there is an item at the path (a link counts, dangling or not). The path is
// in the lossless form of pathFromNative.
bool itemExists(const QString& path);

}  // namespace velmora
