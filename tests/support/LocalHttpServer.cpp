#include "support/LocalHttpServer.h"

#include <QHash>
#include <QMutex>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

namespace velmora::test {

struct Route {
    int status = 404;
    QByteArray body = "not found";
    QByteArray extraHeaders;
};

struct LocalHttpServer::State {
    QThread thread;
    QObject* anchor = nullptr;     // the context of calls into `thread`
    QTcpServer* server = nullptr;  // lives in `thread`
    QHash<QTcpSocket*, QByteArray> pending;  // touched in `thread` only
    quint16 port = 0;
    mutable QMutex mutex;
    QHash<QString, Route> routes;
    QHash<QString, int> counts;
    int total = 0;

    Route answerFor(const QString& path) {
        QMutexLocker lock(&mutex);
        ++total;
        ++counts[path];
        return routes.value(path);
    }

    void answer(QTcpSocket* socket) {
        QByteArray& request = pending[socket];
        request += socket->readAll();
        if (!request.contains("\r\n\r\n")) return;
        const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
        const QString path = requestLine.size() >= 2 ? QString::fromUtf8(requestLine.at(1)) : QString();
        const Route route = answerFor(path);
        socket->write("HTTP/1.1 " + QByteArray::number(route.status) + " X\r\nContent-Length: " +
                      QByteArray::number(route.body.size()) + "\r\nConnection: close\r\n" + route.extraHeaders +
                      "\r\n" + route.body);
        socket->disconnectFromHost();
    }
};

LocalHttpServer::LocalHttpServer() : m_state(std::make_unique<State>()) {
    State* state = m_state.get();
    state->anchor = new QObject;
    state->anchor->moveToThread(&state->thread);
    state->thread.start();
    QMetaObject::invokeMethod(
        state->anchor,
        [state] {
            state->server = new QTcpServer;
            state->server->listen(QHostAddress::LocalHost, 0);
            state->port = state->server->serverPort();
            QObject::connect(state->server, &QTcpServer::newConnection, state->server, [state] {
                while (QTcpSocket* socket = state->server->nextPendingConnection()) {
                    QObject::connect(socket, &QTcpSocket::readyRead, socket, [state, socket] { state->answer(socket); });
                    QObject::connect(socket, &QTcpSocket::disconnected, socket, [state, socket] {
                        state->pending.remove(socket);
                        socket->deleteLater();
                    });
                }
            });
        },
        Qt::BlockingQueuedConnection);
}

LocalHttpServer::~LocalHttpServer() {
    State* state = m_state.get();
    QMetaObject::invokeMethod(
        state->anchor,
        [state] {
            delete state->server;
            state->anchor->deleteLater();  // removed when the thread ends
        },
        Qt::BlockingQueuedConnection);
    state->thread.quit();
    state->thread.wait();
}

quint16 LocalHttpServer::port() const { return m_state->port; }

QString LocalHttpServer::url(const QString& path) const { return QString("http://127.0.0.1:%1%2").arg(port()).arg(path); }

void LocalHttpServer::serve(const QString& path, const QByteArray& body, int status) {
    QMutexLocker lock(&m_state->mutex);
    m_state->routes.insert(path, Route{status, body, {}});
}

void LocalHttpServer::redirect(const QString& path, const QString& location) {
    QMutexLocker lock(&m_state->mutex);
    m_state->routes.insert(path, Route{302, {}, "Location: " + location.toUtf8() + "\r\n"});
}

int LocalHttpServer::requestCount() const {
    QMutexLocker lock(&m_state->mutex);
    return m_state->total;
}

int LocalHttpServer::requestCount(const QString& path) const {
    QMutexLocker lock(&m_state->mutex);
    return m_state->counts.value(path);
}

QString unreachableUrl(const QString& path) {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close();
    return QString("http://127.0.0.1:%1%2").arg(port).arg(path);
}

}  // namespace velmora::test
