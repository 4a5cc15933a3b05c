#include "engine/erase/AdminRights.h"

#include "engine/platform/LogCategories.h"

#ifdef Q_OS_MACOS

#include <QDebug>
#include <Security/AuthorizationDB.h>
#include <Security/Security.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/wait.h>

namespace velmora {
namespace {

constexpr const char* kAdminRight = "system.privilege.admin";

OSStatus copyAdminRight(AuthorizationRef authorization, AuthorizationFlags flags) {
    AuthorizationItem item = {kAdminRight, 0, nullptr, 0};
    AuthorizationRights rights = {1, &item};
    return AuthorizationCopyRights(authorization, &rights, kAuthorizationEmptyEnvironment, flags, nullptr);
}

}  // namespace

bool AdminRights::allocAuthorization() {
    if (m_held) return true;
    m_held = true;
    OSStatus status = AuthorizationCreate(nullptr, kAuthorizationEmptyEnvironment, kAuthorizationFlagDefaults, &m_authorization);
    if (status != errAuthorizationSuccess) {
        qCWarning(lcErase, m_messages.createInitial, int(status));
        freeAuthorization();
        return false;
    }
    // The system asks for an administrator's password here.
    status = copyAdminRight(m_authorization, kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights |
                                                 kAuthorizationFlagPreAuthorize);
    if (status != errAuthorizationSuccess) {
        qCWarning(lcErase, m_messages.copyRights, int(status));
        freeAuthorization();
        return false;
    }
    status = AuthorizationMakeExternalForm(m_authorization, &m_externalForm);
    if (status != errAuthorizationSuccess) {
        qCWarning(lcErase, m_messages.makeExternalForm, int(status));
        freeAuthorization();
        return false;
    }
    return true;
}

AuthorizationRef AdminRights::copyAuthorization() {
    if (!m_held) return nullptr;
    AuthorizationRef authorization = nullptr;
    OSStatus status = AuthorizationCreateFromExternalForm(&m_externalForm, &authorization);
    if (status != errAuthorizationSuccess) {
        qCWarning(lcErase, m_messages.createFromExternalForm, int(status));
        return authorization;
    }
    status = copyAdminRight(authorization, kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights);
    if (status != errAuthorizationSuccess) qCWarning(lcErase, m_messages.copyRecreatedRights, int(status));
    CFDictionaryRef definition = nullptr;
    status = AuthorizationRightGet(kAdminRight, &definition);
    if (status != errAuthorizationSuccess) qCWarning(lcErase, m_messages.getRights, int(status));
    if (definition) CFRelease(definition);
    return authorization;
}

void AdminRights::freeAuthorization() {
    if (!m_held) return;
    if (m_authorization) {
        const OSStatus status = AuthorizationFree(m_authorization, kAuthorizationFlagDefaults);
        if (status != errAuthorizationSuccess) qCWarning(lcErase, m_messages.free, int(status));
    }
    m_authorization = nullptr;
    m_held = false;
    std::memset(&m_externalForm, 0, sizeof m_externalForm);
}

bool AdminRights::removeRecursively(const QString& path) {
    QByteArray representation;
    if (!fileSystemRepresentation(path, &representation)) return false;
    AuthorizationRef authorization = copyAuthorization();
    char options[] = "-rf";
    char* arguments[] = {options, representation.data(), nullptr};
    FILE* output = nullptr;
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    const OSStatus status = AuthorizationExecuteWithPrivileges(authorization, "/bin/rm", kAuthorizationFlagDefaults, arguments, &output);
#pragma clang diagnostic pop
    if (authorization) AuthorizationFree(authorization, kAuthorizationFlagDefaults);
    if (status != errAuthorizationSuccess) return false;
    char buffer[128];
    const size_t printed = output ? std::fread(buffer, 1, sizeof buffer, output) : 0;
    if (output) std::fclose(output);
    // The privileged tool is not our direct child, so any child's end is awaited.
    int childStatus = 0;
    while (wait(&childStatus) < 0 && errno == EINTR) {}
    return printed == 0;
}

}  // namespace velmora

#endif
