#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

namespace velmora::test {

// A small HTTP/1.1 server on 127.0.0.1 (a free port) that runs in a thread of its own,
// so code under test may block on it, or a child process may call it, while the test
// waits. It serves the bodies it was given by path (404 for any other path), answers
// each request once and closes the connection, and counts the requests it received.
class LocalHttpServer {
public:
    LocalHttpServer();
    ~LocalHttpServer();
    LocalHttpServer(const LocalHttpServer&) = delete;
    LocalHttpServer& operator=(const LocalHttpServer&) = delete;

    quint16 port() const;
    QString url(const QString& path) const;  // "http://127.0.0.1:PORT" + path
    void serve(const QString& path, const QByteArray& body, int status = 200);
    void redirect(const QString& path, const QString& location);  // 302
    int requestCount() const;
    int requestCount(const QString& path) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// An address on this machine where nothing listens (a port just released).
QString unreachableUrl(const QString& path);

}  // namespace velmora::test
