#include "support/DuplicateTestTree.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/DuplicateRemover.h"
#include "engine/duplicate/DuplicateResults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

using Outcome = DuplicateRemover::Outcome;

struct Search {
    std::unique_ptr<DuplicateResults> results;

    explicit Search(const QString& folder) {
        DuplicateFilesOpt finder;
        finder.beginSearchAtPath(folder, 0);
        EXPECT_TRUE(finder.getDuplicateFiles(results));
    }

    const std::vector<DuplicateResults::Group>& groups() const { return results->groups(DuplicateResults::None); }

    // The path's copy in the group holding it.
    DuplicateResults::Copy copy(const QString& path) const {
        for (DuplicateResults::Group group : groups())
            for (DuplicateResults::Copy copy : results->copies(group))
                if (results->path(copy) == path) return copy;
        ADD_FAILURE() << "not in any group: " << path.toStdString();
        return 0;
    }

    // Removal of exactly this copy, the other copies of its group kept.
    DuplicateRemover::Removal removalOf(const QString& path) const {
        const DuplicateResults::Copy chosen = copy(path);
        results->setSelectState(chosen, true, true);
        return DuplicateRemover::plan(*results, {chosen}).first();
    }
};

// Rewrites the file in place with other bytes of the same size and puts its
// modification time back: only a byte comparison can tell.
void overwriteKeepingSizeAndTime(const QString& path) {
    struct stat before;
    ASSERT_EQ(stat(qPrintable(path), &before), 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    bytes[bytes.size() / 2] = char(bytes[bytes.size() / 2] ^ 0x5a);
    file.seek(0);
    file.write(bytes);
    file.close();
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, qPrintable(path), times, 0), 0);
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(Removal, ACopyOrKeptCopyChangedAfterTheSearchIsLeft) {
    test::TestTree tree;
    const QByteArray one = test::randomBytes(20000, 1), two = test::randomBytes(20000, 2),
                     three = test::randomBytes(20000, 3), four = test::randomBytes(20000, 4);
    const QString bytesChanged = tree.write("g1/copy", one), keep1 = tree.write("g1/keep", one);
    const QString touched = tree.write("g2/copy", two), keep2 = tree.write("g2/keep", two);
    const QString copy3 = tree.write("g3/copy", three), keptChanged = tree.write("g3/keep", three);
    const QString plain = tree.write("g4/copy", four), keep4 = tree.write("g4/keep", four);
    Search search(tree.path());
    ASSERT_EQ(search.groups().size(), 4u);
    const auto r1 = search.removalOf(bytesChanged), r2 = search.removalOf(touched), r3 = search.removalOf(copy3),
               r4 = search.removalOf(plain);

    overwriteKeepingSizeAndTime(bytesChanged);
    const struct timespec now[2] = {{0, UTIME_NOW}, {0, UTIME_NOW}};
    ASSERT_EQ(utimensat(AT_FDCWD, qPrintable(touched), now, 0), 0);
    overwriteKeepingSizeAndTime(keptChanged);

    DuplicateRemover remover;
    EXPECT_EQ(remover.remove(r1).outcome, Outcome::CopyChanged);
    EXPECT_EQ(remover.remove(r2).outcome, Outcome::CopyChanged);
    const DuplicateRemover::Verdict third = remover.remove(r3);
    EXPECT_EQ(third.outcome, Outcome::CopyChanged);
    EXPECT_TRUE(third.reason.contains(keptChanged)) << third.reason.toStdString();
    for (const QString& path : {bytesChanged, keep1, touched, keep2, copy3, keptChanged})
        EXPECT_TRUE(QFileInfo::exists(path)) << path.toStdString();

    EXPECT_TRUE(remover.remove(r4).removed());
    EXPECT_FALSE(QFileInfo::exists(plain));
    EXPECT_EQ(contentOf(keep4), four);
}

// Every copy ticked (the page asks before the last one): all go but one.
// A group whose other copy vanished behind the search's back keeps its copy.
TEST(Removal, TheLastCopyIsNeverRemoved) {
    test::TestTree tree;
    const QByteArray content = test::randomBytes(5000, 9);
    const QStringList copies = {tree.write("a", content), tree.write("b", content), tree.write("c", content)};
    const QString lonely = tree.write("lonely/x", test::randomBytes(6000, 10));
    const QString vanishing = tree.write("lonely/y", test::randomBytes(6000, 10));
    Search search(tree.path());
    QList<DuplicateResults::Copy> all;
    for (const QString& path : copies) all.append(search.copy(path));
    for (DuplicateResults::Copy copy : all) ASSERT_TRUE(search.results->setSelectState(copy, true, true));

    DuplicateRemover remover;
    QList<Outcome> outcomes;
    for (const DuplicateRemover::Removal& removal : DuplicateRemover::plan(*search.results, all)) outcomes.append(remover.remove(removal).outcome);
    EXPECT_EQ(outcomes, QList<Outcome>({Outcome::Removed, Outcome::Removed, Outcome::LastCopy}));
    EXPECT_EQ(contentOf(copies.last()), content);

    const DuplicateRemover::Removal removal = search.removalOf(lonely);
    ASSERT_TRUE(QFile::remove(vanishing));
    EXPECT_EQ(remover.remove(removal).outcome, Outcome::KeptCopyChanged);
    EXPECT_TRUE(QFileInfo::exists(lonely));
}

