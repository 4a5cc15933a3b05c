#include "TrickyTree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <unistd.h>

namespace velmora {
namespace {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
};

// Runs velmora-cli; as root it runs without the capabilities that let root
// read any file, so that an unreadable file is unreadable.
CliRun runCli(const QStringList& args) {
    const QString cli = qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora-cli";
    QProcess process;
    if (geteuid() == 0) process.start("setpriv", QStringList{"--bounding-set=-dac_override,-dac_read_search", cli} + args);
    else process.start(cli, args);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(120000));
    return {process.exitCode(), process.readAllStandardOutput()};
}

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
    const QList<test::TrickyTree::Group> expected = tricky.expectedGroups({tricky.unreadable});

    const CliRun listed = runCli({"dupes", "--json", tricky.tree.path()});
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_EQ(groupsOf(listed.out), expected) << listed.out.toStdString();

    const CliRun removed = runCli({"dupes", "--delete", "--yes", tricky.tree.path()});
    EXPECT_EQ(removed.exitCode, 0) << removed.out.toStdString();
    for (const test::TrickyTree::Group& group : expected) {
        for (qsizetype i = 0; i + 1 < group.leaves.size(); ++i)
            EXPECT_FALSE(QFileInfo::exists(group.leaves[i])) << group.leaves[i].toStdString();
        EXPECT_TRUE(QFileInfo::exists(group.leaves.last())) << group.leaves.last().toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(tricky.unreadable));
    EXPECT_TRUE(groupsOf(runCli({"dupes", "--json", tricky.tree.path()}).out).isEmpty());
}

TEST(DupesCommand, RefusesWhatIsNotAFolder) {
    test::TestTree tree;
    EXPECT_EQ(runCli({"dupes", tree.write("file", "x")}).exitCode, 2);
    EXPECT_EQ(runCli({"dupes"}).exitCode, 2);
}

}  // namespace
}  // namespace velmora
