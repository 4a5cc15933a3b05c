#pragma once

#include "engine/erase/AdminRights.h"

#include <QString>

namespace velmora {

// The process-wide holder of administrator rights, with a privileged recursive
// delete and a fast delete that falls back to it (used by the duplicate finder).
// Rights, once granted, stay held until freeAuthorization.
class KxAuthorization {
public:
    static KxAuthorization* shareKxAuthorization();

    bool allocAuthorization();
    void freeAuthorization();
#ifdef Q_OS_MACOS
    // A fresh reference for the held rights, or null; the caller frees it.
    AuthorizationRef getAuthorizationRet();
    // Installs a privileged helper job under the label; the answer is cached.
    bool blessHelperWithLabel(const QString& label, QString* error);
#endif

    // Removes the item with all its contents with administrator rights (asked for
    // when not held yet); see AdminRights::removeRecursively.
    static bool removeItemAtPath(const QString& path);
    // The ordinary delete, with the owner's write permission added first when needed,
    // then the privileged one.
    bool synFastRemovePath(const QString& path);

private:
    KxAuthorization();

    AdminRights m_rights;
#ifdef Q_OS_MACOS
    bool m_helperBlessed = false;
#endif
};

}  // namespace velmora
