#include "gui/widgets/MAAttachedWindow.h"

#include "gui/widgets/Style.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
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

void MAAttachedWindow::setCancelButton(QPushButton* button) {
    m_cancelButton = button;
    button->setDefault(true);
    if (isVisible()) button->setFocus(Qt::TabFocusReason);
}

void MAAttachedWindow::showEvent(QShowEvent* event) {
    centreOnParent();
    QDialog::showEvent(event);
    if (m_cancelButton) m_cancelButton->setFocus(Qt::TabFocusReason);
}

void MAAttachedWindow::keyPressEvent(QKeyEvent* event) {
    // Escape clicks the panel's own cancel button, so that the owner hears of it
    // exactly as of a click; a panel without one (a progress view that cannot be
    // stopped) stays open.
    if (event->key() == Qt::Key_Escape) {
        if (m_cancelButton && m_cancelButton->isVisible() && m_cancelButton->isEnabled()) m_cancelButton->click();
        return;
    }
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
