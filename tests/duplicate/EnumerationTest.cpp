#include "support/DuplicateTestTree.h"
#include "engine/duplicate/getFileList.h"

#include <QSet>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
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
    FileListing files;
    QStringList bundles;
    Listing listing;
    listing.result = enumerator.getListAtPath(tree.path(start), files, bundles, limit);
    const qsizetype prefix = tree.path().size() + 1;
    for (qsizetype i = 0; i < files.size(); ++i) {
        listing.files.insert(files.path(i).mid(prefix));
        EXPECT_EQ(files.name(i), QFileInfo(files.path(i)).fileName());
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
    ASSERT_EQ(link(qPrintable(tree.path("big.bin")), qPrintable(tree.path("dir/sub/zz-hard-link"))), 0);
    ASSERT_EQ(mkfifo(qPrintable(tree.path("dir/fifo")), 0600), 0);  // would block a reader

    // No link is followed, at any level; a hard link is its file once; a FIFO is no file.
    // Which name of big.bin comes first depends on the listing order.
    auto oneNameOfBig = [](QSet<QString> files) {
        EXPECT_FALSE(files.contains("big.bin") && files.contains("dir/sub/zz-hard-link"));
        if (files.remove("dir/sub/zz-hard-link")) files.insert("big.bin");
        return files;
    };
    const QSet<QString> visible = {"plain.txt", "dir/sub/file.txt", "big.bin", "elsewhere/target.txt"};
    Listing withoutHidden = list(tree, false, 0);
    EXPECT_TRUE(withoutHidden.result);
    EXPECT_EQ(oneNameOfBig(withoutHidden.files), visible);

    Listing withHidden = list(tree, true, 0);
    EXPECT_EQ(oneNameOfBig(withHidden.files), visible + QSet<QString>({".dotfile", ".hidden/inner/deep.txt", "dir/.cache"}));

    EXPECT_EQ(oneNameOfBig(list(tree, true, 4999).files), QSet<QString>{"big.bin"});
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

TEST(Enumeration, PseudoFileSystemsAreKnownByTheirMountEntry) {
    const QByteArray mountInfo =
        "22 1 0:21 / /proc rw,nosuid - proc proc rw\n"
        "23 1 0:22 / /sys rw,nosuid shared:7 - sysfs sysfs rw\n"
        "24 23 0:30 / /sys/fs/cgroup rw shared:9 master:2 - cgroup2 cgroup2 rw\n"
        "25 1 0:24 / /tmp rw - tmpfs tmpfs rw\n"
        "26 1 0:25 / / rw - overlay overlay rw,lowerdir=/a\n"
        "27 1 8:1 / /home rw - ext4 /dev/sda1 rw\n"
        "28 1 0:40 / /run/user/1000/doc rw - fuse.portal portal rw\n"
        "garbage line\n";
    const PseudoFileSystems pseudo = PseudoFileSystems::fromMountInfo(mountInfo);
    for (dev_t device : {makedev(0, 21), makedev(0, 22), makedev(0, 30), makedev(0, 40)})
        EXPECT_TRUE(pseudo.contains(device)) << major(device) << ":" << minor(device);
    // tmpfs and overlay hold real files; a disk is searched.
    for (dev_t device : {makedev(0, 24), makedev(0, 25), makedev(8, 1)})
        EXPECT_FALSE(pseudo.contains(device)) << major(device) << ":" << minor(device);
    for (const char* path : {"/proc", "/sys", "/dev", "/run"}) EXPECT_TRUE(PseudoFileSystems::isSkippedBelowRoot(path));
    EXPECT_FALSE(PseudoFileSystems::isSkippedBelowRoot("/home"));

    // This machine's /proc is skipped, a test folder is not.
    struct stat proc, temporary;
    test::TestTree tree;
    ASSERT_EQ(stat("/proc", &proc), 0);
    ASSERT_EQ(stat(qPrintable(tree.path()), &temporary), 0);
    const PseudoFileSystems now = PseudoFileSystems::mountedNow();
    EXPECT_TRUE(now.contains(proc.st_dev));
    EXPECT_FALSE(now.contains(temporary.st_dev));
}

// The entries of a folder, as readdir gives them: regular files, and each
// folder's contents in its place; links, FIFOs and the rest left out.
void listInReaddirOrder(const QString& folder, const QString& prefix, QStringList& out) {
    DIR* dir = opendir(qPrintable(folder));
    ASSERT_NE(dir, nullptr);
    QStringList names;
    while (const dirent* entry = readdir(dir))
        if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) names.append(entry->d_name);
    closedir(dir);
    for (const QString& name : names) {
        struct stat st;
        ASSERT_EQ(lstat(qPrintable(folder + '/' + name), &st), 0);
        if (S_ISREG(st.st_mode)) out.append(prefix + name);
        if (S_ISDIR(st.st_mode)) listInReaddirOrder(folder + '/' + name, prefix + name + '/', out);
    }
}

// A large folder is looked at on several threads: its files still come in
// the folder's order, each subfolder's contents in its place.
TEST(Enumeration, ALargeFolderKeepsItsOrder) {
    test::TestTree tree;
    for (int i = 0; i < 700; ++i) {
        const QString name = QString("e%1").arg(i);
        if (i % 97 == 5) tree.write(name + "/inner/x", "data");
        else if (i % 89 == 7) ASSERT_EQ(symlink(qPrintable(tree.path("e0")), qPrintable(tree.path(name))), 0);
        else if (i % 83 == 11) ASSERT_EQ(mkfifo(qPrintable(tree.path(name)), 0600), 0);
        else tree.write(name, QByteArray::number(i));
    }
    QStringList expected;
    listInReaddirOrder(tree.path(), {}, expected);

    getFileList enumerator;
    FileListing files;
    QStringList bundles;
    ASSERT_TRUE(enumerator.getListAtPath(tree.path(), files, bundles, 0));
    QStringList listed;
    for (qsizetype i = 0; i < files.size(); ++i) listed.append(files.path(i).mid(tree.path().size() + 1));
    EXPECT_EQ(listed, expected);
}

TEST(Enumeration, SystemFoldersAreTopLevelOnly) {
    for (const char* path : {"/Library", "/library/Caches/x", "/System", "/VOLUMES/disk", "/bin", "/sbin/x", "/Developer"})
        EXPECT_TRUE(getFileList::IsSystemDirectory(path)) << path;
    for (const char* path : {"/home/me/Library", "/Users/me/System", "/binaries", "/usr/bin"})
        EXPECT_FALSE(getFileList::IsSystemDirectory(path)) << path;
}

}  // namespace
}  // namespace velmora
