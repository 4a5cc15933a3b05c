#include "gui/widgets/MLCircularIndicator.h"

#include "gui/widgets/Style.h"

#include <QPainter>
#include <QTimer>

namespace velmora {

MLCircularIndicator::MLCircularIndicator(QWidget* parent, int side) : QWidget(parent), m_spinTimer(new QTimer(this)) {
    setFixedSize(side, side);
    m_spinTimer->setInterval(30);
    connect(m_spinTimer, &QTimer::timeout, this, [this] {
        m_angle = (m_angle + 8) % 360;
        update();
    });
}

void MLCircularIndicator::setValue(double percent) {
    m_value = qBound(0.0, percent, 100.0);
    update();
}

void MLCircularIndicator::setIndeterminate(bool indeterminate) {
    m_indeterminate = indeterminate;
    if (indeterminate)
        m_spinTimer->start();
    else
        m_spinTimer->stop();
    update();
}

void MLCircularIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int ring = qMax(4, width() / 14);
    const QRectF area = QRectF(rect()).adjusted(ring, ring, -ring, -ring);
    painter.setPen(QPen(QColor(255, 255, 255, 35), ring));
    painter.drawEllipse(area);
    painter.setPen(QPen(Style::kAccent, ring, Qt::SolidLine, Qt::RoundCap));
    if (m_indeterminate) {
        painter.drawArc(area, -m_angle * 16, 90 * 16);
        return;
    }
    painter.drawArc(area, 90 * 16, int(-m_value * 3.6 * 16));
    painter.setPen(Style::kText);
    painter.setFont(Style::lightFont(qMax(10, width() / 7)));
    painter.drawText(rect(), Qt::AlignCenter, QString("%1%").arg(int(m_value)));
}

}  // namespace velmora
