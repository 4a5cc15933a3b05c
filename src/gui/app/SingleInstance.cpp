#include "gui/app/SingleInstance.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

namespace velmora {

SingleInstance::SingleInstance(const QString& bundleIdentifier, QObject* parent)
    : QObject(parent), m_serverName(QString("%1-%2").arg(bundleIdentifier).arg(getuid())) {}

bool SingleInstance::checkAppDuplicateAndBringToFront() {
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (socket.waitForConnected(500)) {
        socket.write("activate\n");
        socket.waitForBytesWritten(1000);
        socket.disconnectFromServer();
        return true;
    }
    // Nobody answered: a socket file left by a crashed instance is stale.
    QLocalServer::removeServer(m_serverName);
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    m_server->listen(m_serverName);
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* client = m_server->nextPendingConnection()) {
            connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
            emit activationRequested();
        }
    });
    return false;
}

}  // namespace velmora
