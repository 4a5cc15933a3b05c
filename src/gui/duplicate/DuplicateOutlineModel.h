#pragma once

#include "engine/duplicate/SimpleTreeNode.h"

#include <QAbstractItemModel>
#include <QHash>
#include <functional>

namespace velmora {

// The outline of duplicate groups: the groups of the shown tree as top rows,
// one child row per copy. The model reads the engine's nodes directly; every
// change of the tree goes through applyTreeChange() or selectionChanged().
class DuplicateOutlineModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Name, Selected, Size, Date, ColumnCount };
    enum Role {
        CheckImageRole = Qt::UserRole + 1,  // "checkbox_no", "checkbox_yes" or "checkbox_election"
        IconImageRole,                      // the image of the file's kind
        IsGroupRole,
    };

    explicit DuplicateOutlineModel(QObject* parent = nullptr);

    static int columnWidth(int column);

    // Shows another tree (none: an empty outline).
    void setTree(SimpleTreeNode* root);
    SimpleTreeNode* tree() const { return m_root; }
    SimpleTreeNode* nodeForIndex(const QModelIndex& index) const;
    QModelIndex indexForNode(const SimpleTreeNode* node) const;

    // Runs a change that removes or reorders rows of the shown tree; the
    // rows that remain keep their expanded state and selection in the view.
    void applyTreeChange(const std::function<void()>& change);
    // Redraws every row after selections or labels changed.
    void selectionChanged();
    // Orders the groups by a column. The copies keep their order: the last
    // copy of a group is the one select-all keeps.
    void sortGroups(int column, bool descending);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    void rebuildGroupRows();
    QString iconImage(const SimpleTreeNode& group) const;

    SimpleTreeNode* m_root = nullptr;
    QHash<const SimpleTreeNode*, int> m_groupRows;
};

}  // namespace velmora
