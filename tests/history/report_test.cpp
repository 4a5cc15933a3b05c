#include "support/QtTestSupport.h"
#include "engine/history/HistoryReport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace velmora;

namespace {

const QString kKey = "2026-03-14 09-26-53";

// The entry of the hand-written report: header row, then two items.
const HistoryRows kRows{
    {{"Items", "Items"}, {"Erasure Standard", "Erasure Standard"}, {"Result", "Result"}},
    {{"Items", "/home/ana/Documents/R&D notes.txt"}, {"Erasure Standard", "HMG Infosec Standard 5"}, {"Result", "Erased"}},
    {{"Items", "/home/ana/Pictures/Café"}, {"Erasure Standard", "HMG Infosec Standard 5"}, {"Result", "Failed"}},
};

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

TEST(HistoryReport, WritesTheHandWrittenReportToExactlyTheGivenPath) {
    const QByteArray golden = readFile(qEnvironmentVariable("VELMORA_SOURCE_DIR") + "/tests/fixtures/history/two-items.html");
    ASSERT_FALSE(golden.isEmpty());
    EXPECT_EQ(HistoryReport::html(kKey, kRows).toUtf8().toStdString(), golden.toStdString());

    QTemporaryDir dir;
    ASSERT_TRUE(HistoryReport::writeHTML(dir.path() + "/report", kKey, kRows));
    EXPECT_EQ(readFile(dir.path() + "/report"), golden);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"report"});
}

TEST(HistoryReport, SavePanelNameAndPath) {
    EXPECT_EQ(HistoryReport::proposedFileName(QDateTime(QDate(2026, 3, 14), QTime(9, 26, 53))),
              "ErasureHistory(2026-03-14 09-26-53)");
    EXPECT_EQ(HistoryReport::exportPath("/home/ana/report"), "/home/ana/report.html");
    EXPECT_EQ(HistoryReport::exportPath("/home/ana/report.html"), "/home/ana/report.html.html");
}

// Names come from files and volumes: markup in them is shown as text, never run.
TEST(HistoryReport, MarkupInNamesAndKeysIsEscaped) {
    const QString key = "2026-03-14 09-26-53<script>alert('key')</script>";
    const HistoryRows rows{
        {{"Items", "/home/ana/<script>alert(1)</script>.txt"}, {"Erasure Standard", "Zero"}, {"Result", "Erased"}},
        {{"Items", "Erase Hard Drive:\"><img src=x onerror=alert(2)>"}, {"Erasure Standard", "Zero"},
         {"Result", "Failed & <b>not</b> erased"}},
    };
    const QString html = HistoryReport::html(key, rows);
    EXPECT_FALSE(html.contains("<script")) << html.toStdString();
    EXPECT_FALSE(html.contains("<img")) << html.toStdString();
    EXPECT_FALSE(html.contains("<b>")) << html.toStdString();
    EXPECT_TRUE(html.contains("<th colspan=\"3\">2026-03-14 09-26-53&lt;script&gt;alert('key')&lt;/script&gt;</th>"));
    EXPECT_TRUE(html.contains("<td>/home/ana/&lt;script&gt;alert(1)&lt;/script&gt;.txt</td>"));
    EXPECT_TRUE(html.contains("<td>Erase Hard Drive:&quot;&gt;&lt;img src=x onerror=alert(2)&gt;</td>"));
    EXPECT_TRUE(html.contains("<td>Failed &amp; &lt;b&gt;not&lt;/b&gt; erased</td>"));
}

// The report goes exactly where the user pointed; a target that cannot be written
// is a failure the caller reports, and nothing is left behind.
TEST(HistoryReport, UnwritableTargetFailsAndLeavesNothing) {
    QTemporaryDir dir;
    const QString key = "2026-03-14 09-26-53";
    EXPECT_FALSE(HistoryReport::writeHTML(dir.path() + "/no such folder/report.html", key, kRows));
    ASSERT_TRUE(QDir(dir.path()).mkdir("taken.html"));
    EXPECT_FALSE(HistoryReport::writeHTML(dir.path() + "/taken.html", key, kRows));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"taken.html"});
}

// A link planted where the report goes is replaced by the report, never written through.
TEST(HistoryReport, LinkAtTheTargetIsReplacedNotFollowed) {
    QTemporaryDir dir;
    const QString victim = dir.path() + "/victim.txt";
    QFile victimFile(victim);
    ASSERT_TRUE(victimFile.open(QIODevice::WriteOnly));
    victimFile.write("keep me");
    victimFile.close();
    ASSERT_TRUE(QFile::link(victim, dir.path() + "/report.html"));

    ASSERT_TRUE(HistoryReport::writeHTML(dir.path() + "/report.html", kKey, kRows));
    EXPECT_EQ(readFile(victim), QByteArray("keep me"));
    EXPECT_FALSE(QFileInfo(dir.path() + "/report.html").isSymLink());
    EXPECT_EQ(readFile(dir.path() + "/report.html"), HistoryReport::html(kKey, kRows).toUtf8());
    struct stat info;
    ASSERT_EQ(::stat(QFile::encodeName(dir.path() + "/report.html").constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
}
