// velmora-cli erase end to end: the real program, the real tool, the real history.
#include "support/EraseTestSupport.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/NativePath.h"
#include "support/ChildProcess.h"
#include "support/LoopVolume.h"
#include "support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <climits>
#include <sys/stat.h>

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

// velmora-cli with arguments given as bytes, as a shell passes them.
CliRun runCliWithBytes(const std::vector<std::string>& arguments) {
    const ProcessResult run = velmora::test::runCli(arguments, {});
    return {run.status, QString::fromStdString(run.out), QString::fromStdString(run.err)};
}

std::string synced(const std::string& path, const std::string& content) {
    writeFile(path, content);
    const int fd = openLongPath(QByteArray::fromStdString(path), O_RDONLY);
    EXPECT_EQ(fd >= 0 && fsync(fd) == 0, true) << path;
    if (fd >= 0) close(fd);
    return path;
}

// File names are bytes. A name that is not UTF-8, one with a line break and control
// characters, one that starts with a dash and one of 255 bytes are erased as they are.
// A name that is not plain text is printed in the shell's $'...' quoting, so no name can
// forge a line of the output, in erase and in history alike; the history records the
// readable form, with U+FFFD for each byte that is not text.
TEST_F(EraseCommandTest, NamesOfAnyBytesAreErasedPrintedQuotedAndRecordedReadably) {
    const std::string folder = m_scratch.path().toStdString() + "/";
    const QString shownFolder = m_scratch.path() + "/";
    const std::string notText = folder + "bad\xff\xfe" "name";
    const std::string lineBreak = folder + "a\nErased  home\t\x1b[2J\\";
    const std::string dash = folder + "-rf";
    const std::string longest = folder + std::string(255, 'n');
    // What a lossy conversion would make of the first name: it must survive.
    const std::string replaced = synced(folder + "bad\xef\xbf\xbd\xef\xbf\xbd" "name", "keep");
    for (const std::string& path : {notText, lineBreak, dash, longest}) synced(path, "data");

    const CliRun run = runCliWithBytes({"erase", "--yes", notText, lineBreak, dash, longest});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    for (const std::string& path : {notText, lineBreak, dash, longest}) EXPECT_FALSE(exists(path)) << path;
    EXPECT_EQ(readFile(replaced), "keep");
    const QString quotedLineBreak = "$'" + shownFolder + "a\\nErased  home\\t\\x1b[2J\\\\'";
    EXPECT_EQ(run.out, "Erased  $'" + shownFolder + "bad\\xff\\xfename'\n" + "Erased  " + quotedLineBreak + "\n" +
                           "Erased  " + shownFolder + "-rf\n" + "Erased  " + shownFolder + QString(255, 'n') + "\n");

    const QString readable = shownFolder + QString::fromUtf8("bad\uFFFD\uFFFDname");
    const HistoryRows rows = onlyFileEntry();
    ASSERT_EQ(rows.size(), 5);
    EXPECT_EQ(rows.at(1).value("Items"), readable);
    EXPECT_EQ(rows.at(2).value("Items"), QString::fromStdString(lineBreak));

    const CliRun history = runCli({"history", "--type", "WipeFile"});
    EXPECT_EQ(history.exitCode, 0) << history.err.toStdString();
    EXPECT_TRUE(history.out.contains("\n  " + readable + " | HMG Infosec Standard 5 | Erased\n")) << history.out.toStdString();
    EXPECT_TRUE(history.out.contains("\n  " + quotedLineBreak + " | HMG Infosec Standard 5 | Erased\n"));
    EXPECT_EQ(history.out.count('\n'), 6) << history.out.toStdString();  // the entry, its header row, four items

    const CliRun json = runCli({"history", "--json"});
    const QJsonArray items = QJsonDocument::fromJson(json.out.toUtf8()).array().at(0).toObject().value("rows").toArray();
    ASSERT_EQ(items.size(), 5) << json.out.toStdString();
    EXPECT_EQ(items.at(1).toObject().value("Items").toString(), readable);
    EXPECT_EQ(items.at(2).toObject().value("Items").toString(), quotedLineBreak);
}

// 40 levels of 120-byte names below `folder`, a file with the content at the bottom:
// deeper than PATH_MAX. Answers the top folder.
std::string deepTree(const std::string& folder, const std::string& content) {
    const std::string top = folder + "/" + std::string(120, 't');
    EXPECT_EQ(mkdir(top.c_str(), 0755), 0) << top;
    const std::string bottom = makeDeepFolders(top, 39, std::string(120, 'd')) + "/data";
    EXPECT_GT(bottom.size(), std::size_t(PATH_MAX));
    synced(bottom, content);
    return top;
}

// A tree deeper than PATH_MAX is counted, erased and checked through folder descriptors.
TEST_F(EraseCommandTest, TreeDeeperThanPathMaxIsErased) {
    const std::string top = deepTree(m_scratch.path().toStdString(), "data");
    const CliRun run = runCliWithBytes({"erase", "--yes", top});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QString("Erased  %1\n").arg(QString::fromStdString(top)));
    EXPECT_FALSE(exists(top));
}

// The truth test for such names: on an ext4 volume, neither the marker of the deepest file
// of a tree deeper than PATH_MAX nor that of a file named with bytes that are not UTF-8 is
// anywhere in the raw image after the erase.
TEST_F(EraseCommandTest, DeepTreeAndByteNameLeaveNoResidueOnExt4) {
    LoopVolume volume;
    std::string mountPoint;
    const std::string label = uniqueLabel("vbytes");
    if (const std::string problem = volume.formatAndMount("ext4", label, mountPoint); !problem.empty())
        GTEST_SKIP() << "SKIPPED: " << problem;
    const std::string marker = uniqueMarker();
    std::string content;
    while (content.size() < 200'000) content += marker + "\n";
    const std::string top = deepTree(mountPoint, content);
    const std::string notText = synced(mountPoint + "/bad\xff\xfe", content);
    ASSERT_TRUE(volume.unmountAll());
    ASSERT_GT(volume.countInImage(marker), 0) << "the marker never reached the image";
    ASSERT_EQ(volume.mount("ext4", label), mountPoint);

    const CliRun run = runCliWithBytes({"erase", "--yes", top, notText});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out.count("Erased  "), 2) << run.out.toStdString();
    ASSERT_TRUE(volume.unmountAll());
    EXPECT_EQ(volume.countInImage(marker), 0);
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
