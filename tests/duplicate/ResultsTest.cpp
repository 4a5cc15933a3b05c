#include "engine/duplicate/DuplicateResults.h"
#include "engine/duplicate/PathNames.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

// A result tree with one group per (name, number of copies); each copy is 10 bytes.
SimpleTreeNode::Pointer makeTree(const QList<QPair<QString, int>>& groups) {
    SimpleTreeNode::Pointer root = SimpleTreeNode::create(SimpleNodeData::groupDataWithName("Root"));
    for (const auto& [name, copies] : groups) {
        SimpleNodeData data = SimpleNodeData::groupDataWithName(name);
        data.extendName = name.endsWith(".app") ? "APP" : PathNames::pathExtension(name);
        SimpleTreeNode::Pointer group = SimpleTreeNode::create(data);
        for (int i = 0; i < copies; ++i) {
            SimpleNodeData leaf = SimpleNodeData::leafDataWithName(QString("/copy%1/%2").arg(i).arg(name));
            leaf.fileSize = 10;
            group->appendChild(SimpleTreeNode::create(leaf));
            group->data().fileSize += 10;
        }
        root->appendChild(group);
    }
    return root;
}

QStringList namesIn(const SimpleTreeNode& tree) {
    QStringList names;
    for (const SimpleTreeNode::Pointer& group : tree.children()) names.append(group->data().name);
    return names;
}

TEST(Results, CategoryPlacement) {
    DuplicateResults results(makeTree({{"report.PDF", 2}, {"song.mp3", 2}, {"clip.mov", 2}, {"backup.tar.gz", 2},
                                       {"photo.jpg", 3}, {"data.zip", 2}, {"Tool.app", 2}, {"README", 2}}));
    EXPECT_EQ(namesIn(*results.categoryTree(DuplicateResults::Documents)), QStringList{"report.PDF"});
    EXPECT_EQ(namesIn(*results.categoryTree(DuplicateResults::Music)), QStringList{"song.mp3"});
    EXPECT_EQ(namesIn(*results.categoryTree(DuplicateResults::Videos)), QStringList{"clip.mov"});
    EXPECT_EQ(namesIn(*results.categoryTree(DuplicateResults::Archives)), QStringList{"data.zip"});
    EXPECT_EQ(namesIn(*results.categoryTree(DuplicateResults::Pictures)), QStringList{"photo.jpg"});
    EXPECT_EQ(namesIn(*results.categoryTree(DuplicateResults::Others)),
              (QStringList{"backup.tar.gz", "Tool.app", "README"}));
    EXPECT_EQ(results.categorySize(DuplicateResults::Pictures), 30u);
    EXPECT_EQ(results.allTreeNode()->children().size(), 8);
    // Tabs cross the numbers of Music and Videos.
    EXPECT_EQ(results.treeForTab(2), results.categoryTree(DuplicateResults::Videos));
    EXPECT_EQ(results.treeForTab(3), results.categoryTree(DuplicateResults::Music));
    EXPECT_EQ(results.treeForTab(0), results.allTreeNode());
    EXPECT_EQ(results.categoryTree(DuplicateResults::Music)->children().first()->parent(), results.allTreeNode().get());
}

TEST(Results, SelectAllKeepsTheLastCopyOfEachGroup) {
    DuplicateResults results(makeTree({{"a.txt", 3}, {"b.jpg", 2}}));
    const SimpleTreeNode& all = *results.allTreeNode();
    results.setAllSelectOrNoSelect(all, true);
    const SimpleTreeNode& group = *all.children()[0];
    EXPECT_EQ(group.data().showSelectNumStr, "2/3");
    EXPECT_EQ(group.data().selectNum, SimpleNodeData::PartlySelected);
    EXPECT_EQ(group.children()[2]->data().selectNum, SimpleNodeData::NotSelected);
    ASSERT_EQ(results.allSelectNumArr().size(), 3);
    EXPECT_EQ(results.allSelectNumArr()[0], group.children()[0]);
    EXPECT_EQ(results.allSelectNumArr()[2], all.children()[1]->children()[0]);

    // Ticking the last unselected copy needs confirmation.
    SimpleTreeNode& kept = *group.children()[2];
    EXPECT_FALSE(results.setSelectState(kept, true));
    EXPECT_EQ(kept.data().selectNum, SimpleNodeData::NotSelected);
    EXPECT_TRUE(results.setSelectState(kept, true, true));
    EXPECT_EQ(group.data().selectNum, SimpleNodeData::Selected);
    EXPECT_EQ(group.data().showSelectNumStr, "3/3");
    EXPECT_TRUE(results.setSelectState(*group.children()[0], false));
    EXPECT_EQ(group.data().showSelectNumStr, "2/3");

    results.setAllSelectOrNoSelect(all, false);
    EXPECT_TRUE(results.allSelectNumArr().isEmpty());
    EXPECT_EQ(group.data().selectNum, SimpleNodeData::NotSelected);
    EXPECT_EQ(group.data().showSelectNumStr, "0/3");
}

TEST(Results, RemovalBookkeeping) {
    DuplicateResults results(makeTree({{"a.txt", 3}, {"b.jpg", 3}}));
    const SimpleTreeNode::Pointer all = results.allTreeNode();
    const SimpleTreeNode::Pointer pictures = results.categoryTree(DuplicateResults::Pictures);
    results.setAllSelectOrNoSelect(*all, true);
    const QList<SimpleTreeNode::Pointer> selected = results.allSelectNumArr();
    ASSERT_EQ(selected.size(), 4);

    // Removing both selected copies of a select-all group drops the group
    // from the whole tree and from its category tree.
    results.refreshOutlineView(*selected[0]);
    const SimpleTreeNode::Pointer first = all->children()[0];
    EXPECT_EQ(first->children().size(), 2);
    EXPECT_EQ(first->data().fileSize, 20u);
    EXPECT_EQ(first->data().showSelectNumStr, "1/2");
    results.refreshOutlineView(*selected[1]);
    EXPECT_EQ(namesIn(*all), QStringList{"b.jpg"});
    EXPECT_TRUE(results.categoryTree(DuplicateResults::Documents)->children().isEmpty());

    // Only one copy of the other group could be removed: it stays, with a
    // label that says whether any copy is still selected.
    results.refreshOutlineView(*selected[2]);
    EXPECT_EQ(all->children()[0]->data().showSelectNumStr, "1/2");
    EXPECT_EQ(pictures->children().size(), 1);
    EXPECT_EQ(results.forgetRemoved({selected[0], selected[1], selected[2]}), 1);
    EXPECT_EQ(results.allSelectNumArr().first(), selected[3]);
}

}  // namespace
}  // namespace velmora
