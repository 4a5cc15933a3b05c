#include "gui/copy/DiskListViewController.h"

#include "engine/volumes/CommUti.h"
#include "gui/copy/PlainToolTip.h"
#include "gui/widgets/Style.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

namespace velmora {
namespace {

constexpr int kIconSide = 36;
constexpr int kPadding = 12;

}  // namespace

DiskListViewController::DiskListViewController(const VolumeObj& volume, QWidget* parent)
    : QWidget(parent), m_volume(volume) {
    setFixedHeight(kRowHeight);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setToolTip(plainToolTip(volume.volumeName));
    setAccessibleName(volume.volumeName);
    setAttribute(Qt::WA_Hover);
}

void DiskListViewController::setChosen(bool chosen) {
    if (m_chosen == chosen) return;
    m_chosen = chosen;
    update();
}

QString DiskListViewController::usedText() const {
    const qint64 used = m_volume.volumeTotalSizeNum - m_volume.volumeFreeSizeNum;
    return QString("%1/%2").arg(CommUti::longlongDiskSize(used), m_volume.volumeTotalSize);
}

int DiskListViewController::usagePercent() const {
    if (m_volume.volumeTotalSizeNum <= 0) return 0;
    return int(100 - (m_volume.volumeFreeSizeNum * 100) / m_volume.volumeTotalSizeNum);
}

void DiskListViewController::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF card = QRectF(rect()).adjusted(1, 2, -1, -2);
    QPainterPath shape;
    shape.addRoundedRect(card, 8, 8);
    painter.fillPath(shape, m_chosen ? Style::kSelection : QColor(255, 255, 255, m_hovered ? 18 : 8));
    if (m_chosen) {
        painter.setPen(QPen(Style::kAccent, 1.5));
        painter.drawPath(shape);
    }
    if (hasFocus()) Style::drawFocusRing(painter, card, 8);

    const QRect icon(kPadding, (height() - kIconSide) / 2, kIconSide, kIconSide);
    QSvgRenderer(Style::imagePath("ico_disk")).render(&painter, QRectF(icon));

    const int textLeft = icon.right() + kPadding;
    const int textWidth = width() - textLeft - kPadding;
    painter.setFont(Style::boldFont(12));
    QFontMetrics metrics(painter.font());
    const QString type = m_volume.volumeType;
    const int typeWidth = QFontMetrics(Style::regularFont(11)).horizontalAdvance(type) + 4;
    painter.setPen(Style::kText);
    painter.drawText(QRect(textLeft, 9, textWidth - typeWidth - 8, 20), Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(m_volume.volumeName, Qt::ElideMiddle, textWidth - typeWidth - 8));
    painter.setFont(Style::regularFont(11));
    painter.setPen(Style::kSecondaryText);
    painter.drawText(QRect(textLeft, 9, textWidth, 20), Qt::AlignRight | Qt::AlignVCenter, type);
    painter.drawText(QRect(textLeft, 28, textWidth, 16), Qt::AlignLeft | Qt::AlignVCenter, usedText());

    const QRectF bar(textLeft, 48, textWidth, 5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 35));
    painter.drawRoundedRect(bar, 2.5, 2.5);
    const int percent = qBound(0, usagePercent(), 100);
    if (percent > 0) {
        painter.setBrush(percent >= 90 ? QColor(0xE8, 0xA9, 0x3A) : Style::kAccent);
        painter.drawRoundedRect(QRectF(bar.left(), bar.top(), bar.width() * percent / 100.0, bar.height()), 2.5, 2.5);
    }
}

void DiskListViewController::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) emit chosen(m_volume);
}

void DiskListViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        emit chosen(m_volume);
        return;
    }
    QWidget::keyPressEvent(event);
}

void DiskListViewController::enterEvent(QEnterEvent*) {
    m_hovered = true;
    update();
}

void DiskListViewController::leaveEvent(QEvent*) {
    m_hovered = false;
    update();
}

}  // namespace velmora
