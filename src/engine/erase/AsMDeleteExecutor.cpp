#include "engine/erase/AsMDeleteExecutor.h"

#include "engine/erase/FileDeletion.h"
#include "engine/platform/LogCategories.h"

#include <QDebug>
#include <QtConcurrent/QtConcurrentRun>

namespace velmora {
namespace {

const AdminRights::Messages kMessages = {
    "Error Creating Initial Authorization: %d",
    "Copy Rights Unsuccessful: %d",
    "Make ExternalForm Unsuccessful: %d",
    "Creat authorization failed: %d",
    "Copy authorization failed: %d",
    "Get authoriztion failed: %d",
    "Free authorization failed: %d",
};

}  // namespace

AsMDeleteExecutor::AsMDeleteExecutor(QObject* parent) : QObject(parent), m_rights(kMessages) {}

AsMDeleteExecutor::~AsMDeleteExecutor() { m_batch.waitForFinished(); }

void AsMDeleteExecutor::executeDelete(const QList<QUrl>& urls) {
    // The batch works on its own copy of the list.
    m_batch = QtConcurrent::run([this, urls] {
        for (const QUrl& url : urls) removeTrahFile(url);
    });
}

bool AsMDeleteExecutor::removeTrahFile(const QUrl& url) {
    const QString path = url.toLocalFile();
    // The owner's write permission is what removing a folder's contents needs; nothing wider.
    if (!FileDeletion::isDeletableFileAtPath(path)) FileDeletion::addOwnerWrite(path);
    if (FileDeletion::removeItemAtPath(path)) {
        emit deleteRelatedFile(url);
        return true;
    }
    if (!allocAuthorization()) {
        qCWarning(lcErase, "Alloc authorization failed!!!");
        emit deleteRelatedFileFail(url);
        return false;
    }
    if (!authDeleteAtPath(path)) {
        emit deleteRelatedFileFail(url);
        qCWarning(lcErase, "Clean file by authorization failed: %s", qUtf8Printable(path));
        return false;
    }
    emit deleteRelatedFile(url);
    return true;
}

bool AsMDeleteExecutor::authDeleteAtPath(const QString& path) { return m_rights.removeRecursively(path); }

bool AsMDeleteExecutor::allocAuthorization() { return m_rights.allocAuthorization(); }

void AsMDeleteExecutor::freeAuthorization() { m_rights.freeAuthorization(); }

#ifdef Q_OS_MACOS
AuthorizationRef AsMDeleteExecutor::authorizationRef() { return m_rights.copyAuthorization(); }
#endif

}  // namespace velmora
