#include "TrickyTree.h"
#include "engine/duplicate/DuplicateFilesOpt.h"

#include <atomic>
#include <thread>

namespace velmora {
namespace {

QList<test::TrickyTree::Group> groupsOf(const SimpleTreeNode& root) {
    QList<test::TrickyTree::Group> groups;
    for (const SimpleTreeNode::Pointer& group : root.children()) {
        QStringList leaves;
        for (const SimpleTreeNode::Pointer& leaf : group->children()) leaves.append(leaf->data().name);
        groups.append({group->data().name, leaves});
    }
    return groups;
}

TEST(Detection, FindsExactlyTheTrueGroupsInOrder) {
    test::TrickyTree tricky;
    DuplicateFilesOpt finder;
    EXPECT_TRUE(finder.beginSearchAtPath(tricky.tree.path(), 0));
    EXPECT_EQ(finder.getProgress(), 100);

    SimpleTreeNode::Pointer root;
    ASSERT_TRUE(finder.getDuplicateFiles(root));
    EXPECT_EQ(root->data().name, "Root");
    const QList<test::TrickyTree::Group> expected = tricky.expectedGroups();
    EXPECT_EQ(groupsOf(*root), expected);

    // Bundle groups come first, as "APP" groups summing their bundles' sizes.
    const SimpleTreeNode::Pointer& bundles = root->children().first();
    EXPECT_EQ(bundles->data().extendName, "APP");
    EXPECT_EQ(bundles->data().fileSize, 2u * 2500);
    SimpleTreeNode::Pointer triple;
    for (const SimpleTreeNode::Pointer& group : root->children())
        if (group->children().size() == 3 && group->children().first()->data().fileSize == 3000) triple = group;
    ASSERT_TRUE(triple);
    EXPECT_EQ(triple->data().extendName, "txt");
    EXPECT_EQ(triple->data().fileSize, 3u * 3000);
    EXPECT_EQ(triple->children().first()->data().fileSize, 3000u);

    // One search per object.
    EXPECT_FALSE(finder.beginSearchAtPath(tricky.tree.path(), 0));
}

// Three identical files a, b, c found in that order give the run b, c, a and
// the leaves c, a, b: the kept copy (the last leaf) is b.
TEST(Detection, RotatesTheRunsFirstFileToTheEnd) {
    test::TestTree tree;
    const QByteArray content = test::randomBytes(2048, 42);
    for (const char* name : {"a", "b", "c"}) tree.write(name, content);
    getFileList enumerator;
    FileListing files;
    QStringList bundles;
    enumerator.getListAtPath(tree.path(), files, bundles, 0);
    ASSERT_EQ(files.size(), 3);

    DuplicateFilesOpt finder;
    finder.beginSearchAtPath(tree.path(), 0);
    SimpleTreeNode::Pointer root;
    ASSERT_TRUE(finder.getDuplicateFiles(root));
    ASSERT_EQ(root->children().size(), 1);
    const QList<SimpleTreeNode::Pointer>& leaves = root->children().first()->children();
    ASSERT_EQ(leaves.size(), 3);
    EXPECT_EQ(leaves[0]->data().name, files.path(2));
    EXPECT_EQ(leaves[1]->data().name, files.path(0));
    EXPECT_EQ(leaves[2]->data().name, files.path(1));
    EXPECT_EQ(root->children().first()->data().name, files.name(1));
}

TEST(Detection, NothingToFind) {
    test::TestTree tree;
    tree.write("only", "one file");
    DuplicateFilesOpt finder;
    SimpleTreeNode::Pointer root;
    EXPECT_FALSE(finder.getDuplicateFiles(root));  // no search yet
    EXPECT_TRUE(finder.beginSearchAtPath(tree.path(), 0));
    EXPECT_FALSE(finder.getDuplicateFiles(root));

    DuplicateFilesOpt notAFolder;
    EXPECT_FALSE(notAFolder.beginSearchAtPath(tree.path("only"), 0));
    EXPECT_FALSE(notAFolder.getDuplicateFiles(root));
    EXPECT_EQ(notAFolder.getCurrentSearchFile(), tree.path("only"));
}

// Stopped in the file pass, the search reports no group with a copy missing.
TEST(Detection, StoppedSearchReportsOnlyCompleteGroups) {
    test::TestTree tree;
    for (int i = 0; i < 300; ++i) tree.write(QString("f%1").arg(i), test::randomBytes(20000, unsigned(i / 3)));
    DuplicateFilesOpt finder;
    std::atomic<bool> finished{false};
    std::thread stopper([&] {
        while (!finished.load() && !QFileInfo(finder.getCurrentSearchFile()).isFile()) std::this_thread::yield();
        finder.stopSearch();
    });
    finder.beginSearchAtPath(tree.path(), 0);
    finished.store(true);
    stopper.join();
    SimpleTreeNode::Pointer root;
    if (!finder.getDuplicateFiles(root)) return;
    for (const SimpleTreeNode::Pointer& group : root->children()) {
        ASSERT_EQ(group->children().size(), 3);
        QByteArray contents[3];
        for (int i = 0; i < 3; ++i) {
            QFile file(group->children()[i]->data().name);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            contents[i] = file.readAll();
        }
        EXPECT_TRUE(contents[0] == contents[1] && contents[1] == contents[2]);
    }
}

}  // namespace
}  // namespace velmora
