#include "gui/widgets/FileUrls.h"

#include "engine/platform/NativePath.h"

#include <QMimeData>

namespace velmora {

namespace {

// The path of one "file:" URL of this machine, as bytes; empty for anything else.
QByteArray localPathOf(const QByteArray& uri) {
    if (!uri.toLower().startsWith("file:")) return {};
    QByteArray rest = uri.mid(5);
    if (rest.startsWith("//")) {
        const qsizetype pathStart = rest.indexOf('/', 2);
        if (pathStart < 0) return {};
        const QByteArray host = rest.mid(2, pathStart - 2);
        if (!host.isEmpty() && host.toLower() != "localhost") return {};
        rest = rest.mid(pathStart);
    }
    // A name's own "?" and "#" arrive percent-encoded; a bare one starts a query or fragment.
    for (const char mark : {'?', '#'})
        if (const qsizetype at = rest.indexOf(mark); at >= 0) rest.truncate(at);
    if (!rest.startsWith('/')) return {};
    return QByteArray::fromPercentEncoding(rest);
}

}  // namespace

QUrl fileUrl(const QString& path) {
    return QUrl::fromEncoded("file://" + nativePath(path).toPercentEncoding("/"), QUrl::StrictMode);
}

QStringList droppedLocalPaths(const QMimeData* data) {
    QStringList paths;
    if (!data) return paths;
    const QByteArray list = data->data(QStringLiteral("text/uri-list"));
    for (const QByteArray& line : list.split('\n')) {
        const QByteArray uri = line.trimmed();
        if (uri.isEmpty() || uri.startsWith('#')) continue;  // "#" starts a comment line
        const QByteArray path = localPathOf(uri);
        // "%00" would cut the path short at the system call: no file has such a name.
        if (!path.isEmpty() && !path.contains('\0')) paths.append(pathFromNative(path));
    }
    // A platform that hands over URLs in another form: what Qt makes of them.
    if (list.isEmpty())
        for (const QUrl& url : data->urls())
            if (url.isLocalFile()) paths.append(url.toLocalFile());
    return paths;
}

}  // namespace velmora
