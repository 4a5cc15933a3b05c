#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace velmora {

struct HttpReply {
    bool answered = false;  // a server sent an HTTP response (any status)
    int status = 0;
    QByteArray body;
    QString failure;        // why there is no usable body
    bool ok() const { return answered && status >= 200 && status < 300 && failure.isEmpty(); }
};

// One GET, synchronous, usable on any thread (it runs its own event loop). Cached data
// is never used. Redirects are followed, but never from HTTPS to plain HTTP. The whole
// request is given up after `timeoutMs`, and a body longer than `maxBytes` is refused.
// Only HTTPS addresses are fetched, and plain HTTP to this machine (local servers).
HttpReply httpGet(const QUrl& url, int timeoutMs, qint64 maxBytes);

// True for the addresses httpGet fetches.
bool isFetchableAddress(const QUrl& url);

// Makes every running and later httpGet of this process give up at once (at exit).
void abandonHttpGets();

}  // namespace velmora
