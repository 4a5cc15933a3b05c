#include "gui/erase/DragOneFileView.h"

#include "gui/erase/DragView.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/Style.h"

#include <QDragEnterEvent>

namespace velmora {

DragOneFileView::DragOneFileView(QWidget* parent) : QWidget(parent), m_dropFrame(new QWidget(this)) {
    setAcceptDrops(true);
    // The frame lies over the list and lets every click through.
    m_dropFrame->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_dropFrame->setAttribute(Qt::WA_StyledBackground);
    m_dropFrame->setStyleSheet(
        QString("border: 2px dashed %1; border-radius: 10px; background: transparent;").arg(Style::rgba(Style::kAccent)));
    m_dropFrame->hide();
}

void DragOneFileView::resizeEvent(QResizeEvent* event) {
    m_dropFrame->setGeometry(rect());
    QWidget::resizeEvent(event);
}

void DragOneFileView::dragEnterEvent(QDragEnterEvent* event) {
    if (droppedLocalPaths(event->mimeData()).isEmpty()) return;
    m_dropFrame->show();
    m_dropFrame->raise();
    event->acceptProposedAction();
}

void DragOneFileView::dragLeaveEvent(QDragLeaveEvent*) { m_dropFrame->hide(); }

void DragOneFileView::dropEvent(QDropEvent* event) {
    m_dropFrame->hide();
    const QStringList paths = droppedLocalPaths(event->mimeData());
    if (paths.isEmpty()) return;
    event->acceptProposedAction();
    emit viewDragAction(paths);
}

}  // namespace velmora
