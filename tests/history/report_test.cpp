#include "QStringPrinter.h"
#include "engine/history/HistoryReport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

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
