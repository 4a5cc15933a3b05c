#include "support/PanelScreenshot.h"
#include "support/PageTestSupport.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "gui/history/ExportViewController.h"
#include "gui/history/HistoryConfirmViewController.h"
#include "gui/history/HistoryDeleteTextFieldCell.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <sqlite3.h>

using namespace velmora;

namespace {

// Plants one file-eraser entry with a fixed key, as a run at that time stores it.
void plantEntry(const QString& key, const QStringList& items) {
    QString sql = QString("CREATE TABLE IF NOT EXISTS TimeBase (Time TEXT, Type TEXT);"
                          "CREATE TABLE IF NOT EXISTS BaseTable (Itmes TEXT, ErasureAlgorithm TEXT, Result TEXT, Time TEXT);"
                          "INSERT INTO TimeBase VALUES ('%1','WipeFile');"
                          "INSERT INTO BaseTable VALUES ('Items','Erasure Standard','Result','%1');")
                      .arg(key);
    for (const QString& item : items)
        sql += QString("INSERT INTO BaseTable VALUES ('%1','DoD 5220.22-M ECE','Erased','%2');").arg(item, key);
    sqlite3* database = nullptr;
    QCOMPARE(sqlite3_open(DoDataBase::returnDoDataBase()->getDataBase().toUtf8().constData(), &database), SQLITE_OK);
    QCOMPARE(sqlite3_exec(database, sql.toUtf8().constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

HistoryDeleteTextFieldCell* buttonsOf(HistoryViewController& history, int entry) {
    QTreeWidget* outline = history.outlineView();
    return qobject_cast<HistoryDeleteTextFieldCell*>(outline->itemWidget(outline->topLevelItem(entry), 2));
}

int countOf(const QString& text, const QString& part) { return int(text.count(part)); }

}  // namespace

class HistoryPanelTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
    }

    void init() {
        m_data = std::make_unique<QTemporaryDir>();
        QVERIFY(m_data->isValid());
        qputenv("VELMORA_DATA_DIR", m_data->path().toUtf8());
        plantEntry("2026-01-02 10-00-00", {"/home/anna/old.txt"});
        plantEntry("2026-01-10 09-00-00", {"/home/anna/Taxes 2025", "/home/anna/draft.docx"});
        m_page = std::make_unique<QWidget>();
        m_page->resize(784, 600);
        m_history = new HistoryViewController(m_page.get());
        m_history->resize(m_page->size());
        m_page->show();
        m_history->getEraserHistory();
    }

    void cleanup() {
        m_page.reset();
        m_data.reset();
    }

    void entriesAreListedNewestFirstWithTheirRows() {
        const QStringList newestFirst{"2026-01-10 09-00-00", "2026-01-02 10-00-00"};
        QCOMPARE(m_history->historyAllArr(), newestFirst);
        QTreeWidget* outline = m_history->outlineView();
        QCOMPARE(outline->topLevelItemCount(), 2);
        QCOMPARE(outline->topLevelItem(0)->text(0), newestFirst.at(0));
        QTreeWidgetItem* newest = outline->topLevelItem(0);
        QCOMPARE(newest->childCount(), 3);
        QCOMPARE(newest->child(0)->text(0), QString("Items"));
        QCOMPARE(newest->child(0)->text(1), QString("Erasure Standard"));
        QCOMPARE(newest->child(1)->text(0), QString("/home/anna/Taxes 2025"));
        QCOMPARE(newest->child(1)->text(1), QString("DoD 5220.22-M ECE"));
        QCOMPARE(newest->child(2)->text(2), QString("Erased"));
        QVERIFY(!m_history->noView()->isVisible());
        QVERIFY(m_history->emptyAllButton()->isEnabled());

        // Only the selected entry shows its export and delete buttons.
        outline->setCurrentItem(outline->topLevelItem(1));
        QCOMPARE(m_history->keyClickStr(), newestFirst.at(1));
        QCOMPARE(m_history->selectCellIndex(), 4);
        QTest::qWait(50);  // the outline lays out its rows
        QVERIFY(buttonsOf(*m_history, 1)->deleteButton()->isVisible());
        QVERIFY(buttonsOf(*m_history, 1)->exportButton()->isVisible());
        QVERIFY(!buttonsOf(*m_history, 0));
        saveScreenshot(m_page.get(), "history_panel");

        // Selecting a row of an entry keeps the entry last chosen.
        outline->setCurrentItem(newest->child(2));
        QCOMPARE(m_history->keyClickStr(), newestFirst.at(1));
        QCOMPARE(m_history->selectCellIndex(), 3);
        QVERIFY(!buttonsOf(*m_history, 1));
    }

    void deleteRemovesOnlyTheSelectedEntry() {
        m_history->clickDeleteWithDate(QString());  // nothing selected: nothing deleted
        QCOMPARE(m_history->historyAllArr().size(), 2);
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 2);

        QTreeWidget* outline = m_history->outlineView();
        outline->setCurrentItem(outline->topLevelItem(0));
        // The row's delete button asks first; "Continue" deletes.
        QTest::mouseClick(buttonsOf(*m_history, 0)->deleteButton(), Qt::LeftButton);
        QPointer<HistoryConfirmViewController> confirm = m_history->confirmPanel();
        QVERIFY(confirm && confirm->isVisible());
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 2);
        saveScreenshotWith(m_page.get(), confirm, "history_delete_confirm");
        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QCOMPARE(m_history->historyAllArr(), QStringList("2026-01-02 10-00-00"));
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().keys(), QStringList("2026-01-02 10-00-00"));
    }

    void exportAlwaysAppendsHtml() {
        QTemporaryDir target;
        QTreeWidget* outline = m_history->outlineView();
        outline->setCurrentItem(outline->topLevelItem(0));

        m_history->exportToChosenPath(target.filePath("report"));
        QVERIFY(test::waitUntil([this] { return m_history->exportPanel(); }));
        QFile report(target.filePath("report.html"));
        QVERIFY(report.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(report.readAll());
        QVERIFY(html.startsWith("<!DOCTYPE html PUBLIC"));
        QVERIFY(html.contains("<th colspan=\"3\">2026-01-10 09-00-00</th>"));
        QVERIFY(html.contains("/home/anna/draft.docx"));
        QVERIFY(!html.contains("old.txt"));
        // The key row, the caption row and the two items.
        QCOMPARE(countOf(html, "<tr"), 4);
        QCOMPARE(countOf(html, "<tr class=\"title\">"), 1);

        QPointer<ExportViewController> done = m_history->exportPanel();
        QVERIFY(done && done->isVisible());
        QCOMPARE(done->reportPath(), target.filePath("report.html"));
        QVERIFY(done->written());
        saveScreenshotWith(m_page.get(), done, "history_export_done");
        done->okButton()->click();
        QTRY_VERIFY(!done);

        m_history->exportToChosenPath(target.filePath("report.html"));
        QVERIFY(test::waitUntil([this] { return m_history->exportPanel(); }));
        QVERIFY(QFileInfo::exists(target.filePath("report.html.html")));
        QVERIFY(m_history->exportPanel()->written());
        m_history->exportPanel()->okButton()->click();
        QTRY_VERIFY(!m_history->exportPanel());

        // A folder that is not there: the panel says the report was not saved.
        m_history->exportToChosenPath(target.filePath("gone/report"));
        QVERIFY(test::waitUntil([this] { return m_history->exportPanel(); }));
        QPointer<ExportViewController> failed = m_history->exportPanel();
        QVERIFY(failed && failed->isVisible());
        QVERIFY(!failed->written());
        QVERIFY(PanelContent::messageLabel(failed)->text().startsWith("The report could not be saved as"));
        QVERIFY(!QFileInfo::exists(target.filePath("gone")));
        failed->okButton()->click();
    }

    void emptyAllDeletesEverythingAndCloses() {
        PublicUtilities::writeUpDataHistoryStr("WipeFileHistory", "1");
        QSignalSpy closed(m_history, &HistoryViewController::closeHistoryView);
        QTest::mouseClick(m_history->emptyAllButton(), Qt::LeftButton);
        QPointer<HistoryConfirmViewController> confirm = m_history->confirmPanel();
        QVERIFY(confirm);
        confirm->reject();  // "Cancel" keeps everything
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 2);
        QCOMPARE(closed.count(), 0);

        QTest::mouseClick(m_history->emptyAllButton(), Qt::LeftButton);
        QTest::mouseClick(m_history->confirmPanel()->continueButton(), Qt::LeftButton);
        QVERIFY(DoDataBase::returnDoDataBase()->getAllData().isEmpty());
        QVERIFY(m_history->historyAllArr().isEmpty());
        QVERIFY(m_history->noView()->isVisible());
        QVERIFY(!m_history->outlineView()->isVisible());
        QVERIFY(!m_history->emptyAllButton()->isEnabled());
        QCOMPARE(closed.count(), 1);
        QCOMPARE(PublicUtilities::getUpDataHistoryStr("WipeFileHistory"), QString("0"));
        saveScreenshot(m_page.get(), "history_panel_empty");
    }

private:
    std::unique_ptr<QTemporaryDir> m_data;
    std::unique_ptr<QWidget> m_page;
    HistoryViewController* m_history = nullptr;
};

QTEST_MAIN(HistoryPanelTest)
#include "history_panel_test.moc"
