#pragma once

#include <QObject>

class QLocalServer;

namespace velmora {

// One running instance per user. The first instance listens on a per-user
// local socket; a later start connects, asks it to come forward, and learns
// that it must exit.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& bundleIdentifier, QObject* parent = nullptr);
    // True when another instance answered (it was asked to come forward);
    // otherwise this process becomes the instance others will find.
    bool checkAppDuplicateAndBringToFront();

signals:
    void activationRequested();

private:
    QString m_serverName;
    QLocalServer* m_server = nullptr;
};

}  // namespace velmora
