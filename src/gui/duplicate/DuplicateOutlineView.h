#pragma once

#include <QTreeView>

namespace velmora {

// The tree view of the duplicate outline: a click on a row's checkbox is
// reported as checkBoxClicked, a click on a group's arrow opens or closes it.
// From the keyboard: the arrows move between rows (left and right close and
// open a group), Space ticks the row inside the focus ring, and the menu key or
// Shift+F10 asks for that row's menu (customContextMenuRequested).
class DuplicateOutlineView : public QTreeView {
    Q_OBJECT
public:
    explicit DuplicateOutlineView(QWidget* parent = nullptr);
    // Where a row's checkbox is drawn, in viewport coordinates.
    QRect checkBoxRect(const QModelIndex& index) const;

signals:
    void checkBoxClicked(const QModelIndex& index);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace velmora
