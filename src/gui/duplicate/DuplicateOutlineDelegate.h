#pragma once

#include <QStyledItemDelegate>

class QTreeView;

namespace velmora {

// Draws the rows of the duplicate outline. A group row: its disclosure
// arrow, three-state checkbox, icon and name in bold; a copy row, indented:
// its checkbox, icon and path. The rectangles are shared with the view,
// which turns clicks on them into ticks and expansions.
class DuplicateOutlineDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int kGroupRowHeight = 36;
    static constexpr int kLeafRowHeight = 30;
    static constexpr int kGroupCheckBoxX = 26;  // also where the select-all checkbox sits
    static constexpr int kPadding = 8;          // between a cell's edges and its text

    explicit DuplicateOutlineDelegate(QTreeView* view);

    static QRect arrowRect(const QRect& cell);
    static QRect checkBoxRect(const QRect& cell, bool isGroup);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintArrow(QPainter* painter, const QRect& cell, bool expanded) const;

    QTreeView* m_view;
};

}  // namespace velmora
