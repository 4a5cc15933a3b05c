#pragma once

#include "gui/volumes/VolumeTableModel.h"

#include <QTableView>
#include <QTest>

// The volume list of the disk pages (wipe, format and disk tool), driven as the user does.
namespace volumetable {

// The row listing the device node, or -1.
template <class Page>
int rowOfDevice(const Page* page, const QString& device) {
    for (int row = 0; row < page->allVolumeArr().size(); ++row)
        if (page->allVolumeArr().at(row).volumePath == device) return row;
    return -1;
}

inline QString cell(const QTableView* table, int row, int column, int role = Qt::DisplayRole) {
    return table->model()->index(row, column).data(role).toString();
}

// Scrolls the row into view and clicks its name.
inline void clickRow(QTableView* table, int row) {
    const QModelIndex name = table->model()->index(row, velmora::VolumeTableModel::Name);
    table->scrollTo(name);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(name).center());
}

}  // namespace volumetable
