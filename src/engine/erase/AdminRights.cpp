#include "engine/erase/AdminRights.h"

#include "engine/platform/NativePath.h"

namespace velmora {

AdminRights::AdminRights(const Messages& messages) : m_messages(messages) {}

AdminRights::~AdminRights() { freeAuthorization(); }

bool AdminRights::fileSystemRepresentation(const QString& path, QByteArray* representation) {
    // At least 260 bytes, as the system's own path buffers; longer paths get their length.
    const qsizetype capacity = qMax<qsizetype>(path.size(), 260);
    const QByteArray encoded = nativePath(path);
    if (encoded.isEmpty() || encoded.size() > capacity) return false;
    *representation = encoded;
    return true;
}

}  // namespace velmora
