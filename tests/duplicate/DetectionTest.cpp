#include "support/TrickyTree.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/platform/NativePath.h"

#include <atomic>
#include <thread>

namespace velmora {
namespace {

QList<test::TrickyTree::Group> groupsOf(const DuplicateResults& results) {
    QList<test::TrickyTree::Group> groups;
    for (DuplicateResults::Group group : results.groups(DuplicateResults::None)) {
        QStringList leaves;
        for (DuplicateResults::Copy copy : results.copies(group)) leaves.append(results.path(copy));
        groups.append({results.groupName(group), leaves});
    }
    return groups;
}

TEST(Detection, FindsExactlyTheTrueGroupsInOrder) {
    test::TrickyTree tricky;
    DuplicateFilesOpt finder;
    EXPECT_TRUE(finder.beginSearchAtPath(tricky.tree.path(), 0));
    EXPECT_EQ(finder.getProgress(), 100);

    std::unique_ptr<DuplicateResults> results;
    ASSERT_TRUE(finder.getDuplicateFiles(results));
    const QList<test::TrickyTree::Group> expected = tricky.expectedGroups();
    EXPECT_EQ(groupsOf(*results), expected);

    // Bundle groups come first, as "APP" groups summing their bundles' sizes.
    const std::vector<DuplicateResults::Group>& groups = results->groups(DuplicateResults::None);
    EXPECT_EQ(results->groupExtension(groups.front()), "APP");
    EXPECT_EQ(results->groupSize(groups.front()), 2u * 2500);
    EXPECT_TRUE(results->modified(results->copyAt(groups.front(), 0)).isNull());
    int triples = 0;
    for (DuplicateResults::Group group : groups) {
        if (results->copyCount(group) != 3 || results->size(results->copyAt(group, 0)) != 3000) continue;
        ++triples;
        EXPECT_EQ(results->groupExtension(group), "txt");
        EXPECT_EQ(results->groupSize(group), 3u * 3000);
        const DuplicateResults::Copy copy = results->copyAt(group, 0);
        EXPECT_EQ(results->modified(copy), QFileInfo(results->path(copy)).lastModified().toUTC());
        EXPECT_EQ(results->nativePath(copy), nativePath(results->path(copy)));
    }
    EXPECT_EQ(triples, 1);

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
    std::unique_ptr<DuplicateResults> results;
    ASSERT_TRUE(finder.getDuplicateFiles(results));
    ASSERT_EQ(results->groups(DuplicateResults::None).size(), 1u);
    const DuplicateResults::Group group = results->groups(DuplicateResults::None).front();
    const QList<DuplicateResults::Copy> copies = results->copies(group);
    ASSERT_EQ(copies.size(), 3);
    EXPECT_EQ(results->path(copies[0]), files.path(2));
    EXPECT_EQ(results->path(copies[1]), files.path(0));
    EXPECT_EQ(results->path(copies[2]), files.path(1));
    EXPECT_EQ(results->groupName(group), files.name(1));
}

TEST(Detection, NothingToFind) {
    test::TestTree tree;
    tree.write("only", "one file");
    DuplicateFilesOpt finder;
    std::unique_ptr<DuplicateResults> root;
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
    std::unique_ptr<DuplicateResults> results;
    if (!finder.getDuplicateFiles(results)) return;
    for (DuplicateResults::Group group : results->groups(DuplicateResults::None)) {
        ASSERT_EQ(results->copyCount(group), 3);
        QByteArray contents[3];
        for (int i = 0; i < 3; ++i) {
            QFile file(results->path(results->copyAt(group, i)));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            contents[i] = file.readAll();
        }
        EXPECT_TRUE(contents[0] == contents[1] && contents[1] == contents[2]);
    }
}

}  // namespace
}  // namespace velmora
