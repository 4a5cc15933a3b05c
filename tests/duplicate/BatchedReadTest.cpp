#include "CliRun.h"
#include "support/TrickyTree.h"
#include "engine/duplicate/BatchedFirstPages.h"
#include "engine/duplicate/DuplicateFilesOpt.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace velmora {
namespace {

// Sets or clears the switch that keeps the finder off io_uring, for this
// process and the tools it starts, until the end of the scope.
class ReadPath {
public:
    explicit ReadPath(bool batched) : m_before(qgetenv(kSwitch)), m_wasSet(qEnvironmentVariableIsSet(kSwitch)) {
        if (batched) qunsetenv(kSwitch);
        else qputenv(kSwitch, "1");
    }
    ~ReadPath() {
        if (m_wasSet) qputenv(kSwitch, m_before);
        else qunsetenv(kSwitch);
    }

private:
    static constexpr const char* kSwitch = "VELMORA_NO_IO_URING";
    QByteArray m_before;
    bool m_wasSet;
};

bool batchedReadsServeHere() {
    const ReadPath path(true);
    DescriptorBudget budget(64);
    return BatchedFirstPages(budget).ready();
}

QList<QStringList> groupsFound(const QString& folder) {
    DuplicateFilesOpt finder;
    EXPECT_TRUE(finder.beginSearchAtPath(folder, 0));
    EXPECT_TRUE(finder.unreadablePaths().isEmpty()) << finder.unreadablePaths().join(", ").toStdString();
    std::unique_ptr<DuplicateResults> results;
    QList<QStringList> groups;
    if (!finder.getDuplicateFiles(results)) return groups;
    for (DuplicateResults::Group group : results->groups(DuplicateResults::None)) {
        QStringList leaves{results->groupName(group)};
        for (DuplicateResults::Copy copy : results->copies(group)) leaves.append(results->path(copy));
        groups.append(leaves);
    }
    return groups;
}

// Many files in few sizes: a size with fewer files than are kept open per
// size and one with more (read in several batches and a remainder), each
// with copies, files that share only their first page, and files larger
// than a page whose copies are read whole after the batch.
void writeSmallFiles(const test::TestTree& tree) {
    for (int i = 0; i < 150; ++i) {
        tree.write(QString("many/d%1/f%2").arg(i % 7).arg(i), test::randomBytes(1500, unsigned(i % 100)));
        QByteArray large = test::randomBytes(9000, 7);  // one first page for all
        large.append(test::randomBytes(100, unsigned(1000 + i % 120)));
        tree.write(QString("many/d%1/g%2").arg(i % 5).arg(i), large);
    }
    for (int i = 0; i < 40; ++i) tree.write(QString("few/f%1").arg(i), test::randomBytes(2500, unsigned(500 + i % 25)));
}

TEST(BatchedReads, BothReadPathsGiveTheSameGroupsInTheSameOrder) {
    if (!batchedReadsServeHere()) GTEST_SKIP() << "io_uring cannot be used here; only the one-by-one path runs";
    test::TrickyTree tricky;
    test::TestTree small;
    writeSmallFiles(small);
    for (const QString& folder : {tricky.tree.path(), small.path()}) {
        QList<QStringList> batched, oneByOne;
        {
            const ReadPath path(true);
            batched = groupsFound(folder);
        }
        {
            const ReadPath path(false);
            oneByOne = groupsFound(folder);
        }
        EXPECT_FALSE(batched.isEmpty());
        EXPECT_EQ(batched, oneByOne) << folder.toStdString();
    }
    // 100 contents among 150 small files, 120 tails among the large ones, 25 among 40.
    EXPECT_EQ(groupsFound(small.path()).size(), 50 + 30 + 15);
}

// With few descriptors the batches shrink to what the limit leaves, on both
// paths, and still every file is compared.
TEST(BatchedReads, TightDescriptorLimitDropsNothing) {
    test::TestTree tree;
    for (int i = 0; i < 200; ++i) tree.write(QString("d%1/f%2").arg(i % 3).arg(i), test::randomBytes(1200, unsigned(i / 2)));
    for (bool batched : {true, false}) {
        const ReadPath path(batched);
        const test::CliRun run = test::runCli({"dupes", "--json", tree.path()}, {"prlimit", "--nofile=30:30", "--"});
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_FALSE(run.err.contains("could not read")) << run.err.toStdString();
        const QJsonArray groups = QJsonDocument::fromJson(run.out).object()["groups"].toArray();
        EXPECT_EQ(groups.size(), 100) << (batched ? "batched" : "one by one");
        for (const QJsonValue& group : groups) EXPECT_EQ(group.toObject()["files"].toArray().size(), 2);
    }
}

}  // namespace
}  // namespace velmora
