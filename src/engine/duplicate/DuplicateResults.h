#pragma once

#include "engine/duplicate/SimpleTreeNode.h"

#include <QList>
#include <array>

namespace velmora {

// The results of one duplicate search as a page shows them: the whole tree,
// one tree per file category sharing its group nodes, the selection of
// copies to remove, and the bookkeeping after each removal. Not thread-safe:
// it belongs to the thread that shows it.
class DuplicateResults {
public:
    // Category numbers; a group goes to the first whose extensions hold its
    // own (compared in lower case), every other group to Others.
    enum Category { None = 0, Documents = 1, Music = 2, Videos = 3, Archives = 4, Pictures = 5, Others = 6 };
    static constexpr int kTabCount = 7;

    // Takes the tree from DuplicateFilesOpt::getDuplicateFiles and sorts its
    // groups into the category trees.
    explicit DuplicateResults(SimpleTreeNode::Pointer allTreeNode);

    static Category categoryOfExtension(const QString& extendName);
    // The category shown by each tab: 0 All, 1 Documents, 2 Videos, 3 Music,
    // 4 Archives, 5 Pictures, 6 Others.
    static Category categoryOfTab(int tab);
    static QString categoryLabel(Category category);

    const SimpleTreeNode::Pointer& allTreeNode() const { return m_allTreeNode; }
    const SimpleTreeNode::Pointer& categoryTree(Category category) const { return m_categoryTrees[category]; }
    const SimpleTreeNode::Pointer& treeForTab(int tab) const;
    quint64 categorySize(Category category) const { return m_categorySizes[category]; }

    // Select all: in every group of `tree` every copy but the last is
    // selected and the group becomes partly selected. Unselect all clears
    // every copy of every group.
    void setAllSelectOrNoSelect(const SimpleTreeNode& tree, bool select);

    // Ticks or unticks one copy. Ticking the last unselected copy of a group
    // answers false and changes nothing unless `confirmed` (the page asks
    // "Are you sure you want to delete all the duplicate files?" first).
    bool setSelectState(SimpleTreeNode& leaf, bool select, bool confirmed = false);

    // The selected copies, in the order they were selected.
    const QList<SimpleTreeNode::Pointer>& allSelectNumArr() const { return m_selected; }

    // After one copy has been removed from the disk: takes it out of its
    // group and drops the group when no duplicate is left in it.
    void refreshOutlineView(SimpleTreeNode& leaf);

    // At the end of a removal: forgets the removed copies from the
    // selection; answers how many selected copies could not be removed.
    qsizetype forgetRemoved(const QList<SimpleTreeNode::Pointer>& removed);

private:
    void constructSubtrees();
    void getTypeFile(Category category);
    void deleteParentNode(SimpleTreeNode& group);
    void setLeafSelected(const SimpleTreeNode::Pointer& leaf, bool select);
    static void updateGroupState(SimpleTreeNode& group);

    SimpleTreeNode::Pointer m_allTreeNode;
    std::array<SimpleTreeNode::Pointer, kTabCount> m_categoryTrees;  // index = category, [0] unused
    std::array<quint64, kTabCount> m_categorySizes{};
    QList<SimpleTreeNode::Pointer> m_selected;
};

}  // namespace velmora
