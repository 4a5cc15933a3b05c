// The erasure history panel with 10,000 entries: opening it (read and listed) and
// exporting the newest entry as an HTML report.
#include "GuiBench.h"
#include "engine/history/DoDataBase.h"
#include "gui/history/ExportViewController.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/SlidePanel.h"

#include <QFileInfo>
#include <QTreeWidget>
#include <sqlite3.h>

namespace velmora::bench {
namespace {

// `entries` file-eraser runs, an hour apart, each with its header row and three items,
// written as a run writes them, in one transaction.
void plantHistory(int entries) {
    sqlite3* database = nullptr;
    const QByteArray path = DoDataBase::returnDoDataBase()->getDataBase().toUtf8();
    if (sqlite3_open(path.constData(), &database) != SQLITE_OK) return;
    sqlite3_exec(database,
                 "CREATE TABLE IF NOT EXISTS TimeBase (Time TEXT, Type TEXT);"
                 "CREATE TABLE IF NOT EXISTS BaseTable (Itmes TEXT, ErasureAlgorithm TEXT, Result TEXT, Time TEXT);"
                 "BEGIN;",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* entry = nullptr;
    sqlite3_stmt* row = nullptr;
    sqlite3_prepare_v2(database, "INSERT INTO TimeBase VALUES (?,'WipeFile')", -1, &entry, nullptr);
    sqlite3_prepare_v2(database, "INSERT INTO BaseTable VALUES (?,?,?,?)", -1, &row, nullptr);
    const QDateTime start(QDate(2020, 1, 1), QTime(0, 0));
    const auto insertRow = [row](const QByteArray& item, const QByteArray& level, const QByteArray& result,
                                 const QByteArray& key) {
        const QByteArray values[] = {item, level, result, key};
        for (int column = 0; column < 4; ++column)
            sqlite3_bind_text(row, column + 1, values[column].constData(), int(values[column].size()),
                              SQLITE_TRANSIENT);
        sqlite3_step(row);
        sqlite3_reset(row);
    };
    for (int index = 0; index < entries; ++index) {
        const QByteArray key = start.addSecs(index * 3607).toString("yyyy-MM-dd HH-mm-ss").toUtf8();
        sqlite3_bind_text(entry, 1, key.constData(), int(key.size()), SQLITE_TRANSIENT);
        sqlite3_step(entry);
        sqlite3_reset(entry);
        insertRow("Items", "Erasure Standard", "Result", key);
        for (int item = 0; item < 3; ++item)
            insertRow("/home/anna/Documents/Project " + QByteArray::number(index) + "/report " +
                          QByteArray::number(item) + ".pdf",
                      "HMG Infosec Standard 5", item == 2 && index % 7 == 0 ? "Failed" : "Erased", key);
    }
    sqlite3_finalize(entry);
    sqlite3_finalize(row);
    sqlite3_exec(database, "COMMIT;", nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

}  // namespace

void benchHistory(BenchContext& context) {
    const int entries = context.scaled(10000);
    plantHistory(entries);

    QWidget page;
    page.resize(1000, 680);
    SlidePanel container(&page);
    page.show();
    HistoryViewController* history = nullptr;
    context.measure("History", QString("open with %1 entries").arg(entries),
                    [&] { history = HistoryViewController::showIn(&container); },
                    [&] {
                        return history->outlineView()->isVisible() &&
                               history->outlineView()->topLevelItemCount() >= entries && container.x() == 0;
                    });

    history->outlineView()->setCurrentItem(history->outlineView()->topLevelItem(0));
    settle(50);
    const QString report = context.workDir() + "/history report";
    context.measure("History", "export the newest entry", [&] { history->exportToChosenPath(report); },
                    [&] { return history->exportPanel() && history->exportPanel()->isVisible(); });
    if (!history->exportPanel() || !history->exportPanel()->written() || !QFileInfo::exists(report + ".html"))
        qWarning("History: the report was not written");
}

}  // namespace velmora::bench
