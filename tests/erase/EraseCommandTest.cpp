// velmora-cli erase end to end: the real program, the real tool, the real history.
#include "EraseTestSupport.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"

#include <QProcess>

namespace velmora::test {
namespace {

struct CliRun {
    int exitCode = -1;
    QString out;
    QString err;
};

class EraseCommandTest : public EraseTest {
protected:
    static CliRun runCli(const QStringList& arguments) {
        QProcess cli;
        cli.start(binDir() + "/velmora-cli", arguments);
        cli.closeWriteChannel();
        EXPECT_TRUE(cli.waitForFinished(120000));
        return {cli.exitCode(), QString::fromLocal8Bit(cli.readAllStandardOutput()), QString::fromLocal8Bit(cli.readAllStandardError())};
    }

    static HistoryRows onlyFileEntry() {
        const HistoryDic entries = DoDataBase::returnDoDataBase()->getAllDataWithKey(DoDataBase::kWipeFile);
        EXPECT_EQ(entries.size(), 1);
        return entries.isEmpty() ? HistoryRows{} : entries.first();
    }
};

TEST_F(EraseCommandTest, ErasesAFolderTreeAndRecordsOneHistoryEntry) {
    const QString folder = scratch("project");
    writeFile(folder + "/readme.txt", "read me");
    writeFile(folder + "/src/main.c", QByteArray(20000, 'c'));
    writeFile(folder + "/src/.hidden", "h");
    writeFile(folder + "/empty.dat", {});
    QDir().mkpath(folder + "/build/tmp");
    const QString single = scratch("single.txt");
    writeFile(single, "single");

    const CliRun run = runCli({"erase", "--yes", folder, single});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(existsOnDisk(folder));
    EXPECT_FALSE(existsOnDisk(single));
    EXPECT_EQ(run.out, QString("Erased  %1\nErased  %2\n").arg(folder, single));

    // One row per path given, after the header row.
    const HistoryRows rows = onlyFileEntry();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows.at(1).value("Items"), folder);
    EXPECT_EQ(rows.at(1).value("Result"), "Erased");
    EXPECT_EQ(rows.at(1).value("Erasure Standard"), "HMG Infosec Standard 5");
    EXPECT_EQ(rows.at(2).value("Items"), single);
    EXPECT_EQ(PublicUtilities::getUpDataHistoryStr(DoDataBase::kWipeFileHistory), "1");
}

TEST_F(EraseCommandTest, ItemLeftOnDiskIsFailedAndExitsOne) {
    // An immutable empty file is unlinked directly, which the flag forbids.
    const QString locked = scratch("locked.txt");
    writeFile(locked, {});
    if (!makeImmutable(locked)) GTEST_SKIP() << "SKIPPED: setting the immutable flag needs root on a file system that supports it";
    const QString other = scratch("other.txt");
    writeFile(other, "other");
    const CliRun run = runCli({"erase", "--yes", locked, other});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(existsOnDisk(locked));
    EXPECT_FALSE(existsOnDisk(other));
    EXPECT_EQ(run.out, QString("Failed  %1\nErased  %2\n").arg(locked, other));
    const HistoryRows rows = onlyFileEntry();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows.at(1).value("Result"), "Failed");
}

// The tool removes this name but cannot overwrite data that other names still show:
// that is no erasure, whatever the path says afterwards.
TEST_F(EraseCommandTest, HardLinkedFileIsFailedWithTheReasonAndExitsOne) {
    const QString file = scratch("linked.txt");
    writeFile(file, QByteArray(30000, 'd'));
    ASSERT_EQ(link(QFile::encodeName(file).constData(), QFile::encodeName(scratch("other-name")).constData()), 0);
    const CliRun run = runCli({"erase", "--yes", file});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, QString("Failed  %1\n").arg(file));
    EXPECT_TRUE(run.err.contains(file + ": has 2 hard links")) << run.err.toStdString();
    const HistoryRows rows = onlyFileEntry();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows.at(1).value("Items"), file);
    EXPECT_EQ(rows.at(1).value("Result"), "Failed");
}

// A name cannot forge a line of the one-line-per-item output, in the erase result or in
// the history list: its line break, tab, escape and backslash are written as \n, \t,
// \x1b and \\, while the history keeps the name itself.
TEST_F(EraseCommandTest, NameWithALineBreakStaysOnItsOwnLine) {
    const QString name = "a\nErased  home\t\x1b[2J\\";
    const QString file = scratch(name);
    writeFile(file, "data");
    const QString shown = scratch("a\\nErased  home\\t\\x1b[2J\\\\");

    const CliRun run = runCli({"erase", "--yes", file});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(existsOnDisk(file));
    EXPECT_EQ(run.out, "Erased  " + shown + "\n");
    EXPECT_EQ(onlyFileEntry().value(1).value("Items"), file);

    const CliRun history = runCli({"history", "--type", "WipeFile"});
    EXPECT_EQ(history.exitCode, 0) << history.err.toStdString();
    EXPECT_TRUE(history.out.contains("\n  " + shown + " | HMG Infosec Standard 5 | Erased\n")) << history.out.toStdString();
    EXPECT_EQ(history.out.count('\n'), 3) << history.out.toStdString();  // the entry, its header row, the item
}

TEST_F(EraseCommandTest, RefusesRootMissingPathsAndAnUnconfirmedRun) {
    const QString kept = scratch("kept.txt");
    writeFile(kept, "kept");

    CliRun run = runCli({"erase", "--yes", kept, "/tmp/.."});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("refusing to erase \"/tmp/..\"")) << run.err.toStdString();

    run = runCli({"erase", "--yes", kept, scratch("no-such-file")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("no such file or folder")) << run.err.toStdString();

    run = runCli({"erase", "--yes"});
    EXPECT_EQ(run.exitCode, 2);

    // Without --yes the question is asked; a closed input is a no.
    run = runCli({"erase", kept});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("nothing erased"));

    EXPECT_TRUE(existsOnDisk(kept));
    EXPECT_TRUE(DoDataBase::returnDoDataBase()->getAllDataWithKey(DoDataBase::kWipeFile).isEmpty());
}

}  // namespace
}  // namespace velmora::test
