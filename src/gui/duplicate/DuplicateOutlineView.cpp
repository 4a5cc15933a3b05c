#include "gui/duplicate/DuplicateOutlineView.h"

#include "gui/duplicate/DuplicateOutlineDelegate.h"
#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>

namespace velmora {

DuplicateOutlineView::DuplicateOutlineView(QWidget* parent) : QTreeView(parent) {
    setItemDelegate(new DuplicateOutlineDelegate(this));
    // The delegate draws the arrows and the indent of the copies itself.
    setIndentation(0);
    setRootIsDecorated(false);
    setUniformRowHeights(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::TabFocus);  // the ring then shows for keyboard use only
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    setContextMenuPolicy(Qt::CustomContextMenu);
    RFOverlayScroller::apply(this);
}

QRect DuplicateOutlineView::checkBoxRect(const QModelIndex& index) const {
    const QModelIndex name = index.siblingAtColumn(DuplicateOutlineModel::Name);
    return DuplicateOutlineDelegate::checkBoxRect(visualRect(name),
                                                  name.data(DuplicateOutlineModel::IsGroupRole).toBool());
}

void DuplicateOutlineView::mousePressEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    const QModelIndex index = indexAt(position);
    if (event->button() == Qt::LeftButton && index.isValid()) {
        const QModelIndex name = index.siblingAtColumn(DuplicateOutlineModel::Name);
        const bool isGroup = name.data(DuplicateOutlineModel::IsGroupRole).toBool();
        // The hit areas reach a little beyond the images.
        if (checkBoxRect(name).adjusted(-4, -4, 4, 4).contains(position)) {
            emit checkBoxClicked(name);
            return;
        }
        if (isGroup && DuplicateOutlineDelegate::arrowRect(visualRect(name)).adjusted(-4, -4, 4, 4).contains(position)) {
            setExpanded(name, !isExpanded(name));
            return;
        }
    }
    QTreeView::mousePressEvent(event);
}

void DuplicateOutlineView::keyPressEvent(QKeyEvent* event) {
    const QModelIndex current = currentIndex();
    if (event->key() == Qt::Key_Space && current.isValid() && event->modifiers() == Qt::NoModifier) {
        emit checkBoxClicked(current.siblingAtColumn(DuplicateOutlineModel::Name));
        return;
    }
    // The menu key and Shift+F10 open the current row's menu, where a right click would.
    const bool menuKey = event->key() == Qt::Key_Menu && event->modifiers() == Qt::NoModifier;
    const bool shiftF10 = event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier;
    if ((menuKey || shiftF10) && current.isValid()) {
        scrollTo(current);
        emit customContextMenuRequested(visualRect(current).center());
        return;
    }
    QTreeView::keyPressEvent(event);
}

void DuplicateOutlineView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    QTreeView::drawRow(painter, option, index);
    if (!hasFocus() || index.row() != currentIndex().row() || index.parent() != currentIndex().parent()) return;
    const QRect row(0, option.rect.top(), viewport()->width(), option.rect.height());
    Style::drawFocusRing(*painter, QRectF(row).adjusted(1, 1, -1, -1), 6);
}

}  // namespace velmora
