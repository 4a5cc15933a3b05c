#include "CliRun.h"
#include "support/TrickyTree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <unistd.h>

namespace velmora {
namespace {

using test::runCli;

QList<test::TrickyTree::Group> groupsOf(const QByteArray& json) {
    QList<test::TrickyTree::Group> groups;
    for (const QJsonValue& value : QJsonDocument::fromJson(json).object()["groups"].toArray()) {
        QStringList files;
        for (const QJsonValue& file : value["files"].toArray()) files.append(file.toString());
        groups.append({value["name"].toString(), files});
    }
    return groups;
}

TEST(DupesCommand, JsonListsExactlyTheTrueGroupsAndDeleteKeepsTheLastCopy) {
    test::TrickyTree tricky;
    ASSERT_EQ(chmod(qPrintable(tricky.unreadable), 0), 0);
    // A copy in a folder that cannot be listed is not seen either.
    const QString hiddenCopy = tricky.tree.write("locked-folder/a.mp3", "hello world");
    ASSERT_EQ(chmod(qPrintable(tricky.tree.path("locked-folder")), 0), 0);
    const QList<test::TrickyTree::Group> expected = tricky.expectedGroups({tricky.unreadable, hiddenCopy});

    const test::CliRun listed = runCli({"dupes", "--json", tricky.tree.path()});
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_EQ(groupsOf(listed.out), expected) << listed.out.toStdString();
    // Neither is dropped silently: both are named on standard error.
    EXPECT_TRUE(listed.err.contains(QFile::encodeName(tricky.unreadable))) << listed.err.toStdString();
    EXPECT_TRUE(listed.err.contains(QFile::encodeName(tricky.tree.path("locked-folder")))) << listed.err.toStdString();
    EXPECT_TRUE(listed.err.contains("2 items could not be read")) << listed.err.toStdString();

    const test::CliRun removed = runCli({"dupes", "--delete", "--yes", tricky.tree.path()});
    EXPECT_EQ(removed.exitCode, 0) << removed.out.toStdString() << removed.err.toStdString();
    for (const test::TrickyTree::Group& group : expected) {
        for (qsizetype i = 0; i + 1 < group.leaves.size(); ++i)
            EXPECT_FALSE(QFileInfo::exists(group.leaves[i])) << group.leaves[i].toStdString();
        EXPECT_TRUE(QFileInfo::exists(group.leaves.last())) << group.leaves.last().toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(tricky.unreadable));
    // A second search can only pair the kept copy with the other name of
    // the hard-linked file, whose listed name may have been removed.
    QString otherName = tricky.tree.path("links/hard-link.pdf");
    for (const test::TrickyTree::Group& group : expected)
        if (group.leaves.contains(otherName)) otherName = tricky.tree.path("links/original.pdf");
    for (const test::TrickyTree::Group& group : groupsOf(runCli({"dupes", "--json", tricky.tree.path()}).out))
        EXPECT_TRUE(group.leaves.contains(otherName)) << group.leaves.join(' ').toStdString();
    chmod(qPrintable(tricky.tree.path("locked-folder")), 0700);
}

// One file and a link to its own folder: the file reached twice is one
// file, so there is nothing to remove.
TEST(DupesCommand, FileBesideALinkToItsFolderSurvivesDelete) {
    test::TestTree tree;
    const QString file = tree.write("only-copy.dat", test::randomBytes(4000, 77));
    ASSERT_EQ(symlink(qPrintable(tree.path()), qPrintable(tree.path("link-to-here"))), 0);
    ASSERT_EQ(symlink(qPrintable(file), qPrintable(tree.path("link-to-file"))), 0);

    const test::CliRun run = runCli({"dupes", "--delete", "--yes", tree.path()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith("0 duplicate groups")) << run.out.toStdString();
    QFile survivor(file);
    ASSERT_TRUE(survivor.open(QIODevice::ReadOnly));
    EXPECT_EQ(survivor.readAll(), test::randomBytes(4000, 77));
}

// Three sizes of 60 files each (30 pairs per size): read with keep-open
// groups in parallel they would need far more than 64 descriptors.
TEST(DupesCommand, DescriptorLimitOf64DropsNothing) {
    test::TestTree tree;
    QSet<QString> expectedPairs;
    for (int size = 0; size < 3; ++size) {
        for (int pair = 0; pair < 30; ++pair) {
            const QByteArray content = test::randomBytes(3000 + size, unsigned(1000 + size * 100 + pair));
            const QString a = tree.write(QString("s%1/a%2").arg(size).arg(pair), content);
            const QString b = tree.write(QString("s%1/b%2").arg(size).arg(pair), content);
            expectedPairs.insert(qMin(a, b) + '|' + qMax(a, b));
        }
    }
    const test::CliRun run = runCli({"dupes", "--json", tree.path()}, {"prlimit", "--nofile=64:64", "--"});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains("could not read")) << run.err.toStdString();
    QSet<QString> foundPairs;
    for (const test::TrickyTree::Group& group : groupsOf(run.out)) {
        ASSERT_EQ(group.leaves.size(), 2);
        foundPairs.insert(qMin(group.leaves[0], group.leaves[1]) + '|' + qMax(group.leaves[0], group.leaves[1]));
    }
    EXPECT_EQ(foundPairs, expectedPairs);
}

// Every copy is one line of the listing whatever its name holds: a line break, tab or
// terminal escape is written as \n, \t, \x1b, and a "%1" stays as it is.
TEST(DupesCommand, NamesWithLineBreaksStayOnTheirLine) {
    test::TestTree tree;
    const QByteArray content = test::randomBytes(5000, 31);
    tree.write("two\nlines\t%1\x1b[2J.dat", content);
    tree.write("plain.dat", content);

    const test::CliRun run = runCli({"dupes", tree.path()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    QStringList copies;
    for (const QString& line : QString::fromUtf8(run.out).split('\n'))
        if (line.startsWith("  ")) copies.append(line.mid(2).remove("  (kept)"));
    copies.sort();
    EXPECT_EQ(copies, QStringList({"$'" + tree.path("two\\nlines\\t%1\\x1b[2J.dat'"), tree.path("plain.dat")}))
        << run.out.toStdString();
    EXPECT_EQ(run.out.count('\n'), 5) << run.out.toStdString();  // count, blank, group, two copies
}

TEST(DupesCommand, RefusesWhatIsNotAFolder) {
    test::TestTree tree;
    EXPECT_EQ(runCli({"dupes", tree.write("file", "x")}).exitCode, 2);
    EXPECT_EQ(runCli({"dupes"}).exitCode, 2);
}

}  // namespace
}  // namespace velmora
