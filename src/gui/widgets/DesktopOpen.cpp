#include "gui/widgets/DesktopOpen.h"

#include "engine/platform/PathStatus.h"
#include "engine/platform/StandardPaths.h"

#include <QProcess>
#include <QTimer>
#include <QUrl>
#include <memory>

namespace velmora::DesktopOpen {
namespace {

constexpr int kAnswerWaitMs = 8000;

bool usesMacOpener() { return StandardPaths::layout() == StandardPaths::Layout::MacOS && itemExists("/usr/bin/open"); }

void run(QObject* owner, const QString& program, const QStringList& arguments, const std::function<void()>& failed) {
    auto* opener = new QProcess(owner);
    opener->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    opener->setStandardOutputFile(QProcess::nullDevice());
    auto answered = std::make_shared<bool>(false);
    auto settle = [answered, failed](bool ok) {
        if (*answered) return;
        *answered = true;
        if (!ok) failed();
    };
    QObject::connect(opener, &QProcess::errorOccurred, owner, [opener, settle](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        settle(false);
        opener->deleteLater();
    });
    QObject::connect(opener, &QProcess::finished, owner, [opener, settle](int exitCode, QProcess::ExitStatus status) {
        settle(status == QProcess::NormalExit && exitCode == 0);
        opener->deleteLater();
    });
    QTimer::singleShot(kAnswerWaitMs, owner, [settle] { settle(true); });
    opener->start(program, arguments);
}

}  // namespace

void openUrl(QObject* owner, const QUrl& url, const std::function<void()>& failed) {
    run(owner, usesMacOpener() ? "/usr/bin/open" : "xdg-open", {QString::fromLatin1(url.toEncoded())}, failed);
}

void reveal(QObject* owner, const QString& path, const QUrl& folderUrl, const std::function<void()>& failed) {
    if (usesMacOpener())
        run(owner, "/usr/bin/open", {"-R", path}, failed);
    else
        run(owner, "xdg-open", {QString::fromLatin1(folderUrl.toEncoded())}, failed);
}

}  // namespace velmora::DesktopOpen
