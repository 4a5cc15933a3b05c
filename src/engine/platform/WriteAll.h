#pragma once

#include <QByteArray>

namespace velmora {

// Writes all of the bytes to the descriptor, resuming after interruptions and short
// writes. 0 on success, else the errno of the failure; a write that takes nothing
// counts as EIO.
int writeAll(int fd, const char* data, qsizetype size);
inline int writeAll(int fd, const QByteArray& bytes) { return writeAll(fd, bytes.constData(), bytes.size()); }

}  // namespace velmora
