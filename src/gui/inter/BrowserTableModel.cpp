#include "gui/inter/BrowserTableModel.h"

#include "engine/platform/NativePath.h"
#include "gui/erase/FileEraserTableModel.h"
#include "gui/inter/BrowserIcon.h"
#include "gui/widgets/Style.h"

namespace velmora {

BrowserTableModel::BrowserTableModel(QObject* parent) : QAbstractTableModel(parent) {}

int BrowserTableModel::columnWidth(int column) {
    static constexpr int kWidths[] = {36, 200};
    return (column >= 0 && column < ColumnCount) ? kWidths[column] : 0;
}

QString BrowserTableModel::checkImage(int isSelect) {
    if (isSelect == 1) return "checkbox_yes";
    return isSelect == 2 ? "checkbox_election" : "checkbox_no";
}

void BrowserTableModel::reloadData(const BrowserArr& browserArr) {
    beginResetModel();
    m_browserArr = browserArr;
    m_icons.clear();
    for (const BrowerObjPtr& browser : browserArr) m_icons.append(browserIcon(*browser));
    endResetModel();
}

void BrowserTableModel::redraw() {
    if (!m_browserArr.isEmpty()) emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

BrowerObj* BrowserTableModel::browserAt(int row) const {
    return row >= 0 && row < m_browserArr.size() ? m_browserArr.at(row).get() : nullptr;
}

int BrowserTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_browserArr.size());
}

int BrowserTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant BrowserTableModel::data(const QModelIndex& index, int role) const {
    const BrowerObj* browser = index.isValid() ? browserAt(index.row()) : nullptr;
    if (!browser) return {};
    const bool name = index.column() == Name;
    switch (role) {
    case Qt::DisplayRole: return name ? displayPath(browser->name) : QVariant();
    case Qt::ToolTipRole: return displayPath(browser->name);
    case Qt::DecorationRole: return name ? QVariant(m_icons.value(index.row())) : QVariant();
    case FileEraserTableModel::ImageRole: return name ? QVariant() : QVariant(checkImage(browser->isSelect));
    case Qt::ForegroundRole: return Style::kText;
    case Qt::FontRole: return Style::regularFont(13);
    default: return {};
    }
}

QVariant BrowserTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return section == Name ? QString("Browser") : QString();
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    return {};
}

}  // namespace velmora
