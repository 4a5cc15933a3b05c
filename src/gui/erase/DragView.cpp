#include "gui/erase/DragView.h"

#include "gui/widgets/Style.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrl>

namespace velmora {

DragView::DragView(QWidget* parent) : QWidget(parent) { setAcceptDrops(true); }

QStringList DragView::droppedPaths(const QMimeData* data) {
    QStringList paths;
    if (!data || !data->hasUrls()) return paths;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile()) paths.append(url.toLocalFile());
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
