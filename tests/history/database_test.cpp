#include "HistorySql.h"
#include "support/QtTestSupport.h"
#include "support/TempDataDir.h"
#include "engine/erase/EraserLevel.h"
#include "engine/history/DoDataBase.h"
#include "engine/history/HistoryKey.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

FileObj fileRecord(const QString& path, const QString& result) {
    FileObj record;
    record.url = path;
    record.name = QFileInfo(path).fileName();
    record.failStr = result;
    return record;
}

HistoryRow row(const QString& items, const QString& level, const QString& result) {
    return {{"Items", items}, {"Erasure Standard", level}, {"Result", result}};
}

const HistoryRow kHeaderRow = row("Items", "Erasure Standard", "Result");

int countRows(const QString& table) {
    return HistorySql::count(DoDataBase::returnDoDataBase()->getDataBase(), "select count(*) from " + table);
}

}  // namespace

TEST(DoDataBase, FileRunStoresOneEntryWithHeaderAndItemRows) {
    TempDataDir data;
    EraserLevel::store(7);
    DoDataBase* history = DoDataBase::returnDoDataBase();
    EXPECT_EQ(history->getDataBase(), data.path() + "/DataBase.db");

    const QString before = HistoryKey::now();
    history->writePlistForHistoryWithArr(
        {fileRecord("/home/ana/it's here.txt", "Erased"), fileRecord("/home/ana/Pictures", "Failed")});
    const QString after = HistoryKey::now();

    EXPECT_EQ(countRows("TimeBase"), 1);
    EXPECT_EQ(countRows("BaseTable"), 3);
    const HistoryDic all = history->getAllData();
    ASSERT_EQ(all.size(), 1);
    const QString key = all.firstKey();
    EXPECT_TRUE(QRegularExpression(R"(^\d{4}-\d\d-\d\d \d\d-\d\d-\d\d$)").match(key).hasMatch()) << key.toStdString();
    EXPECT_TRUE(before <= key && key <= after) << key.toStdString();
    // The level's display name at writing time goes into every item row.
    EXPECT_EQ(all.first(), (HistoryRows{kHeaderRow, row("/home/ana/it's here.txt", "DoD 5220.22-M ECE", "Erased"),
                                        row("/home/ana/Pictures", "DoD 5220.22-M ECE", "Failed")}));
    EXPECT_EQ(history->getTypeWithKey(key), "WipeFile");
    EXPECT_EQ(history->getAllDataWithKey("WipeFile"), all);
    EXPECT_TRUE(history->getAllDataWithKey("WipeVolume").isEmpty());

    history->writePlistForHistoryWithArr({});
    EXPECT_EQ(countRows("TimeBase"), 1);
}

TEST(DoDataBase, VolumeWipeRowNamesTheKindOfWipe) {
    TempDataDir data;
    DoDataBase* history = DoDataBase::returnDoDataBase();

    history->writeWipeVolumesOrFree("USB Stick", "Erased", true);
    HistoryDic all = history->getAllData();
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all.first(), (HistoryRows{kHeaderRow, row("Erase Free Space:USB Stick", "HMG Infosec Standard 5", "Erased")}));
    EXPECT_EQ(history->getTypeWithKey(all.firstKey()), "WipeVolume");

    history->deleteDataWithKey(all.firstKey());
    history->writeWipeVolumesOrFree("Backup", "Failed", false);
    all = history->getAllData();
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all.first().last(), row("Erase Hard Drive:Backup", "HMG Infosec Standard 5", "Failed"));
}

