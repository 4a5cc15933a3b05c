#include "gui/uninstall/UninstallTableModel.h"

#include "engine/platform/NativePath.h"
#include "engine/uninstall/ApplicationInventory.h"
#include "gui/erase/FileEraserTableModel.h"
#include "gui/widgets/Style.h"

#include <QFileInfo>

namespace velmora {

UninstallTableModel::UninstallTableModel(ApplicationInventory* inventory, QObject* parent)
    : QAbstractTableModel(parent), m_inventory(inventory) {}

int UninstallTableModel::columnWidth(int column) {
    static constexpr int kWidths[ColumnCount] = {40, 382, 110, 110, 60};
    return column >= 0 && column < ColumnCount ? kWidths[column] : 0;
}

QString UninstallTableModel::identifier(int column) {
    static const char* const kIdentifiers[ColumnCount] = {"CheckBox", "appname", "version", "Size", "uninstall"};
    return column >= 0 && column < ColumnCount ? QString(kIdentifiers[column]) : QString();
}

void UninstallTableModel::reloadData(const AMAppItemList& shown) {
    beginResetModel();
    m_shown = shown;
    endResetModel();
}

void UninstallTableModel::appendRecord(const AMAppItemPtr& item) {
    beginInsertRows({}, int(m_shown.size()), int(m_shown.size()));
    m_shown.append(item);
    endInsertRows();
}

void UninstallTableModel::setTickedList(const AMAppItemList* ticked) {
    m_ticked = ticked;
    redraw();
}

void UninstallTableModel::setNameHeader(const QString& text) {
    m_nameHeader = text;
    emit headerDataChanged(Qt::Horizontal, AppName, AppName);
}

void UninstallTableModel::redraw() {
    if (!m_shown.isEmpty()) emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

void UninstallTableModel::redrawRecord(const AMAppItemPtr& item) {
    for (int row = 0; row < m_shown.size(); ++row)
        if (m_shown.at(row) == item) emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int UninstallTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_shown.size()); }

int UninstallTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QIcon UninstallTableModel::iconOf(const AMAppItem& item) const {
    auto cached = m_icons.constFind(item.image);
    if (cached != m_icons.cend()) return *cached;
    QIcon icon;
    if (item.image.startsWith('/')) {
        const QString file = displayPath(item.image);
        if (file == item.image && QFileInfo(file).isFile()) icon = QIcon(file);
    } else if (!item.image.isEmpty()) {
        icon = QIcon::fromTheme(item.image);
    }
    if (icon.isNull()) icon = QIcon(Style::imagePath("ic_application"));
    m_icons.insert(item.image, icon);
    return icon;
}

QVariant UninstallTableModel::data(const QModelIndex& index, int role) const {
    const AMAppItemPtr item = index.isValid() ? recordAt(index.row()) : nullptr;
    if (!item) return {};
    const int column = index.column();
    if (role == FileEraserTableModel::ImageRole) {
        if (column == CheckBox) return m_ticked && m_ticked->contains(item) ? "checkbox_yes" : "checkbox_no";
        return column == Uninstall ? QVariant("ic_trash") : QVariant();
    }
    switch (role) {
    case Qt::DisplayRole:
        if (column == AppName) return displayPath(item->name);
        if (column == Version) return displayPath(item->bundleVersion);
        if (column == Size) {
            // Lazy size: the first time the cell is asked for, the computation starts.
            if (!item->bIsGetSize && m_inventory) m_inventory->requestSize(item);
            return item->size;
        }
        return {};
    case Qt::CheckStateRole:  // what assistive technology announces for the drawn box
        if (column != CheckBox) return {};
        return m_ticked && m_ticked->contains(item) ? Qt::Checked : Qt::Unchecked;
    case SecondLineRole: return column == AppName ? displayPath(item->bundleID) : QVariant();
    case Qt::DecorationRole: return column == AppName ? QVariant(iconOf(*item)) : QVariant();
    case Qt::AccessibleTextRole:  // the per-row button is only an image
        return column == Uninstall ? QVariant(QString("Uninstall %1").arg(displayPath(item->name))) : QVariant();
    case Qt::ToolTipRole:
        if (column == Uninstall) return QString("Uninstall %1").arg(displayPath(item->name));
        if (column == CheckBox) return QString();
        return displayPath(item->path);
    case Qt::ForegroundRole: return column == AppName ? Style::kText : Style::kSecondaryText;
    case Qt::FontRole: return Style::regularFont(column == AppName ? 13 : 12);
    default: return {};
    }
}

QVariant UninstallTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    if (role != Qt::DisplayRole) return {};
    switch (section) {
    case AppName: return m_nameHeader;
    case Version: return QString("Version");
    case Size: return QString("Size");
    default: return {};
    }
}

}  // namespace velmora
