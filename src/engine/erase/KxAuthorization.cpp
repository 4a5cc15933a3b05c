#include "engine/erase/KxAuthorization.h"

#include "engine/erase/FileDeletion.h"
#include "engine/platform/LogCategories.h"

#include <QDebug>
#include <cerrno>

#ifdef Q_OS_MACOS
#include <ServiceManagement/ServiceManagement.h>
#endif

namespace velmora {
namespace {

const AdminRights::Messages kMessages = {
    "Error Creating Initial Authorization: %d",
    "Copy Rights failed: %d",
    "Make ExternalForm failed: %d",
    "Creat Ret failed: %d",
    "Copy Rights failed: %d",
    "Get Rights failed: %d",
    "Free Rights failed: %d",
};

}  // namespace

KxAuthorization::KxAuthorization() : m_rights(kMessages) {}

KxAuthorization* KxAuthorization::shareKxAuthorization() {
    // Created on first use, from whichever thread asks first; lives for the process.
    static KxAuthorization shared;
    return &shared;
}

bool KxAuthorization::allocAuthorization() { return m_rights.allocAuthorization(); }

void KxAuthorization::freeAuthorization() { m_rights.freeAuthorization(); }

bool KxAuthorization::removeItemAtPath(const QString& path) {
    // Converted before the rights are asked for, so an unusable path never prompts.
    QByteArray representation;
    if (!AdminRights::fileSystemRepresentation(path, &representation)) return false;
    KxAuthorization* shared = shareKxAuthorization();
    if (!shared->allocAuthorization()) return false;
    return shared->m_rights.removeRecursively(path);
}

bool KxAuthorization::synFastRemovePath(const QString& path) {
    // The owner's write permission is what removing a folder's contents needs; nothing wider.
    if (!FileDeletion::isDeletableFileAtPath(path) && !FileDeletion::addOwnerWrite(path))
        qCWarning(lcErase, "Set deletable attributed failed: %s", qUtf8Printable(qt_error_string(errno)));
    if (FileDeletion::removeItemAtPath(path)) return true;
    return removeItemAtPath(path);
}

#ifdef Q_OS_MACOS

AuthorizationRef KxAuthorization::getAuthorizationRet() { return m_rights.copyAuthorization(); }

bool KxAuthorization::blessHelperWithLabel(const QString& label, QString* error) {
    if (m_helperBlessed) return true;
    AuthorizationItem item = {kSMRightBlessPrivilegedHelper, 0, nullptr, 0};
    AuthorizationRights rights = {1, &item};
    AuthorizationRef authorization = nullptr;
    const OSStatus status = AuthorizationCreate(&rights, kAuthorizationEmptyEnvironment,
                                                kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights |
                                                    kAuthorizationFlagPreAuthorize,
                                                &authorization);
    if (status != errAuthorizationSuccess) {
        qCWarning(lcErase, "Failed to create AuthorizationRef. Error code: %d", int(status));
        return false;
    }
    CFStringRef jobLabel = label.toCFString();
    CFErrorRef blessError = nullptr;
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    m_helperBlessed = SMJobBless(kSMDomainSystemLaunchd, jobLabel, authorization, &blessError);
#pragma clang diagnostic pop
    CFRelease(jobLabel);
    if (blessError) {
        if (error) {
            CFStringRef description = CFErrorCopyDescription(blessError);
            *error = QString::fromCFString(description);
            CFRelease(description);
        }
        CFRelease(blessError);
    }
    AuthorizationFree(authorization, kAuthorizationFlagDefaults);
    return m_helperBlessed;
}

#endif

}  // namespace velmora
