#include "gui/widgets/SidebarButton.h"

#include "gui/widgets/Style.h"

#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

namespace velmora {

SidebarButton::SidebarButton(const QString& title, const QString& iconImage, const QString& selIconImage, int tag,
                             QWidget* parent)
    : QAbstractButton(parent), m_iconImage(iconImage), m_selIconImage(selIconImage), m_tag(tag) {
    setText(title);
    setFixedHeight(48);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);  // the ring then shows for keyboard use only
    setFont(Style::regularFont(12));
    connect(this, &QAbstractButton::clicked, this, [this] { emit clickedWithTag(m_tag); });
}

namespace {

constexpr int kPillInset = 10;
constexpr int kTextLeft = 48;
constexpr int kTextRight = 14;

}  // namespace

QSize SidebarButton::sizeHint() const {
    const int textWidth = QFontMetrics(Style::boldFont(12)).horizontalAdvance(text());
    return {kPillInset + kTextLeft + textWidth + kTextRight + kPillInset, 48};
}

void SidebarButton::setSelected(bool selected) {
    m_selected = selected;
    update();
}

void SidebarButton::setButtonEnden(bool enabled) {
    setEnabled(enabled);
    update();
}

void SidebarButton::enterEvent(QEnterEvent* event) {
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void SidebarButton::leaveEvent(QEvent* event) {
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}

void SidebarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF(rect()).adjusted(kPillInset, 3, -kPillInset, -3);
    if (m_selected || (m_hovered && isEnabled())) {
        QPainterPath background;
        background.addRoundedRect(area, 8, 8);
        painter.fillPath(background, m_selected ? Style::kSelection : QColor(255, 255, 255, 14));
        if (m_selected) painter.fillRect(QRectF(area.left(), area.top() + 10, 3, area.height() - 20), Style::kAccent);
    }
    if (!isEnabled()) painter.setOpacity(0.45);
    QSvgRenderer icon(Style::imagePath(m_selected ? m_selIconImage : m_iconImage));
    icon.render(&painter, QRectF(area.left() + 14, area.center().y() - 11, 22, 22));
    painter.setPen(m_selected ? Style::kAccent : Style::kText);
    painter.setFont(m_selected ? Style::boldFont(12) : Style::regularFont(12));
    painter.drawText(area.adjusted(kTextLeft, 0, -kTextRight, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
    if (hasFocus()) Style::drawFocusRing(painter, area, 8);
}

}  // namespace velmora
