#include "gui/copy/CopyFileTreeModel.h"

#include "engine/copy/Controller.h"
#include "engine/platform/NativePath.h"
#include "gui/copy/PlainToolTip.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QIcon>

namespace velmora {

CopyFileTreeModel::CopyFileTreeModel(Controller& controller, QObject* parent)
    : QAbstractItemModel(parent), m_controller(controller) {
    m_roots = controller.rootArr();
    m_rootsTimer.setSingleShot(true);
    m_rootsTimer.setInterval(150);
    connect(&m_rootsTimer, &QTimer::timeout, this, &CopyFileTreeModel::takeRoots);
    connect(&controller.eumeRoot(), &EumeRoot::rootArrChanged, this, [this] {
        if (!m_rootsTimer.isActive()) m_rootsTimer.start();
    });
    connect(&controller, &Controller::endScan, this, &CopyFileTreeModel::takeRoots);
    connect(&controller, &Controller::childrenListed, this, &CopyFileTreeModel::childrenListed);
    // Ticks change states only: the rows stay, their check boxes are drawn again.
    connect(&controller, &Controller::treeChanged, this, [this] {
        if (!m_rootsTimer.isActive()) ticksChanged();
    });
}

void CopyFileTreeModel::takeRoots() {
    m_rootsTimer.stop();
    if (m_roots == m_controller.rootArr()) return;
    beginResetModel();
    m_roots = m_controller.rootArr();
    m_shownChildren.clear();
    m_listing.clear();
    endResetModel();
}

FileNode* CopyFileTreeModel::nodeOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<FileNode*>(index.internalPointer()) : nullptr;
}

const FileNodeList& CopyFileTreeModel::childrenOf(const FileNode* node) const {
    return node ? node->children : m_roots;
}

int CopyFileTreeModel::rowOf(const FileNode* node) const {
    const FileNodeList& siblings = childrenOf(node->father);
    for (int row = 0; row < siblings.size(); ++row)
        if (siblings.at(row).get() == node) return row;
    return -1;
}

QModelIndex CopyFileTreeModel::indexOf(const FileNode* node, int column) const {
    if (!node) return {};
    const int row = rowOf(node);
    return row < 0 ? QModelIndex() : createIndex(row, column, const_cast<FileNode*>(node));
}

QModelIndex CopyFileTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent)) return {};
    return createIndex(row, column, childrenOf(nodeOf(parent)).at(row).get());
}

QModelIndex CopyFileTreeModel::parent(const QModelIndex& child) const {
    const FileNode* node = nodeOf(child);
    return node ? indexOf(node->father) : QModelIndex();
}

int CopyFileTreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) return 0;
    const FileNode* node = nodeOf(parent);
    if (!node) return int(m_roots.size());
    return m_shownChildren.contains(node) ? int(node->children.size()) : 0;
}

int CopyFileTreeModel::columnCount(const QModelIndex&) const { return ColumnCount; }

bool CopyFileTreeModel::hasChildren(const QModelIndex& parent) const {
    const FileNode* node = nodeOf(parent);
    if (!node) return !m_roots.isEmpty();
    if (parent.column() > 0 || !node->isDirectory) return false;
    return !m_shownChildren.contains(node) || !node->children.isEmpty();
}

bool CopyFileTreeModel::canFetchMore(const QModelIndex& parent) const {
    const FileNode* node = nodeOf(parent);
    return node && node->isDirectory && !m_shownChildren.contains(node) && !m_listing.contains(node);
}

void CopyFileTreeModel::fetchMore(const QModelIndex& parent) {
    FileNode* node = nodeOf(parent);
    if (!canFetchMore(parent)) return;
    if (node->childrenListed) {
        childrenListed(node);
        return;
    }
    m_listing.insert(node);
    emit dataChanged(index(parent.row(), Size, parent.parent()), index(parent.row(), Size, parent.parent()));
    m_controller.getNodeListWithFaterNode(childrenOf(node->father).at(parent.row()));
}

bool CopyFileTreeModel::isListing(const QModelIndex& index) const { return m_listing.contains(nodeOf(index)); }

void CopyFileTreeModel::childrenListed(FileNode* node) {
    m_listing.remove(node);
    const QModelIndex parent = indexOf(node);
    if (!parent.isValid() || m_shownChildren.contains(node)) return;
    if (!node->children.isEmpty()) beginInsertRows(parent, 0, int(node->children.size()) - 1);
    m_shownChildren.insert(node);
    if (!node->children.isEmpty()) endInsertRows();
    emit dataChanged(index(parent.row(), Name, parent.parent()), index(parent.row(), Size, parent.parent()));
}

// One change per list the view knows (the top level and each opened folder), not per row:
// ticking a folder of many thousand entries costs the same as one of ten.
void CopyFileTreeModel::ticksChanged() {
    const auto listChanged = [this](const QModelIndex& parent) {
        const int rows = rowCount(parent);
        if (rows > 0) emit dataChanged(index(0, Name, parent), index(rows - 1, Name, parent), {Qt::CheckStateRole});
    };
    listChanged({});
    for (const FileNode* folder : std::as_const(m_shownChildren)) {
        const QModelIndex parent = indexOf(folder);
        if (parent.isValid()) listChanged(parent);
    }
}

QVariant CopyFileTreeModel::data(const QModelIndex& index, int role) const {
    const FileNode* node = nodeOf(index);
    if (!node) return {};
    if (index.column() == Name) {
        switch (role) {
        case Qt::DisplayRole: return displayPath(node->name);
        case Qt::ToolTipRole: return plainToolTip(displayPath(node->path));
        case Qt::DecorationRole: return QIcon(Style::imagePath(node->isDirectory ? "ic_folder" : "ic_file"));
        case Qt::CheckStateRole:
            return node->state == FileNode::Ticked         ? Qt::Checked
                   : node->state == FileNode::PartlyTicked ? Qt::PartiallyChecked
                                                           : Qt::Unchecked;
        default: return {};
        }
    }
    if (role == Qt::DisplayRole) {
        if (m_listing.contains(node)) return QStringLiteral("Listing…");
        return node->sizeKnown ? byteToSizeWithByte(node->size) : QStringLiteral("—");
    }
    if (role == Qt::TextAlignmentRole) return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    return {};
}

bool CopyFileTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    FileNode* node = nodeOf(index);
    if (!node || index.column() != Name || role != Qt::CheckStateRole) return false;
    // A partly ticked folder becomes wholly ticked, as a click on its box asks.
    m_controller.changeSelectWithNode(node, value.toInt() != Qt::Unchecked);
    return true;
}

Qt::ItemFlags CopyFileTreeModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == Name) result |= Qt::ItemIsUserCheckable;
    return result;
}

QVariant CopyFileTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return section == Name ? QStringLiteral("Name") : QStringLiteral("Size");
}

}  // namespace velmora