// After the search the copy's folder becomes a link to a folder elsewhere
// holding an equal file of the same name, and another copy becomes a link
// to the kept one: nothing is removed, here or there.
TEST(Removal, LinksPutInPlaceAfterTheSearchAreNotFollowed) {
    test::TestTree tree, elsewhere;
    const QByteArray content = test::randomBytes(7000, 11);
    const QString inFolder = tree.write("dir/x.bin", content);
    const QString swapped = tree.write("y.bin", content);
    const QString kept = tree.write("keep.bin", content);
    const QString outside = elsewhere.write("x.bin", content);
    Search search(tree.path());
    const auto folderRemoval = search.removalOf(inFolder);
    const auto linkRemoval = search.removalOf(swapped);

    ASSERT_EQ(rename(qPrintable(tree.path("dir")), qPrintable(tree.path("moved"))), 0);
    ASSERT_EQ(symlink(qPrintable(elsewhere.path()), qPrintable(tree.path("dir"))), 0);
    ASSERT_TRUE(QFile::remove(swapped));
    ASSERT_EQ(symlink(qPrintable(kept), qPrintable(swapped)), 0);

    DuplicateRemover remover;
    EXPECT_EQ(remover.remove(folderRemoval).outcome, Outcome::CopyChanged);
    EXPECT_EQ(remover.remove(linkRemoval).outcome, Outcome::CopyChanged);
    EXPECT_EQ(contentOf(outside), content);
    EXPECT_EQ(contentOf(tree.path("moved/x.bin")), content);
    EXPECT_EQ(contentOf(kept), content);
    EXPECT_TRUE(QFileInfo(swapped).isSymLink());
}

// Bundles: one whose inner file changed after the search stays; one that
// holds a link to a folder elsewhere loses the link, never the folder's files.
TEST(Removal, BundlesAreComparedFileByFileAndRemovedWithoutFollowingLinks) {
    test::TestTree tree, elsewhere;
    const QString outsideFile = elsewhere.write("lib/keep-me.so", test::randomBytes(3000, 31));
    const QByteArray binary = test::randomBytes(4000, 32), other = test::randomBytes(4000, 33);
    for (const char* bundle : {"one/Tool.app", "two/Tool.app"}) {
        tree.write(QString("%1/Contents/bin").arg(bundle), binary);
        ASSERT_EQ(symlink(qPrintable(elsewhere.path("lib")), qPrintable(tree.path(QString("%1/Contents/lib").arg(bundle)))), 0);
    }
    for (const char* bundle : {"one/Edit.app", "two/Edit.app"}) tree.write(QString("%1/bin").arg(bundle), other);
    Search search(tree.path());
    ASSERT_EQ(search.groups().size(), 2u);
    QList<DuplicateRemover::Removal> removals;
    for (DuplicateResults::Group group : search.groups()) {
        ASSERT_EQ(search.results->groupExtension(group), "APP");
        removals.append(search.removalOf(search.results->path(search.results->copyAt(group, 0))));
    }
    const DuplicateRemover::Removal& tool = removals[0].copy.path.endsWith("Tool.app") ? removals[0] : removals[1];
    const DuplicateRemover::Removal& edit = removals[0].copy.path.endsWith("Tool.app") ? removals[1] : removals[0];
    overwriteKeepingSizeAndTime(edit.copy.path + "/bin");

    DuplicateRemover remover;
    EXPECT_EQ(remover.remove(edit).outcome, Outcome::CopyChanged);
    EXPECT_TRUE(QFileInfo::exists(edit.copy.path + "/bin"));
    EXPECT_TRUE(remover.remove(tool).removed());
    EXPECT_FALSE(QFileInfo::exists(tool.copy.path));
    EXPECT_EQ(contentOf(tool.others.first().path + "/Contents/bin"), binary);
    EXPECT_EQ(contentOf(outsideFile), test::randomBytes(3000, 31));
}

}  // namespace
}  // namespace velmora
