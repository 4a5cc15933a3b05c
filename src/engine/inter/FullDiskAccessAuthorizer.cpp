#include "engine/inter/FullDiskAccessAuthorizer.h"

#include "engine/inter/BrowserFiles.h"
#include "engine/inter/CatalogueResource.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QOperatingSystemVersion>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

enum class Listing { Absent, Listable, Unreadable };

Listing probe(const QString& folder, QString* reason = nullptr) {
    const QByteArray native = nativePath(folder);
    struct stat info;
    if (::stat(native.constData(), &info) != 0 || !S_ISDIR(info.st_mode)) return Listing::Absent;
    DIR* listing = ::opendir(native.constData());
    if (!listing) {
        if (reason) *reason = QString::fromLocal8Bit(std::strerror(errno));
        return Listing::Unreadable;
    }
    ::closedir(listing);
    return Listing::Listable;
}

}  // namespace

FullDiskAccessAuthorizer& FullDiskAccessAuthorizer::sharedInstance() {
    static FullDiskAccessAuthorizer instance;
    return instance;
}

int FullDiskAccessAuthorizer::authorizationStatus() {
    m_unreadableFolder.clear();
    m_unreadableReason.clear();
    return StandardPaths::layout() == StandardPaths::Layout::MacOS ? macStatus() : linuxStatus();
}

int FullDiskAccessAuthorizer::getAuthorization() {
    const int status = authorizationStatus();
    return status == 1 || status == 2 ? status : 0;
}

int FullDiskAccessAuthorizer::macStatus() {
    const bool isSandboxed = qEnvironmentVariableIsSet("APP_SANDBOX_CONTAINER_ID");
    qCInfo(lcInter, "isSandboxed : %d", isSandboxed);
    QString userHomePath = StandardPaths::homeDir();
    if (isSandboxed) {
        const passwd* account = ::getpwuid(::getuid());
        Q_ASSERT_X(account, "FullDiskAccessAuthorizer", "no account for the user");
        if (account) userHomePath = pathFromNative(account->pw_dir);
    }
    if (!userHomePath.endsWith('/')) userHomePath += '/';
    const QString path = userHomePath + "Library/Safari";
    qCInfo(lcInter,
           "userHomePath : %s, path : %s", qPrintable(displayPath(userHomePath)), qPrintable(displayPath(path)));
    const QStringList paths = BrowserFiles::getAllFileWithPath(path);
    qCInfo(lcInter, "paths : %s", qPrintable(displayPath(paths.join(", "))));
    switch (probe(path, &m_unreadableReason)) {
    case Listing::Absent: return 0;
    case Listing::Listable: return 2;
    case Listing::Unreadable: m_unreadableFolder = path; return 1;
    }
    return 0;
}

int FullDiskAccessAuthorizer::linuxStatus() {
    for (const CatalogueResource::Programs& programs : CatalogueResource::browserPrograms()) {
        const QString folder = BrowserFiles::pathWithUser(programs.profileFormat);
        if (probe(folder, &m_unreadableReason) == Listing::Unreadable) {
            m_unreadableFolder = folder;
            return 1;
        }
    }
    return 2;
}

bool FullDiskAccessAuthorizer::needsPanel() {
    const int status = authorizationStatus();
    if (StandardPaths::layout() == StandardPaths::Layout::Linux) return status == 1;
    return status != 2 && systemVersion() >= 1014;
}

QString FullDiskAccessAuthorizer::settingsUrl() {
    if (StandardPaths::layout() == StandardPaths::Layout::Linux || systemVersion() < 1014) return {};
    return "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles";
}

int FullDiskAccessAuthorizer::systemVersion() {
    const QOperatingSystemVersion current = QOperatingSystemVersion::current();
    if (current.type() != QOperatingSystemVersion::MacOS) return 0;
    return current.majorVersion() * 100 + current.minorVersion();
}

}  // namespace velmora
