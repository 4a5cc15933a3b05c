#include "gui/uninstall/UninstallTreeModel.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/UninstallSession.h"
#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/widgets/Style.h"


namespace velmora {
namespace {

// A file row's internal id is its group + 1; group rows have 0.
constexpr quintptr kGroupRow = 0;

QString checkImage(UninstallSession::TickState state) {
    switch (state) {
    case UninstallSession::TickState::Yes: return "checkbox_yes";
    case UninstallSession::TickState::Election: return "checkbox_election";
    default: return "checkbox_no";
    }
}

// A file row names the whole path, the home folder written "~" (two leftovers may share
// a name), and says why a record is not ticked at first.
QString recordText(const AMAppItem& item) {
    const QString home = StandardPaths::homeDir();
    QString text = displayPath(item.path);
    if (!home.isEmpty() && item.path.startsWith(home + '/')) text = "~" + displayPath(item.path.mid(home.size()));
    if (!item.sharedWith.isEmpty())
        text += QString("  (also matches %1)").arg(displayPath(item.sharedWith));
    else if (item.isPossibleMatch)
        text += "  (possible match)";
    return text;
}

}  // namespace

UninstallTreeModel::UninstallTreeModel(UninstallSession* session, QObject* parent)
    : QAbstractItemModel(parent), m_session(session) {}

int UninstallTreeModel::columnWidth(int column) {
    static constexpr int kWidths[ColumnCount] = {520, 100};
    return column >= 0 && column < ColumnCount ? kWidths[column] : 0;
}

int UninstallTreeModel::groupOf(const QModelIndex& index) {
    if (!index.isValid()) return -1;
    return index.internalId() == kGroupRow ? index.row() : int(index.internalId() - 1);
}

int UninstallTreeModel::recordOf(const QModelIndex& index) {
    return index.isValid() && index.internalId() != kGroupRow ? index.row() : -1;
}

void UninstallTreeModel::redraw() {
    const int groups = rowCount();
    for (int group = 0; group < groups; ++group) {
        const QModelIndex top = index(group, 0);
        emit dataChanged(top, top.siblingAtColumn(ColumnCount - 1));
        const int records = rowCount(top);
        if (records > 0) emit dataChanged(index(0, 0, top), index(records - 1, ColumnCount - 1, top));
    }
}

QModelIndex UninstallTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    if (!parent.isValid()) return createIndex(row, column, kGroupRow);
    return createIndex(row, column, quintptr(parent.row() + 1));
}

QModelIndex UninstallTreeModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == kGroupRow) return {};
    return createIndex(int(child.internalId() - 1), 0, kGroupRow);
}

int UninstallTreeModel::rowCount(const QModelIndex& parent) const {
    const QList<AMAppItemList>& groups = m_session->allRelaltedFiles();
    if (!parent.isValid()) return int(groups.size());
    if (parent.internalId() != kGroupRow || parent.column() != 0) return 0;
    return int(groups.value(parent.row()).size());
}

int UninstallTreeModel::columnCount(const QModelIndex&) const { return ColumnCount; }

// File rows are leaves: saying so lets the expanded tree skip a persistent index per row
// (thousands of them made opening the panel stall).
Qt::ItemFlags UninstallTreeModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (recordOf(index) >= 0) flags |= Qt::ItemNeverHasChildren;
    return flags;
}

QVariant UninstallTreeModel::data(const QModelIndex& index, int role) const {
    const int group = groupOf(index);
    const QList<AMAppItemList>& groups = m_session->allRelaltedFiles();
    if (group < 0 || group >= groups.size()) return {};
    const AMAppItemList& records = groups.at(group);
    const int row = recordOf(index);
    const bool isGroup = row < 0;
    const AMAppItemPtr item = isGroup ? records.value(0) : records.value(row);
    switch (role) {
    case Qt::DisplayRole:
        if (index.column() == Size) return isGroup ? m_session->groupSizeText(group) : (item ? item->size : QString());
        if (!item) return QString();
        return isGroup ? displayPath(item->name) : recordText(*item);
    case Qt::ToolTipRole: return item ? displayPath(item->path) : QVariant();
    case Qt::FontRole: return isGroup ? Style::boldFont(13) : Style::regularFont(12);
    case Qt::ForegroundRole:
        return !isGroup && item && !item->preTicked ? QColor(0xF0, 0xC0, 0x60) : (isGroup ? Style::kText
                                                                                          : Style::kSecondaryText);
    case DuplicateOutlineModel::IsGroupRole: return isGroup;
    case DuplicateOutlineModel::CheckImageRole:
        if (index.column() != Name) return {};
        if (isGroup) return checkImage(m_session->groupState(group));
        return m_session->isTicked(item) ? "checkbox_yes" : "checkbox_no";
    case DuplicateOutlineModel::IconImageRole:
        if (index.column() != Name) return {};
        if (isGroup || row == 0) return "ic_application";
        // Known from when the record was found: drawing a row reads nothing from the disk.
        return item && item->isFolder ? "ic_folder" : "ic_file";
    default: return {};
    }
}

QVariant UninstallTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    if (role != Qt::DisplayRole) return {};
    return section == Name ? QString("Name") : QString("Size");
}

}  // namespace velmora
