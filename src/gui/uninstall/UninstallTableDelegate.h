#pragma once

#include "gui/erase/FileEraserTableDelegate.h"

namespace velmora {

// Draws the uninstaller's rows: the name cell with the icon, the name and the identifier
// under it; the other cells as the file eraser's table draws them.
class UninstallTableDelegate : public FileEraserTableDelegate {
    Q_OBJECT
public:
    using FileEraserTableDelegate::FileEraserTableDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace velmora
