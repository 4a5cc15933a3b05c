#pragma once

#include "engine/inter/BrowerObj.h"

#include <QAbstractTableModel>

namespace velmora {

// The category table of the highlighted browser: a tick box, the category's
// icon and name, and its count or size text.
class CategoryTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { CheckBox, Name, Size, ColumnCount };

    explicit CategoryTableModel(QObject* parent = nullptr);
    static int columnWidth(int column);

    // Shows the categories of a browser (none for nullptr).
    void showBrowser(const BrowerObjPtr& browser);
    void redraw();
    BrowerObj* categoryAt(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    BrowerObjPtr m_browser;
};

}  // namespace velmora
