#include "engine/erase/AdminRights.h"

#include "engine/platform/LogCategories.h"

#ifndef Q_OS_MACOS

#include "engine/erase/PrivilegedHelper.h"

#include <QDebug>
#include <unistd.h>

namespace velmora {

bool AdminRights::allocAuthorization() {
    if (m_held) return true;
    if (geteuid() != 0) {
        auto helper = std::make_unique<PrivilegedHelperClient>();
        int exitStatus = 0;
        if (!helper->start(&exitStatus)) {
            qCWarning(lcErase, m_messages.copyRights, exitStatus);
            return false;
        }
        m_helper = std::move(helper);
    }
    m_held = true;
    return true;
}

void AdminRights::freeAuthorization() {
    if (!m_held) return;
    if (m_helper) {
        const int exitStatus = m_helper->stop();
        if (exitStatus != 0) qCWarning(lcErase, m_messages.free, exitStatus);
        m_helper.reset();
    }
    m_held = false;
}

bool AdminRights::removeRecursively(const QString& path) {
    QByteArray representation;
    if (!fileSystemRepresentation(path, &representation)) return false;
    if (!m_held) return false;
    // The item is pinned here, as this user sees it; the helper removes that item or nothing.
    const QByteArray resolved = TreeRemoval::withResolvedFolder(representation);
    const std::optional<TreeRemoval::Identity> identity = TreeRemoval::identityOf(resolved);
    if (!identity) return false;
    QByteArray failure;
    if (m_helper) {
        if (!m_helper->removeExactly(resolved, *identity, &failure)) return false;
    } else {
        // Root already: the same removal the helper would do, without a helper.
        failure = PrivilegedHelper::removeExactly(resolved, *identity);
    }
    if (!failure.isEmpty()) qCWarning(lcErase, "%s", failure.constData());
    return failure.isEmpty();
}

}  // namespace velmora

#endif
