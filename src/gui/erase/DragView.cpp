#include "gui/erase/DragView.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/Style.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QSvgRenderer>

namespace velmora {

DragView::DragView(QWidget* parent) : QWidget(parent) { setAcceptDrops(true); }

namespace {

// The path bytes of a local "file:" URI ("file:///path" or "file://localhost/path"),
// percent-decoded; empty for any other URI.
QByteArray localPathOf(const QByteArray& uri) {
    if (!uri.startsWith("file:")) return {};
    QByteArray rest = uri.mid(5);
    if (rest.startsWith("//")) {
        const qsizetype slash = rest.indexOf('/', 2);
        if (slash < 0) return {};
        const QByteArray host = rest.mid(2, slash - 2);
        if (!host.isEmpty() && host != "localhost") return {};
        rest = rest.mid(slash);
    }
    // A name's own "?" and "#" arrive percent-encoded; a bare one starts a query or fragment.
    for (const char mark : {'?', '#'})
        if (const qsizetype at = rest.indexOf(mark); at >= 0) rest.truncate(at);
    return rest.startsWith('/') ? QByteArray::fromPercentEncoding(rest) : QByteArray();
}

}  // namespace

QStringList DragView::droppedPaths(const QMimeData* data) {
    // Read from the raw list, where a name's bytes are percent-encoded as they are:
    // QMimeData::urls() decodes them as UTF-8 and turns a byte that is not text into
    // U+FFFD, which names no file.
    QStringList paths;
    if (!data || !data->hasUrls()) return paths;
    for (const QByteArray& line : data->data("text/uri-list").split('\n')) {
        const QByteArray uri = line.trimmed();
        if (uri.isEmpty() || uri.startsWith('#')) continue;  // "#" starts a comment line
        const QByteArray path = localPathOf(uri);
        // "%00" would cut the path short at the system call: no file has such a name.
        if (!path.isEmpty() && !path.contains('\0')) paths.append(pathFromNative(path));
    }
    return paths;
}

void DragView::setBorderImage(const QString& name) {
    m_borderImage = name;
    update();
}

void DragView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer border(Style::imagePath(m_borderImage));
    border.setAspectRatioMode(Qt::IgnoreAspectRatio);
    border.render(&painter, QRectF(rect()));
}

void DragView::dragEnterEvent(QDragEnterEvent* event) {
    if (droppedPaths(event->mimeData()).isEmpty()) return;
    setBorderImage("dashboder_drop");
    event->acceptProposedAction();
}

void DragView::dragLeaveEvent(QDragLeaveEvent*) { setBorderImage("dashboder"); }

void DragView::dropEvent(QDropEvent* event) {
    setBorderImage("dashboder");
    const QStringList paths = droppedPaths(event->mimeData());
    if (paths.isEmpty()) return;
    event->acceptProposedAction();
    emit viewDragAction(paths);
}

}  // namespace velmora
