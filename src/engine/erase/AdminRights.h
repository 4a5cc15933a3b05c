#pragma once

#include <QString>
#include <memory>

#ifdef Q_OS_MACOS
#include <Security/Authorization.h>
#else
#include "engine/erase/PrivilegedHelperClient.h"
#endif

namespace velmora {

// Administrator rights of one holder (the shared KxAuthorization, or one
// AsMDeleteExecutor) and the privileged recursive delete they allow.
// macOS: an authorization reference for "system.privilege.admin", kept in
// external form. Linux: as root nothing is needed and removals run directly;
// otherwise one privileged helper started through pkexec, so the password is
// asked once per holder. One thread at a time may use a holder.
class AdminRights {
public:
    // The holder's log texts for each step that can fail.
    struct Messages {
        const char* createInitial;
        const char* copyRights;
        const char* makeExternalForm;
        const char* createFromExternalForm;
        const char* copyRecreatedRights;
        const char* getRights;
        const char* free;
    };

    explicit AdminRights(const Messages& messages);
    ~AdminRights();
    AdminRights(const AdminRights&) = delete;
    AdminRights& operator=(const AdminRights&) = delete;

    // Asks for the rights unless they are held (the password prompt happens here).
    bool allocAuthorization();
    void freeAuthorization();
    bool isHeld() const { return m_held; }

    // Removes the item at the path with all its contents, with the held rights.
    // Linux: exactly the item found there now, through a walk that follows no link
    // and enters no mount inside it; macOS: "/bin/rm -rf PATH", true exactly when rm
    // printed nothing. The caller allocates the rights first.
    bool removeRecursively(const QString& path);

    // The path's file-system representation in a buffer of max(length, 260)
    // bytes; false when it does not fit.
    static bool fileSystemRepresentation(const QString& path, QByteArray* representation);

#ifdef Q_OS_MACOS
    // A fresh reference recreated from the external form, or null when no rights
    // are held; the caller frees it.
    AuthorizationRef copyAuthorization();
#endif

private:
    const Messages m_messages;
    bool m_held = false;
#ifdef Q_OS_MACOS
    AuthorizationRef m_authorization = nullptr;
    AuthorizationExternalForm m_externalForm{};
#else
    std::unique_ptr<PrivilegedHelperClient> m_helper;   // none when running as root
#endif
};

}  // namespace velmora
