#include "HistorySql.h"
#include "support/QtTestSupport.h"
#include "support/TempDataDir.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/history/HistoryKey.h"
#include "engine/history/HistoryReport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

QJsonObject jsonRow(const QString& items, const QString& level, const QString& result) {
    return {{"Items", items}, {"Erasure Standard", level}, {"Result", result}};
}

const QJsonObject kHeaderRow = jsonRow("Items", "Erasure Standard", "Result");

FileObj fileRecord(const QString& path, const QString& result) {
    FileObj record;
    record.url = path;
    record.failStr = result;
    return record;
}

}  // namespace

// velmora-cli runs as a child process on the data folder this process writes
// its entries into.
class HistoryCli : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(QFile::exists(cliPath())) << cliPath().toStdString(); }

    static QString cliPath() { return qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora-cli"; }

    CliResult run(const QStringList& args, const QByteArray& input = {}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VELMORA_DATA_DIR", data.path());
        process.setProcessEnvironment(environment);
        process.start(cliPath(), QStringList{"history"} + args);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(60000)) return {};
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    QString databasePath() const { return DoDataBase::returnDoDataBase()->getDataBase(); }

    TempDataDir data;
};

TEST_F(HistoryCli, ListsEntriesNewestFirstWithTheirTypeAndRows) {
    DoDataBase* history = DoDataBase::returnDoDataBase();
    history->writeWipeVolumesOrFree("USB", "Erased", true);
    const QString volumeKey = history->getAllData().firstKey();
    // The next entry gets a key of its own only in the next second.
    while (HistoryKey::now() == volumeKey) QThread::msleep(50);
    history->writePlistForHistoryWithArr({fileRecord("/home/ana/a.txt", "Erased"), fileRecord("/home/ana/b", "Failed")});

    const CliResult all = run({"--json"});
    ASSERT_EQ(all.exitCode, 0) << all.err.toStdString();
    const QJsonArray entries = QJsonDocument::fromJson(all.out).array();
    ASSERT_EQ(entries.size(), 2) << all.out.toStdString();
    const QJsonObject newest = entries.at(0).toObject();
    EXPECT_GT(newest["key"].toString(), volumeKey);
    EXPECT_EQ(newest["type"].toString(), "WipeFile");
    EXPECT_EQ(newest["rows"].toArray(), (QJsonArray{kHeaderRow, jsonRow("/home/ana/a.txt", "HMG Infosec Standard 5", "Erased"),
                                                    jsonRow("/home/ana/b", "HMG Infosec Standard 5", "Failed")}));
    const QJsonObject volume{{"key", volumeKey},
                             {"type", "WipeVolume"},
                             {"rows", QJsonArray{kHeaderRow, jsonRow("Erase Free Space:USB", "HMG Infosec Standard 5", "Erased")}}};
    EXPECT_EQ(entries.at(1).toObject(), volume);

    const CliResult volumes = run({"--type", "WipeVolume", "--json"});
    ASSERT_EQ(volumes.exitCode, 0) << volumes.err.toStdString();
    EXPECT_EQ(QJsonDocument::fromJson(volumes.out).array(), QJsonArray{volume});

    const CliResult text = run({});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_TRUE(text.out.contains(volumeKey.toUtf8() + "  WipeVolume")) << text.out.toStdString();
    EXPECT_TRUE(text.out.contains("Erase Free Space:USB | HMG Infosec Standard 5 | Erased")) << text.out.toStdString();

    EXPECT_EQ(run({"--type", "Disk"}).exitCode, 2);
    EXPECT_EQ(run({"--json", "extra"}).exitCode, 2);
}

TEST_F(HistoryCli, ExportsThePanelsReportToExactlyTheGivenFile) {
    const QString key = "2026-01-02 10-00-00";
    ASSERT_TRUE(HistorySql::plantEntry(databasePath(), key, "WipeFile", {{"/home/ana/a.txt", "HMG Infosec Standard 5", "Erased"}}));
    const QString target = data.path() + "/report";

    const CliResult exported = run({"export", key, target});
    ASSERT_EQ(exported.exitCode, 0) << exported.err.toStdString();
    QFile file(target);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const HistoryRows rows = DoDataBase::returnDoDataBase()->getAllData().value(key);
    EXPECT_EQ(file.readAll(), HistoryReport::html(key, rows).toUtf8());
    EXPECT_FALSE(QFile::exists(target + ".html"));

    EXPECT_EQ(run({"export", "1999-01-01 00-00-00", data.path() + "/other"}).exitCode, 1);
    EXPECT_FALSE(QFile::exists(data.path() + "/other"));
    EXPECT_EQ(run({"export", key, data.path() + "/missing folder/report"}).exitCode, 1);
    EXPECT_EQ(run({"export", key}).exitCode, 2);
}

TEST_F(HistoryCli, DeletesOneEntryAndClearsAllOnlyWhenConfirmed) {
    ASSERT_TRUE(HistorySql::plantEntry(databasePath(), "2026-01-02 10-00-00", "WipeFile", {{"/a", "HMG Infosec Standard 5", "Erased"}}));
    ASSERT_TRUE(HistorySql::plantEntry(databasePath(), "2026-01-10 09-00-00", "WipeVolume",
                                       {{"Erase Hard Drive:USB", "HMG Infosec Standard 5", "Erased"}}));
    PublicUtilities::writeUpDataHistoryStr("WipeFileHistory", "1");
    PublicUtilities::writeUpDataHistoryStr("WipeVolumeHistory", "1");
    DoDataBase* history = DoDataBase::returnDoDataBase();

    // A key made of SQL matches no entry and deletes nothing.
    const CliResult injected = run({"delete", "x' OR '1'='1"});
    EXPECT_EQ(injected.exitCode, 1);
    EXPECT_TRUE(injected.err.contains("no history entry")) << injected.err.toStdString();
    EXPECT_EQ(run({"export", "x' OR '1'='1", data.path() + "/injected"}).exitCode, 1);
    EXPECT_FALSE(QFile::exists(data.path() + "/injected"));
    EXPECT_EQ(history->getAllData().size(), 2);

    EXPECT_EQ(run({"delete", "2026-01-02 10-00-00"}).exitCode, 0);
    EXPECT_EQ(history->getAllData().keys(), QStringList{"2026-01-10 09-00-00"});
    EXPECT_EQ(run({"delete", "2026-01-02 10-00-00"}).exitCode, 1);
    EXPECT_EQ(run({"delete"}).exitCode, 2);

    EXPECT_EQ(run({"clear"}, "n\n").exitCode, 1);
    EXPECT_EQ(run({"clear"}).exitCode, 1);  // no answer on a closed input is a no
    EXPECT_EQ(history->getAllData().size(), 1);
    EXPECT_EQ(PublicUtilities::getUpDataHistoryStr("WipeVolumeHistory"), "1");

    EXPECT_EQ(run({"clear"}, "y\n").exitCode, 0);
    EXPECT_TRUE(history->getAllData().isEmpty());
    EXPECT_EQ(PublicUtilities::getUpDataHistoryStr("WipeFileHistory"), "0");
    EXPECT_EQ(PublicUtilities::getUpDataHistoryStr("WipeVolumeHistory"), "0");

    ASSERT_TRUE(HistorySql::plantEntry(databasePath(), "2026-01-11 09-00-00", "WipeFile", {{"/b", "HMG Infosec Standard 5", "Erased"}}));
    EXPECT_EQ(run({"clear", "--yes"}).exitCode, 0);
    EXPECT_TRUE(history->getAllData().isEmpty());
}
