#include "gui/volumes/VolumeTableView.h"

#include "gui/erase/FileEraserTableDelegate.h"
#include "gui/volumes/VolumeTableModel.h"
#include "gui/widgets/ListTable.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/Style.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QHeaderView>
#include <QTableView>

namespace velmora {
namespace {

// Room the row painter keeps on both sides of a text, and a little air.
constexpr int kTextMargins = 2 * 6 + 10;

}  // namespace

QTableView* createVolumeTable(VolumeTableModel* model, QWidget* parent) {
    auto* table = new QTableView(parent);
    table->setModel(model);
    table->setItemDelegate(new FileEraserTableDelegate(table));
    table->setSelectionMode(QAbstractItemView::NoSelection);
    QList<int> columnWidths;
    for (int column = 0; column < VolumeTableModel::ColumnCount; ++column)
        columnWidths.append(VolumeTableModel::columnWidth(column));
    applyListTableLook(table, 44, columnWidths);
    table->horizontalHeader()->setSectionResizeMode(VolumeTableModel::Name, QHeaderView::Stretch);
    table->setFocusPolicy(Qt::TabFocus);
    table->setTabKeyNavigation(false);
    table->setStyleSheet(table->styleSheet() + QString("QTableView:focus { border: 2px solid %1; border-radius: 6px; }")
                                                   .arg(Style::rgba(Style::kAccent)));
    fitVolumeColumns(table);
    return table;
}

void fitVolumeColumns(QTableView* table) {
    QAbstractItemModel* model = table->model();
    QHeaderView* header = table->horizontalHeader();
    const QFontMetrics headerMetrics(header->font());
    for (int column : {VolumeTableModel::Type, VolumeTableModel::TotalSize, VolumeTableModel::FreeSize}) {
        int widest = headerMetrics.horizontalAdvance(model->headerData(column, Qt::Horizontal).toString());
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, column);
            const QFontMetrics metrics(index.data(Qt::FontRole).value<QFont>());
            widest = qMax(widest, metrics.horizontalAdvance(index.data().toString()));
        }
        header->resizeSection(column, qMax(VolumeTableModel::columnWidth(column), widest + kTextMargins));
    }
}

QLayout* volumeTableArea(QTableView* table, MLCircularIndicator*& busyIndicator, QWidget* parent) {
    busyIndicator = new MLCircularIndicator(parent, 48);
    busyIndicator->setIndeterminate(true);
    busyIndicator->hide();
    auto* area = new QGridLayout;
    area->addWidget(table, 0, 0);
    area->addWidget(busyIndicator, 0, 0, Qt::AlignCenter);
    return area;
}

}  // namespace velmora
