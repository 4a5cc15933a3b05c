#include "CliRun.h"
#include "support/DuplicateTestTree.h"
#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/getFileList.h"

#include <QScopeGuard>
#include <sys/mount.h>
#include <unistd.h>

namespace velmora {
namespace {

QStringList listedPaths(const QString& folder) {
    getFileList enumerator;
    FileListing files;
    QStringList bundles;
    EXPECT_TRUE(enumerator.getListAtPath(folder, files, bundles, 0));
    QStringList paths;
    for (qsizetype i = 0; i < files.size(); ++i) paths.append(files.path(i));
    return paths;
}

QList<QStringList> groupsFound(const QString& folder) {
    DuplicateFilesOpt finder;
    finder.beginSearchAtPath(folder, 0);
    std::unique_ptr<DuplicateResults> results;
    QList<QStringList> groups;
    if (!finder.getDuplicateFiles(results)) return groups;
    for (DuplicateResults::Group group : results->groups(DuplicateResults::None)) {
        QStringList leaves;
        for (DuplicateResults::Copy copy : results->copies(group)) leaves.append(results->path(copy));
        groups.append(leaves);
    }
    return groups;
}

TEST(SameFile, HardLinksAreOneFile) {
    test::TestTree tree;
    const QString first = tree.write("a/name-one", test::randomBytes(8000, 21));
    tree.mkdir("b");
    ASSERT_EQ(link(qPrintable(first), qPrintable(tree.path("b/name-two"))), 0);
    EXPECT_TRUE(groupsFound(tree.path()).isEmpty());

    const QString copy = tree.write("c/copy", test::randomBytes(8000, 21));
    const QList<QStringList> groups = groupsFound(tree.path());
    ASSERT_EQ(groups.size(), 1);
    ASSERT_EQ(groups.first().size(), 2);
    EXPECT_TRUE(groups.first().contains(copy));
}

// A folder bind-mounted inside the searched tree (and the tree bind-mounted
// into itself) is the same folder: its files are not copies of themselves,
// and the walk ends. A proc file system mounted in the tree is not entered.
TEST(SameFile, BindMountIsNoSecondCopyAndPseudoFileSystemsAreSkipped) {
    if (geteuid() != 0) GTEST_SKIP() << "SKIPPED: bind mounts need root";
    test::TestTree tree;
    const QByteArray content = test::randomBytes(9000, 22);
    const QString file = tree.write("data/only-copy.bin", content);
    const QStringList mountPoints = {tree.mkdir("mirror"), tree.mkdir("loop"), tree.mkdir("kernel")};
    QStringList mounted;
    const auto unmount = qScopeGuard([&] {
        for (auto it = mounted.crbegin(); it != mounted.crend(); ++it) umount2(qPrintable(*it), MNT_DETACH);
    });
    ASSERT_EQ(mount(qPrintable(tree.path("data")), qPrintable(mountPoints[0]), nullptr, MS_BIND, nullptr), 0);
    mounted.append(mountPoints[0]);
    ASSERT_EQ(mount(qPrintable(tree.path()), qPrintable(mountPoints[1]), nullptr, MS_BIND, nullptr), 0);
    mounted.append(mountPoints[1]);
    ASSERT_EQ(mount("proc", qPrintable(mountPoints[2]), "proc", 0, nullptr), 0);
    mounted.append(mountPoints[2]);

    const QStringList listed = listedPaths(tree.path());
    EXPECT_EQ(listed.size(), 1) << listed.join(' ').toStdString();
    EXPECT_TRUE(groupsFound(tree.path()).isEmpty());

    const test::CliRun run = test::runCli({"dupes", "--delete", "--yes", tree.path()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    QFile survivor(file);
    ASSERT_TRUE(survivor.open(QIODevice::ReadOnly));
    EXPECT_EQ(survivor.readAll(), content);
}

}  // namespace
}  // namespace velmora
