#pragma once

#include "engine/erase/AdminRights.h"

#include <QFuture>
#include <QList>
#include <QObject>
#include <QUrl>

namespace velmora {

// Deletes a batch of items in the background (the uninstaller's removal): each
// item by the ordinary delete, falling back to a privileged delete. Rights are
// asked for at most once and held until the executor is destroyed, so a batch
// with many protected items prompts once. Signals are sent from the background
// thread. One batch at a time.
class AsMDeleteExecutor : public QObject {
    Q_OBJECT

public:
    explicit AsMDeleteExecutor(QObject* parent = nullptr);
    ~AsMDeleteExecutor() override;   // waits for a running batch

    // Returns at once; the items are deleted in order on the global thread pool.
    void executeDelete(const QList<QUrl>& urls);

    bool removeTrahFile(const QUrl& url);
    bool authDeleteAtPath(const QString& path);
    bool allocAuthorization();
    void freeAuthorization();
#ifdef Q_OS_MACOS
    // A fresh reference for the held rights, or null; the caller frees it.
    AuthorizationRef authorizationRef();
#endif

signals:
    void deleteRelatedFile(const QUrl& url);
    void deleteRelatedFileFail(const QUrl& url);

private:
    AdminRights m_rights;
    QFuture<void> m_batch;
};

}  // namespace velmora
