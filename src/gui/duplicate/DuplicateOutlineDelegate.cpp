#include "gui/duplicate/DuplicateOutlineDelegate.h"

#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/widgets/Style.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <QTreeView>

namespace velmora {
namespace {

constexpr int kCheckBoxSide = 16;
constexpr int kIconSide = 20;
constexpr int kLeafIndent = 24;

QRect centredSquare(int left, const QRect& cell, int side) {
    return {left, cell.center().y() - side / 2 + 1, side, side};
}

// Each image is rendered once per size and screen scale and then copied: reading
// and rendering the SVG file for every row at every repaint held the window.
void renderImage(QPainter* painter, const QString& name, const QRect& target) {
    const qreal scale = painter->device()->devicePixelRatioF();
    const QString key =
        QString("duplicate-outline/%1/%2x%3@%4").arg(name).arg(target.width()).arg(target.height()).arg(scale);
    QPixmap image;
    if (!QPixmapCache::find(key, &image)) {
        image = QPixmap(target.size() * scale);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        QPainter imagePainter(&image);
        imagePainter.setRenderHint(QPainter::Antialiasing);
        QSvgRenderer(Style::imagePath(name)).render(&imagePainter, QRectF(QPointF(0, 0), QSizeF(target.size())));
        imagePainter.end();
        QPixmapCache::insert(key, image);
    }
    painter->drawPixmap(target.topLeft(), image);
}

}  // namespace

DuplicateOutlineDelegate::DuplicateOutlineDelegate(QTreeView* view) : QStyledItemDelegate(view), m_view(view) {}

QRect DuplicateOutlineDelegate::arrowRect(const QRect& cell) { return centredSquare(cell.left() + 6, cell, 14); }

QRect DuplicateOutlineDelegate::checkBoxRect(const QRect& cell, bool isGroup) {
    return centredSquare(cell.left() + kGroupCheckBoxX + (isGroup ? 0 : kLeafIndent), cell, kCheckBoxSide);
}

QSize DuplicateOutlineDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const bool isGroup = index.data(DuplicateOutlineModel::IsGroupRole).toBool();
    return {option.rect.width(), isGroup ? kGroupRowHeight : kLeafRowHeight};
}

void DuplicateOutlineDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect cell = option.rect;
    const bool isGroup = index.data(DuplicateOutlineModel::IsGroupRole).toBool();
    if (option.state & QStyle::State_Selected)
        painter->fillRect(cell, Style::kSelection);
    else if (option.state & QStyle::State_MouseOver)
        painter->fillRect(cell, QColor(255, 255, 255, 12));
    else if (isGroup)
        painter->fillRect(cell, QColor(255, 255, 255, 6));
    if (isGroup) painter->fillRect(QRect(cell.left(), cell.top(), cell.width(), 1), QColor(255, 255, 255, 22));

    QRect textArea = cell.adjusted(kPadding, 0, -kPadding, 0);
    if (index.column() == DuplicateOutlineModel::Name) {
        if (isGroup) paintArrow(painter, cell, m_view->isExpanded(index));
        const QRect checkBox = checkBoxRect(cell, isGroup);
        renderImage(painter, index.data(DuplicateOutlineModel::CheckImageRole).toString(), checkBox);
        const int iconSide = isGroup ? kIconSide : kIconSide - 2;
        const QRect icon = centredSquare(checkBox.right() + 9, cell, iconSide);
        renderImage(painter, index.data(DuplicateOutlineModel::IconImageRole).toString(), icon);
        textArea.setLeft(icon.right() + 9);
    }
    painter->setFont(index.data(Qt::FontRole).value<QFont>());
    painter->setPen(index.data(Qt::ForegroundRole).value<QColor>());
    const Qt::TextElideMode elide = isGroup ? Qt::ElideRight : Qt::ElideMiddle;
    const QString text = painter->fontMetrics().elidedText(index.data().toString(), elide, textArea.width());
    painter->drawText(textArea, Qt::AlignVCenter | Qt::AlignLeft, text);
    painter->restore();
}

void DuplicateOutlineDelegate::paintArrow(QPainter* painter, const QRect& cell, bool expanded) const {
    const QRectF area = QRectF(arrowRect(cell)).adjusted(3.5, 3.5, -3.5, -3.5);
    QPolygonF chevron;
    if (expanded)
        chevron << area.topLeft() + QPointF(0, 2) << QPointF(area.center().x(), area.bottom() - 1)
                << area.topRight() + QPointF(0, 2);
    else
        chevron << area.topLeft() + QPointF(2, 0) << QPointF(area.right() - 1, area.center().y())
                << area.bottomLeft() + QPointF(2, 0);
    painter->setPen(QPen(QColor(255, 255, 255, 170), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolyline(chevron);
}

}  // namespace velmora