TEST(DoDataBase, ReadsFiltersAndDeletesByKey) {
    TempDataDir data;
    DoDataBase* history = DoDataBase::returnDoDataBase();
    const QString path = history->getDataBase();
    ASSERT_TRUE(HistorySql::plantEntry(path, "2026-01-02 10-00-00", "WipeFile", {{"/a", "U.S. Army AR380-19", "Erased"}}));
    ASSERT_TRUE(HistorySql::plantEntry(path, "2026-01-10 09-00-00", "WipeVolume",
                                       {{"Erase Free Space:X", "HMG Infosec Standard 5", "Erased"}}));
    // A second run in the same second shares the key: its rows are read and deleted with the first.
    ASSERT_TRUE(HistorySql::plantEntry(path, "2026-01-10 09-00-00", "WipeVolume",
                                       {{"Erase Hard Drive:Y", "HMG Infosec Standard 5", "Failed"}}));

    const HistoryDic all = history->getAllData();
    EXPECT_EQ(all.keys(), QStringList({"2026-01-02 10-00-00", "2026-01-10 09-00-00"}));
    EXPECT_EQ(all.value("2026-01-10 09-00-00").size(), 4);
    const HistoryDic files = history->getAllDataWithKey("WipeFile");
    EXPECT_EQ(files.keys(), QStringList{"2026-01-02 10-00-00"});
    EXPECT_EQ(files.first(), (HistoryRows{kHeaderRow, row("/a", "U.S. Army AR380-19", "Erased")}));

    history->deleteDataWithKey("2026-12-31 00-00-00");
    EXPECT_EQ(countRows("TimeBase"), 3);
    EXPECT_EQ(countRows("BaseTable"), 6);
    EXPECT_TRUE(history->getTypeWithKey("2026-12-31 00-00-00").isEmpty());

    history->deleteDataWithKey("2026-01-10 09-00-00");
    EXPECT_EQ(countRows("TimeBase"), 1);
    EXPECT_EQ(countRows("BaseTable"), 2);
    EXPECT_EQ(history->getAllData().keys(), QStringList{"2026-01-02 10-00-00"});
}

// Keys and types reach SQLite only as bound parameters: SQL text in them matches
// nothing, and a key that holds a quote is read and deleted like any other.
TEST(DoDataBase, SqlTextInKeysAndTypesIsData) {
    TempDataDir data;
    DoDataBase* history = DoDataBase::returnDoDataBase();
    const QString path = history->getDataBase();
    ASSERT_TRUE(HistorySql::plantEntry(path, "2026-01-02 10-00-00", "WipeFile", {{"/a", "U.S. Army AR380-19", "Erased"}}));
    ASSERT_TRUE(HistorySql::plantEntry(path, "2026-01-03 10-00-00", "WipeVolume", {{"Erase Hard Drive:X", "Zero", "Erased"}}));

    for (const QString& attack : {QString("x' OR '1'='1"), QString("' OR Time LIKE '%"),
                                  QString("x'; DELETE FROM BaseTable; --"), QString("2026-01-02 10-00-00' --")}) {
        SCOPED_TRACE(attack.toStdString());
        history->deleteDataWithKey(attack);
        EXPECT_EQ(countRows("TimeBase"), 2);
        EXPECT_EQ(countRows("BaseTable"), 4);
        EXPECT_TRUE(history->getTypeWithKey(attack).isEmpty());
        EXPECT_TRUE(history->getAllDataWithKey(attack).isEmpty());
        EXPECT_TRUE(history->getAllDataWithKey("WipeFile" + attack).isEmpty());
    }

    const QString quotedKey = "2026-01-04 10-00-00' OR '1'='1";
    ASSERT_TRUE(HistorySql::exec(path, "INSERT INTO TimeBase VALUES ('2026-01-04 10-00-00'' OR ''1''=''1','WipeFile');"
                                       "INSERT INTO BaseTable VALUES ('/b','Zero','Failed','2026-01-04 10-00-00'' OR ''1''=''1');"));
    EXPECT_EQ(history->getAllData().value(quotedKey), HistoryRows{row("/b", "Zero", "Failed")});
    EXPECT_EQ(history->getTypeWithKey(quotedKey), "WipeFile");
    history->deleteDataWithKey(quotedKey);
    EXPECT_EQ(history->getAllData().keys(), QStringList({"2026-01-02 10-00-00", "2026-01-03 10-00-00"}));
    EXPECT_EQ(countRows("BaseTable"), 4);
}

TEST(DoDataBase, UnopenableDatabaseMakesWritesNoOpsAndReadsEmpty) {
    TempDataDir data;
    // A folder where the database file should be.
    ASSERT_TRUE(QDir(data.path()).mkdir("DataBase.db"));
    DoDataBase* history = DoDataBase::returnDoDataBase();

    history->writePlistForHistoryWithArr({fileRecord("/home/ana/a.txt", "Erased")});
    history->writeWipeVolumesOrFree("USB", "Erased", false);
    history->deleteDataWithKey("2026-01-02 10-00-00");

    EXPECT_TRUE(history->getAllData().isEmpty());
    EXPECT_TRUE(history->getAllDataWithKey("WipeFile").isEmpty());
    EXPECT_TRUE(history->getTypeWithKey("2026-01-02 10-00-00").isEmpty());
    EXPECT_TRUE(QDir(history->getDataBase()).isEmpty());
    EXPECT_EQ(QDir(data.path()).entryList({"DataBase.db*"}, QDir::AllEntries | QDir::Hidden),
              QStringList{"DataBase.db"});
}
