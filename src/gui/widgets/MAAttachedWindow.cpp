#include "gui/widgets/MAAttachedWindow.h"

#include "gui/widgets/Style.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

namespace velmora {

MAAttachedWindow::MAAttachedWindow(QWidget* parent, QSize size) : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint) {
    setAttribute(Qt::WA_TranslucentBackground);
    setModal(true);
    setFixedSize(size);
}

void MAAttachedWindow::centreOnParent() {
    const QWidget* anchor = parentWidget() ? parentWidget()->window() : nullptr;
    const QRect area = anchor ? anchor->frameGeometry() : screen()->availableGeometry();
    move(area.center() - QPoint(width() / 2, height() / 2));
}

void MAAttachedWindow::showEvent(QShowEvent* event) {
    centreOnParent();
    QDialog::showEvent(event);
}

void MAAttachedWindow::keyPressEvent(QKeyEvent* event) {
    // Escape must not close a panel behind the owner's back: the panels
    // decide themselves which button ends them.
    if (event->key() == Qt::Key_Escape) return;
    QDialog::keyPressEvent(event);
}

void MAAttachedWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 10, 10);
    painter.fillPath(shape, Style::kPanel);
    painter.setPen(QColor(255, 255, 255, 40));
    painter.drawPath(shape);
}

}  // namespace velmora
