#pragma once

#include "engine/inter/BrowerObj.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>

namespace velmora {

// The internet cleaner's browser table: a tick box and the browser's icon and
// name. The page owns the entries; the model shows them and is told to redraw
// after a change.
class BrowserTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { CheckBox, Name, ColumnCount };

    explicit BrowserTableModel(QObject* parent = nullptr);
    static int columnWidth(int column);
    // The tick box image of a tick state (0, 1, 2).
    static QString checkImage(int isSelect);

    void reloadData(const BrowserArr& browserArr);
    void redraw();
    BrowerObj* browserAt(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    BrowserArr m_browserArr;
    QList<QIcon> m_icons;  // looked up once per scan
};

}  // namespace velmora
