#include "DuplicateTestTree.h"
#include "engine/duplicate/getFileList.h"

#include <QSet>
#include <unistd.h>

namespace velmora {
namespace {

struct Listing {
    QSet<QString> files;  // relative to the tree
    QStringList bundles;  // relative to the tree
    bool result = false;
};

Listing list(const test::TestTree& tree, bool hidden, quint64 limit, const QString& start = {}) {
    getFileList enumerator;
    enumerator.m_bSearchHiddenFile = hidden;
    QList<fileAttrbItem> files;
    QStringList bundles;
    Listing listing;
    listing.result = enumerator.getListAtPath(tree.path(start), files, bundles, limit);
    const qsizetype prefix = tree.path().size() + 1;
    for (const fileAttrbItem& item : files) {
        listing.files.insert(item.filePathName.mid(prefix));
        EXPECT_EQ(item.fileName, QFileInfo(item.filePathName).fileName());
    }
    for (const QString& bundle : bundles) listing.bundles.append(bundle.mid(prefix));
    return listing;
}

TEST(Enumeration, HiddenEntriesLinksAndSizeLimit) {
    test::TestTree tree;
    tree.write("plain.txt", "data");
    tree.write("empty.txt", {});
    tree.write(".dotfile", "data");
    tree.write(".hidden/inner/deep.txt", "data");  // two levels below a hidden folder
    tree.write("dir/.cache", "data");
    tree.write("dir/sub/file.txt", "data");
    tree.write("big.bin", QByteArray(5000, 'x'));
    tree.write("elsewhere/target.txt", "data");
    ASSERT_EQ(symlink(qPrintable(tree.path("elsewhere")), qPrintable(tree.path("linked-dir"))), 0);
    ASSERT_EQ(symlink(qPrintable(tree.path("plain.txt")), qPrintable(tree.path("linked-file"))), 0);
    ASSERT_EQ(symlink(qPrintable(tree.path("elsewhere")), qPrintable(tree.path("dir/deep-link"))), 0);
    ASSERT_EQ(symlink(qPrintable(tree.path("plain.txt")), qPrintable(tree.path("dir/file-link"))), 0);

    // Links directly in the searched folder are followed; deeper ones are not.
    const QSet<QString> visible = {"plain.txt",          "dir/sub/file.txt",        "big.bin",
                                   "elsewhere/target.txt", "linked-dir/target.txt", "linked-file"};
    Listing withoutHidden = list(tree, false, 0);
    EXPECT_TRUE(withoutHidden.result);
    EXPECT_EQ(withoutHidden.files, visible);

    Listing withHidden = list(tree, true, 0);
    EXPECT_EQ(withHidden.files, visible + QSet<QString>({".dotfile", ".hidden/inner/deep.txt", "dir/.cache"}));

    EXPECT_EQ(list(tree, true, 4999).files, QSet<QString>{"big.bin"});
    EXPECT_EQ(list(tree, true, 5000).files, QSet<QString>{});

    // A search started inside a hidden folder finds nothing without hidden entries.
    EXPECT_TRUE(list(tree, false, 0, ".hidden").files.isEmpty());
    EXPECT_FALSE(list(tree, false, 0, "no-such-folder").result);
}

TEST(Enumeration, BundlesAreListedOnceAndTheirFilesNever) {
    test::TestTree tree;
    tree.write("Tool.app/Contents/MacOS/Tool", QByteArray(100, 'x'));
    tree.write("Tool.app/Contents/Info.plist", QByteArray(50, 'x'));
    tree.write("Upper.APP/bin", QByteArray(100, 'x'));
    tree.write("Tiny.app/bin", "x");
    tree.write("Folder.apps/file", "x");          // the extension must be exactly "app"
    tree.write("Other.application/file", "x");
    tree.write("nested/Inner.app/payload", QByteArray(100, 'x'));

    // With a limit above every folder entry, only the 100-byte files count.
    Listing listing = list(tree, true, 60000);
    EXPECT_TRUE(listing.files.isEmpty());
    EXPECT_TRUE(listing.bundles.isEmpty());

    listing = list(tree, true, 60);
    EXPECT_EQ(QSet<QString>(listing.bundles.begin(), listing.bundles.end()),
              (QSet<QString>{"Tool.app", "Upper.APP", "nested/Inner.app"}));
    EXPECT_EQ(listing.bundles.size(), 3);
    EXPECT_TRUE(listing.files.isEmpty());

    listing = list(tree, true, 0);
    EXPECT_EQ(listing.files, (QSet<QString>{"Folder.apps/file", "Other.application/file"}));
    EXPECT_TRUE(listing.bundles.contains("Tiny.app"));  // its one-byte file exceeds a limit of 0
}

TEST(Enumeration, SystemFoldersAreTopLevelOnly) {
    for (const char* path : {"/Library", "/library/Caches/x", "/System", "/VOLUMES/disk", "/bin", "/sbin/x", "/Developer"})
        EXPECT_TRUE(getFileList::IsSystemDirectory(path)) << path;
    for (const char* path : {"/home/me/Library", "/Users/me/System", "/binaries", "/usr/bin"})
        EXPECT_FALSE(getFileList::IsSystemDirectory(path)) << path;
}

}  // namespace
}  // namespace velmora
