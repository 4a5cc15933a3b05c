#include "gui/duplicate/DuplicateStartView.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/SvgImageView.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {

DuplicateStartView::DuplicateStartView(QWidget* parent)
    : QWidget(parent), m_chooseButton(ImageSetButton::primary("Choose Folder", this)) {
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addStretch(1);
    layout->addWidget(new SvgImageView("img_duplicate_drop", {150, 120}, this), 0, Qt::AlignHCenter);
    layout->addSpacing(8);
    layout->addWidget(Style::label("Drop a folder here", 16), 0, Qt::AlignHCenter);
    layout->addWidget(Style::label("or", 12, true), 0, Qt::AlignHCenter);
    m_chooseButton->setFixedWidth(150);
    layout->addWidget(m_chooseButton, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    connect(m_chooseButton, &QPushButton::clicked, this, &DuplicateStartView::chooseFolder);
}

QString DuplicateStartView::droppedFolder(const QMimeData* data) {
    // The dropped names' own bytes, so a folder whose name is not text is searched too.
    for (const QString& path : droppedLocalPaths(data)) {
        const int fd = openLongPath(nativePath(path), O_PATH | O_DIRECTORY);
        if (fd < 0) continue;
        ::close(fd);
        return path;
    }
    return {};
}

void DuplicateStartView::setHighlighted(bool highlighted) {
    m_highlighted = highlighted;
    update();
}

void DuplicateStartView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath frame;
    frame.addRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 14, 14);
    if (m_highlighted) painter.fillPath(frame, QColor(0x5A, 0xC8, 0xD8, 28));
    QPen pen(m_highlighted ? Style::kAccent : QColor(255, 255, 255, 115), 2);
    pen.setDashPattern({5, 3.5});
    painter.setPen(pen);
    painter.drawPath(frame);
}

void DuplicateStartView::dragEnterEvent(QDragEnterEvent* event) {
    if (droppedFolder(event->mimeData()).isEmpty()) return;
    setHighlighted(true);
    event->acceptProposedAction();
}

void DuplicateStartView::dragLeaveEvent(QDragLeaveEvent*) { setHighlighted(false); }

void DuplicateStartView::dropEvent(QDropEvent* event) {
    setHighlighted(false);
    const QString folder = droppedFolder(event->mimeData());
    if (folder.isEmpty()) return;
    event->acceptProposedAction();
    emit folderDropped(folder);
}

}  // namespace velmora
