#include "gui/erase/DragView.h"

#include "gui/widgets/FileUrls.h"
#include "gui/widgets/Style.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QSvgRenderer>

namespace velmora {

DragView::DragView(QWidget* parent) : QWidget(parent) { setAcceptDrops(true); }

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
    if (droppedLocalPaths(event->mimeData()).isEmpty()) return;
    setBorderImage("dashboder_drop");
    event->acceptProposedAction();
}

void DragView::dragLeaveEvent(QDragLeaveEvent*) { setBorderImage("dashboder"); }

void DragView::dropEvent(QDropEvent* event) {
    setBorderImage("dashboder");
    const QStringList paths = droppedLocalPaths(event->mimeData());
    if (paths.isEmpty()) return;
    event->acceptProposedAction();
    emit viewDragAction(paths);
}

}  // namespace velmora
