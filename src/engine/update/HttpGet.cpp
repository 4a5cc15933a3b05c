#include "engine/update/HttpGet.h"

#include <QEventLoop>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <atomic>

namespace velmora {
namespace {

std::atomic<bool> g_abandoned{false};
constexpr int kAbandonPollMs = 100;

bool isLoopback(const QString& host) {
    if (host.compare("localhost", Qt::CaseInsensitive) == 0) return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

}  // namespace

bool isFetchableAddress(const QUrl& url) {
    if (!url.isValid() || url.host().isEmpty()) return false;
    if (url.scheme() == "https") return true;
    // The update list and the probe travel over HTTPS; plain HTTP is for servers on
    // this machine only (tests, a local mirror), where no one sits on the wire.
    return url.scheme() == "http" && isLoopback(url.host());
}

void abandonHttpGets() { g_abandoned.store(true, std::memory_order_relaxed); }

HttpReply httpGet(const QUrl& url, int timeoutMs, qint64 maxBytes) {
    HttpReply result;
    if (!isFetchableAddress(url)) {
        result.failure = QString("not an HTTPS address: %1").arg(url.toDisplayString());
        return result;
    }
    if (g_abandoned.load(std::memory_order_relaxed)) {
        result.failure = "abandoned";
        return result;
    }

    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    QNetworkReply* reply = manager.get(request);

    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QTimer abandonPoll;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(&deadline, &QTimer::timeout, reply, [&result, reply] {
        result.failure = "timed out";
        reply->abort();
    });
    QObject::connect(&abandonPoll, &QTimer::timeout, reply, [&result, reply] {
        if (!g_abandoned.load(std::memory_order_relaxed)) return;
        result.failure = "abandoned";
        reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [&result, reply, maxBytes](qint64 received, qint64 total) {
        if (received <= maxBytes && total <= maxBytes) return;
        result.failure = QString("the answer is longer than %1 bytes").arg(maxBytes);
        reply->abort();
    });
    deadline.start(timeoutMs);
    abandonPoll.start(kAbandonPollMs);
    if (!reply->isFinished()) loop.exec();

    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    result.answered = status.isValid();
    result.status = status.toInt();
    if (result.failure.isEmpty()) {
        result.body = reply->readAll();
        if (result.body.size() > maxBytes) result.failure = QString("the answer is longer than %1 bytes").arg(maxBytes);
        else if (reply->error() != QNetworkReply::NoError && !result.answered) result.failure = reply->errorString();
        else if (!result.ok()) result.failure = QString("HTTP status %1").arg(result.status);
    }
    delete reply;
    return result;
}

}  // namespace velmora
