// The heavy steps of the Erase Files page and its history panel run off the window's
// thread: right after each is started the window is free again, the page shows that the
// work is under way, and an event posted meanwhile is served before the work ends.
#include "support/HeldThreadPool.h"
#include "support/HistoryEntries.h"
#include "support/PageTestSupport.h"
#include "engine/history/DoDataBase.h"
#include "gui/erase/FileEraserFailViewController.h"
#include "gui/erase/FileEraserProgressViewController.h"
#include "gui/erase/FileEraserSuccessViewController.h"
#include "gui/erase/FileEraserViewController.h"
#include "gui/history/ExportViewController.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/SlidePanel.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <memory>

using namespace velmora;

class EraseResponsivenessTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { test::usePageFontAndStyle(); }

    // Each test has a history of its own (entries of one second share their key).
    void init() {
        m_data = std::make_unique<QTemporaryDir>();
        QVERIFY(m_data->isValid());
        qputenv("VELMORA_DATA_DIR", m_data->path().toUtf8());
    }

    // Counting a large folder's items happens while the window serves its events; Cancel
    // during the count ends the run with nothing touched.
    void confirmingALargeFolderCountsItOffTheWindowThread() {
        QTemporaryDir scratch;
        const QString folder = scratch.filePath("large");
        for (int part = 0; part < 20; ++part) {
            QVERIFY(QDir().mkpath(folder + QString("/part%1").arg(part)));
            for (int index = 0; index < 1000; ++index)
                QVERIFY(QFile(folder + QString("/part%1/f%2").arg(part).arg(index)).open(QIODevice::WriteOnly));
        }
        FileEraserViewController page(nullptr);
        page.show();
        page.addSelectedPaths({folder});
        page.makeSureToEraserSelectFiles();
        FileEraserProgressViewController* progress = page.progressPanel();
        QVERIFY(progress);
        QCOMPARE(progress->pathText(), QString("Counting items…"));
        QVERIFY(progress->roundText().isEmpty());

        bool countingWhenServed = false;
        bool served = false;
        QTimer::singleShot(0, &page, [&] {
            served = true;
            countingWhenServed = page.progressPanel() && page.progressPanel()->pathText() == "Counting items…";
            if (countingWhenServed) page.cancelEraserButtonAction();
        });
        QVERIFY(test::waitUntil([&] { return served; }));
        QVERIFY(countingWhenServed);
        QVERIFY(test::waitUntil([&] { return page.failPanel() != nullptr; }));
        QCOMPARE(page.deleteErrorArr().size(), 1);
        QCOMPARE(page.deleteErrorArr().first().failStr, QString("Cancelled"));
        QVERIFY(QFile::exists(folder + "/part19/f999"));
    }

    // A drop of many single paths is checked on a worker while the window serves its
    // events; a batch dropped meanwhile follows it, and a path in both is listed once.
    void aLargeDropIsCheckedOffTheWindowThread() {
        QTemporaryDir scratch;
        QStringList first;
        for (int index = 0; index < 1500; ++index) {
            first.append(scratch.filePath(QString("f%1.txt").arg(index)));
            QVERIFY(QFile(first.last()).open(QIODevice::WriteOnly));
        }
        const QString later = scratch.filePath("later.txt");
        QVERIFY(QFile(later).open(QIODevice::WriteOnly));
        FileEraserViewController page(nullptr);
        page.show();

        auto held = std::make_unique<test::HeldThreadPool>();
        page.addSelectedPaths(first);
        QVERIFY(test::postedEventIsServed());
        QVERIFY(page.isAddingPaths());
        QVERIFY(page.valueArr().isEmpty());
        page.addSelectedPaths({first.last(), later});
        held.reset();
        QVERIFY(test::waitUntil([&] { return !page.isAddingPaths() && page.valueArr().size() == 1501; }));
        QStringList listed;
        for (const FileObj& record : page.valueArr()) listed.append(record.url);
        QCOMPARE(listed, first + QStringList{later});
        QVERIFY(page.listView()->isVisible());
    }

    // The end of a run is recorded in the history on a worker thread; its outcome shows
    // after that, and the window serves events meanwhile.
    void theRunsOutcomeShowsAfterItIsRecordedOffTheWindowThread() {
        QTemporaryDir scratch;
        const QString file = scratch.filePath("kept.txt");
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        FileEraserViewController page(nullptr);
        page.show();
        page.addSelectedPaths({file});

        page.removeObjEnd({});  // the run reached nothing
        QVERIFY(!page.failPanel() && !page.successPanel());
        bool panelWhenServed = true;
        QTimer::singleShot(0, &page, [&] { panelWhenServed = page.failPanel() || page.successPanel(); });
        QVERIFY(test::waitUntil([&] { return page.failPanel() != nullptr; }));
        QVERIFY(!panelWhenServed);
        QCOMPARE(page.deleteErrorArr().first().failStr, QString("Failed"));
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 1);
        QCOMPARE(page.valueArr().size(), 0);
    }

    // Opening reads and builds the outline on a worker thread; exporting writes the report
    // on one.
    void historyOpensAndExportsOffTheWindowThread() {
        FileObj record;
        record.url = "/home/anna/report.pdf";
        record.failStr = "Erased";
        DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr({record});
        QWidget page;
        page.resize(900, 640);
        SlidePanel container(&page);
        page.show();

        HistoryViewController* history = HistoryViewController::showIn(&container);
        QVERIFY(history->isLoading());
        QCOMPARE(history->outlineView()->topLevelItemCount(), 0);
        QVERIFY(test::waitUntil([&] { return !history->isLoading(); }));
        QCOMPARE(history->outlineView()->topLevelItemCount(), 1);
        QCOMPARE(history->outlineView()->topLevelItem(0)->child(1)->text(0), record.url);

        history->outlineView()->setCurrentItem(history->outlineView()->topLevelItem(0));
        QTemporaryDir target;
        history->exportToChosenPath(target.filePath("report"));
        QVERIFY(!history->exportPanel());
        QVERIFY(test::waitUntil([&] { return history->exportPanel() != nullptr; }));
        QVERIFY(history->exportPanel()->written());
        QFile report(target.filePath("report.html"));
        QVERIFY(report.open(QIODevice::ReadOnly));
        QVERIFY(report.readAll().contains("/home/anna/report.pdf"));
    }

    // A long history reaches the outline in parts: an event posted when the first part
    // arrives is served before the outline holds every entry.
    void longHistoryReachesTheOutlineInParts() {
        const int entries = 1500;
        const std::string newest =
            test::plantHistoryEntries(DoDataBase::returnDoDataBase()->getDataBase().toStdString(), entries, 2);
        QVERIFY(!newest.empty());
        QWidget page;
        page.resize(900, 640);
        SlidePanel container(&page);
        page.show();

        HistoryViewController* history = HistoryViewController::showIn(&container);
        QTreeWidget* outline = history->outlineView();
        int entriesWhenServed = -1;
        bool loadingWhenServed = false;
        connect(outline->model(), &QAbstractItemModel::rowsInserted, &page, [&](const QModelIndex& parent) {
            if (parent.isValid() || entriesWhenServed >= 0) return;
            entriesWhenServed = 0;
            QTimer::singleShot(0, &page, [&] {
                entriesWhenServed = outline->topLevelItemCount();
                loadingWhenServed = history->isLoading();
            });
        });
        QVERIFY(test::waitUntil([&] { return !history->isLoading(); }));
        QVERIFY(entriesWhenServed > 0);
        QVERIFY(entriesWhenServed < entries);
        QVERIFY(loadingWhenServed);
        QCOMPARE(outline->topLevelItemCount(), entries);
        QCOMPARE(outline->topLevelItem(0)->text(0), QString::fromStdString(newest));
        QVERIFY(outline->topLevelItem(entries - 1)->isExpanded());
        QCOMPARE(outline->topLevelItem(entries - 1)->childCount(), 3);
    }

private:
    std::unique_ptr<QTemporaryDir> m_data;
};

QTEST_MAIN(EraseResponsivenessTest)
#include "erase_responsiveness_test.moc"
