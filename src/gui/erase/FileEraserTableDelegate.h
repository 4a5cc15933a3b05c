#pragma once

#include <QStyledItemDelegate>

namespace velmora {

// Draws the file eraser's rows: the checkbox and search images centred in
// their cells, the icon beside the name, and elided text in the other cells.
class FileEraserTableDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace velmora
