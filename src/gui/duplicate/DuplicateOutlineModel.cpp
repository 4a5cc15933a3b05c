#include "gui/duplicate/DuplicateOutlineModel.h"

#include "engine/duplicate/DuplicateResults.h"
#include "engine/platform/NativePath.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QCollator>
#include <algorithm>

namespace velmora {
namespace {

const SimpleTreeNode* groupOf(const SimpleTreeNode* node) { return node->isLeaf() ? node->parent() : node; }

// A copy's whole path; a group's name with the path of the copy kept.
QString nameToolTip(const SimpleTreeNode& node) {
    if (node.isLeaf() || node.children().isEmpty()) return displayPath(node.data().name);
    return displayPath(node.data().name) + '\n' + displayPath(node.children().last()->data().name);
}

QDateTime latestCopyDate(const SimpleTreeNode& group) {
    QDateTime latest;
    for (const SimpleTreeNode::Pointer& leaf : group.children())
        if (!latest.isValid() || leaf->data().modificationDate > latest) latest = leaf->data().modificationDate;
    return latest;
}

}  // namespace

DuplicateOutlineModel::DuplicateOutlineModel(QObject* parent) : QAbstractItemModel(parent) {}

int DuplicateOutlineModel::columnWidth(int column) {
    static constexpr int kWidths[ColumnCount] = {372, 80, 100, 180};
    return column >= 0 && column < ColumnCount ? kWidths[column] : 0;
}

void DuplicateOutlineModel::setTree(SimpleTreeNode* root) {
    beginResetModel();
    m_root = root;
    rebuildGroupRows();
    endResetModel();
}

void DuplicateOutlineModel::rebuildGroupRows() {
    m_groupRows.clear();
    if (!m_root) return;
    const QList<SimpleTreeNode::Pointer>& groups = m_root->children();
    for (int row = 0; row < groups.size(); ++row) m_groupRows.insert(groups[row].get(), row);
}

SimpleTreeNode* DuplicateOutlineModel::nodeForIndex(const QModelIndex& index) const {
    return index.isValid() ? static_cast<SimpleTreeNode*>(index.internalPointer()) : nullptr;
}

QModelIndex DuplicateOutlineModel::indexForNode(const SimpleTreeNode* node) const {
    if (!node || !m_root) return {};
    if (!node->isLeaf()) {
        const int row = m_groupRows.value(node, -1);
        return row < 0 ? QModelIndex() : createIndex(row, 0, const_cast<SimpleTreeNode*>(node));
    }
    const SimpleTreeNode* group = node->parent();
    if (!group || !m_groupRows.contains(group)) return {};
    const QList<SimpleTreeNode::Pointer>& leaves = group->children();
    for (int row = 0; row < leaves.size(); ++row)
        if (leaves[row].get() == node) return createIndex(row, 0, const_cast<SimpleTreeNode*>(node));
    return {};
}

void DuplicateOutlineModel::applyTreeChange(const std::function<void()>& change) {
    emit layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    // Every node is held until the end, so that the nodes the change drops
    // cannot be freed while the view's old indexes still name them.
    QList<SimpleTreeNode::Pointer> held;
    if (m_root) {
        for (const SimpleTreeNode::Pointer& group : m_root->children()) {
            held.append(group);
            held.append(group->children());
        }
    }
    change();
    rebuildGroupRows();

    // The row of every node now shown: groups among the groups, copies within their group.
    QHash<const SimpleTreeNode*, int> rows = m_groupRows;
    if (m_root) {
        for (const SimpleTreeNode::Pointer& group : m_root->children()) {
            const QList<SimpleTreeNode::Pointer>& leaves = group->children();
            for (int row = 0; row < leaves.size(); ++row) rows.insert(leaves[row].get(), row);
        }
    }
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& old : before) {
        auto* node = static_cast<SimpleTreeNode*>(old.internalPointer());
        const int row = rows.value(node, -1);
        after.append(row < 0 ? QModelIndex() : createIndex(row, old.column(), node));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

void DuplicateOutlineModel::selectionChanged() {
    if (!m_root || m_root->children().isEmpty()) return;
    const int lastColumn = ColumnCount - 1;
    const int groups = int(m_root->children().size());
    emit dataChanged(index(0, 0), index(groups - 1, lastColumn));
    for (int row = 0; row < groups; ++row) {
        const QModelIndex group = index(row, 0);
        const int leaves = rowCount(group);
        if (leaves > 0) emit dataChanged(index(0, 0, group), index(leaves - 1, lastColumn, group));
    }
}

void DuplicateOutlineModel::sortGroups(int column, bool descending) {
    if (!m_root) return;
    QList<SimpleTreeNode::Pointer> groups = m_root->children();
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    auto less = [&](const SimpleTreeNode::Pointer& a, const SimpleTreeNode::Pointer& b) {
        switch (column) {
        case Selected: return a->children().size() < b->children().size();
        case Size: return a->data().fileSize < b->data().fileSize;
        case Date: return latestCopyDate(*a) < latestCopyDate(*b);
        default: return collator.compare(a->data().name, b->data().name) < 0;
        }
    };
    std::stable_sort(groups.begin(), groups.end(), [&](const SimpleTreeNode::Pointer& a, const SimpleTreeNode::Pointer& b) {
        return descending ? less(b, a) : less(a, b);
    });
    applyTreeChange([&] {
        while (!m_root->children().isEmpty()) m_root->removeChild(m_root->children().last().get());
        for (const SimpleTreeNode::Pointer& group : groups) m_root->appendChild(group);
    });
}

QModelIndex DuplicateOutlineModel::index(int row, int column, const QModelIndex& parent) const {
    if (!m_root || row < 0 || column < 0 || column >= ColumnCount) return {};
    if (!parent.isValid()) {
        const QList<SimpleTreeNode::Pointer>& groups = m_root->children();
        return row < groups.size() ? createIndex(row, column, groups[row].get()) : QModelIndex();
    }
    const SimpleTreeNode* group = nodeForIndex(parent);
    if (!group || group->isLeaf() || row >= group->children().size()) return {};
    return createIndex(row, column, group->children()[row].get());
}

QModelIndex DuplicateOutlineModel::parent(const QModelIndex& child) const {
    const SimpleTreeNode* node = nodeForIndex(child);
    if (!node || !node->isLeaf() || !node->parent()) return {};
    const int row = m_groupRows.value(node->parent(), -1);
    return row < 0 ? QModelIndex() : createIndex(row, 0, node->parent());
}

int DuplicateOutlineModel::rowCount(const QModelIndex& parent) const {
    if (!m_root) return 0;
    if (!parent.isValid()) return int(m_root->children().size());
    if (parent.column() != 0) return 0;
    const SimpleTreeNode* node = nodeForIndex(parent);
    return node->isLeaf() ? 0 : int(node->children().size());
}

int DuplicateOutlineModel::columnCount(const QModelIndex&) const { return ColumnCount; }

QString DuplicateOutlineModel::iconImage(const SimpleTreeNode& group) const {
    if (group.data().extendName == "APP") return "ic_folder";
    switch (group.data().fileType) {
    case DuplicateResults::Documents: return "ic_type_document";
    case DuplicateResults::Music: return "ic_type_music";
    case DuplicateResults::Videos: return "ic_type_video";
    case DuplicateResults::Archives: return "ic_type_archive";
    case DuplicateResults::Pictures: return "ic_type_picture";
    default: return "ic_file";
    }
}

QVariant DuplicateOutlineModel::data(const QModelIndex& index, int role) const {
    const SimpleTreeNode* node = nodeForIndex(index);
    if (!node) return {};
    const SimpleNodeData& item = node->data();
    const bool isGroup = !node->isLeaf();
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case Name: return displayPath(item.name);
        case Selected:
            if (!isGroup) return QString();
            return item.showSelectNumStr.isEmpty() ? QString("0/%1").arg(node->children().size())
                                                   : item.showSelectNumStr;
        case Size: return byteToSizeWithByte(item.fileSize);
        case Date: return isGroup ? QString() : item.modificationDate.toString("yyyy-MM-dd HH:mm");
        }
        return {};
    case Qt::ToolTipRole: return index.column() == Name ? nameToolTip(*node) : QVariant();
    case Qt::FontRole: return isGroup ? Style::boldFont(12) : Style::regularFont(12);
    case Qt::ForegroundRole: return isGroup || index.column() == Selected ? Style::kText : Style::kSecondaryText;
    case CheckImageRole:
        if (index.column() != Name) return {};
        if (item.selectNum == SimpleNodeData::Selected) return QString("checkbox_yes");
        if (isGroup && item.selectNum == SimpleNodeData::PartlySelected) return QString("checkbox_election");
        return QString("checkbox_no");
    case Qt::CheckStateRole:  // what assistive technology announces for the drawn checkbox
        if (index.column() != Name) return {};
        if (item.selectNum == SimpleNodeData::Selected) return Qt::Checked;
        return isGroup && item.selectNum == SimpleNodeData::PartlySelected ? Qt::PartiallyChecked : Qt::Unchecked;
    case IconImageRole: {
        const SimpleTreeNode* group = groupOf(node);
        return index.column() == Name && group ? iconImage(*group) : QVariant();
    }
    case IsGroupRole: return isGroup;
    }
    return {};
}

QVariant DuplicateOutlineModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* const kTitles[ColumnCount] = {"Name", "Selected", "Size", "Date Modified"};
    return section >= 0 && section < ColumnCount ? QString(kTitles[section]) : QVariant();
}

}  // namespace velmora
