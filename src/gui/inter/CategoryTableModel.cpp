#include "gui/inter/CategoryTableModel.h"

#include "gui/erase/FileEraserTableModel.h"
#include "gui/inter/BrowserIcon.h"
#include "gui/inter/BrowserTableModel.h"
#include "gui/widgets/Style.h"

namespace velmora {

CategoryTableModel::CategoryTableModel(QObject* parent) : QAbstractTableModel(parent) {}

int CategoryTableModel::columnWidth(int column) {
    static constexpr int kWidths[] = {36, 280, 140};
    return (column >= 0 && column < ColumnCount) ? kWidths[column] : 0;
}

void CategoryTableModel::showBrowser(const BrowerObjPtr& browser) {
    beginResetModel();
    m_browser = browser;
    endResetModel();
}

void CategoryTableModel::redraw() {
    if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

BrowerObj* CategoryTableModel::categoryAt(int row) const {
    if (!m_browser || row < 0 || row >= m_browser->chrArr.size()) return nullptr;
    return m_browser->chrArr.at(row).get();
}

int CategoryTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !m_browser ? 0 : int(m_browser->chrArr.size());
}

int CategoryTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant CategoryTableModel::data(const QModelIndex& index, int role) const {
    const BrowerObj* category = index.isValid() ? categoryAt(index.row()) : nullptr;
    if (!category) return {};
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        if (column == Name) return category->name;
        return column == Size ? category->size : QVariant();
    case Qt::DecorationRole: return column == Name ? QVariant(artworkIcon(category->iconImage)) : QVariant();
    case FileEraserTableModel::ImageRole:
        return column == CheckBox ? QVariant(BrowserTableModel::checkImage(category->isSelect)) : QVariant();
    case Qt::ForegroundRole: return column == Name ? Style::kText : Style::kSecondaryText;
    case Qt::FontRole: return Style::regularFont(13);
    default: return {};
    }
}

QVariant CategoryTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    static const char* const kCaptions[] = {"", "Category", "Items or Size"};
    if (role == Qt::DisplayRole && section >= 0 && section < ColumnCount) return QString(kCaptions[section]);
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    return {};
}

}  // namespace velmora
