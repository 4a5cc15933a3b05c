#pragma once

#include <QStringList>
#include <QUrl>

class QMimeData;

namespace velmora {

// Local file URLs that keep a path's bytes. QUrl::fromLocalFile and toLocalFile go
// through UTF-8 and lose every byte of a name that is not text; these work on the
// file-system bytes (see NativePath.h) and their percent-encoding.

// A file: URL for the path, its bytes percent-encoded as they are.
QUrl fileUrl(const QString& path);

// The local paths of dropped items, in their order: read from the raw "text/uri-list"
// bytes and percent-decoded into bytes, so names that are not text arrive unchanged.
// Only file: URLs of this machine (no host, or "localhost") count.
QStringList droppedLocalPaths(const QMimeData* data);

}  // namespace velmora
