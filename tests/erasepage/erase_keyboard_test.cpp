#include "support/LayoutCheck.h"
#include "support/PageTestSupport.h"
#include "support/PanelScreenshot.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/AddFilesPanel.h"
#include "gui/erase/FileEraserFailViewController.h"
#include "gui/erase/FileEraserProgressViewController.h"
#include "gui/erase/FileEraserSortVC.h"
#include "gui/erase/FileEraserSuccessViewController.h"
#include "gui/erase/FileEraserViewController.h"
#include "gui/erase/MakeSureFileEraserViewControoler.h"
#include "gui/erase/NoticeViewController.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/history/HistoryConfirmViewController.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QAccessible>
#include <QApplication>
#include <QFileDialog>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

using namespace velmora;

namespace {

void writeFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(QByteArray(int(size), 'k')) == size);
}

QWidget* focused() { return QApplication::focusWidget(); }

// A key goes where the window system sends it: to the focused control of the modal
// panel on top when there is one, else of the active window.
void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* target = focused();
    if (QWidget* modal = QApplication::activeModalWidget(); modal && !modal->isAncestorOf(target))
        target = modal->focusWidget() ? modal->focusWidget() : modal;
    if (!target) target = QApplication::activeWindow();
    QVERIFY(target);
    QTest::keyClick(target, Qt::Key(key), modifiers);
}

// Whether the user can see the control that has the focus: shown, inside what its
// parents show, and not under a side panel that covers its page.
bool visiblyFocused(QWidget* widget) {
    if (!widget || !widget->isVisible() || layoutcheck::visiblePart(widget, widget->window()).isEmpty()) return false;
    for (const SlidePanel* panel : widget->window()->findChildren<SlidePanel*>())
        if (panel->isShown() && panel->parentWidget()->isAncestorOf(widget) && !panel->isAncestorOf(widget))
            return false;
    return true;
}

// Presses Tab until `target` has the focus; every stop on the way must be visible.
bool tabTo(QWidget* target, int limit = 40) {
    for (int step = 0; step < limit && focused() != target; ++step) {
        press(Qt::Key_Tab);
        if (!visiblyFocused(focused())) {
            qWarning("Tab stopped on a control the user cannot see: %s",
                     focused() ? focused()->metaObject()->className() : "nothing");
            return false;
        }
    }
    return focused() == target;
}

}  // namespace

class EraseKeyboardTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QVERIFY(m_data.isValid());
        qputenv("VELMORA_DATA_DIR", m_data.path().toUtf8());
        test::usePageFontAndStyle();
        EraserLevel::store(1);
    }

    void init() {
        m_scratch = std::make_unique<QTemporaryDir>();
        QVERIFY(m_scratch->isValid());
        DoDataBase::returnDoDataBase()->deleteAllData();
        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_page = qobject_cast<FileEraserViewController*>(m_window->allBaseViewArr().at(0));
        QVERIFY(m_page);
    }

    void cleanup() {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (qobject_cast<QDialog*>(window)) window->close();
        m_window.reset();
        m_scratch.reset();
    }

    // Tab walks the page's controls in reading order, each visible where it has the
    // focus; Space acts on the focused one; the erase question has Cancel as its default,
    // so Enter and Escape both leave everything on disk.
    void keyboardWalkThroughTheErasePage() {
        const QString first = m_scratch->filePath("alpha.txt");
        const QString second = m_scratch->filePath("beta.txt");
        writeFile(first, 300);
        writeFile(second, 200);
        m_page->addSelectedPaths({first, second});
        QTest::qWait(600);  // the list has slid in

        // From the window buttons through the sidebar into the page, in reading order.
        QVERIFY(tabTo(m_window->allTypeButArr().last()));
        QStringList order;
        for (int step = 0; step < 8; ++step) {
            press(Qt::Key_Tab);
            QVERIFY(m_page->isAncestorOf(focused()));
            order << (focused()->toolTip().isEmpty() ? QString(focused()->metaObject()->className()) + " " +
                                                           focused()->property("text").toString()
                                                     : focused()->toolTip());
        }
        QCOMPARE(order, QStringList({"Sort", "Erasure level", "Erasure history", "Tick all", "QTableView ",
                                     "velmora::ImageSetButton Add", "velmora::ImageSetButton Empty List",
                                     "velmora::ImageSetButton Erase Now"}));

        // Space ticks the current row of the list; Delete takes the selected row off it.
        QVERIFY(tabTo(m_page->tableView()));
        press(Qt::Key_Down);
        const QModelIndex current = m_page->tableView()->currentIndex();
        QVERIFY(current.isValid());
        const bool wasTicked = m_page->valueArr().at(current.row()).isSelect;
        press(Qt::Key_Space);
        QCOMPARE(m_page->valueArr().at(current.row()).isSelect, !wasTicked);
        press(Qt::Key_Space);
        m_page->tableView()->selectRow(1);
        press(Qt::Key_Delete);
        QCOMPARE(m_page->valueArr().size(), 1);
        QVERIFY(QFileInfo::exists(second));  // off the list, not off the disk
        m_page->addSelectedPaths({second});

        QVERIFY(tabTo(m_page->eraserFileButton()));
        saveScreenshot(m_window.get(), "keyboard_erase_focused_button");
        press(Qt::Key_Space);
        QPointer<MakeSureFileEraserViewControoler> makeSure = m_page->makeSurePanel();
        QVERIFY(makeSure && makeSure->isVisible());
        QCOMPARE(makeSure->focusWidget(), static_cast<QWidget*>(makeSure->cancelButton()));
        QVERIFY(makeSure->cancelButton()->isDefault() && !makeSure->continueButton()->isDefault());
        QApplication::setActiveWindow(makeSure);  // as the window system does; offscreen does not
        QVERIFY(makeSure->cancelButton()->hasFocus());
        saveScreenshotWith(m_window.get(), makeSure, "keyboard_erase_confirmation_cancel_default");
        press(Qt::Key_Return);
        QTRY_VERIFY(!makeSure);
        QVERIFY(!m_page->progressPanel());
        QVERIFY(QFileInfo::exists(first) && QFileInfo::exists(second));

        m_page->eraserNowButtonAction();
        makeSure = m_page->makeSurePanel();
        press(Qt::Key_Escape);
        QTRY_VERIFY(!makeSure);
        QVERIFY(!m_page->progressPanel());
        QCOMPARE(m_page->valueArr().size(), 2);

        // Ctrl+O opens the add panel, Escape closes it.
        reactivate();
        m_page->tableView()->setFocus();
        press(Qt::Key_O, Qt::ControlModifier);
        auto* panel = m_page->findChild<AddFilesPanel*>();
        QVERIFY(panel && panel->isVisible());
        QTest::keyClick(panel, Qt::Key_Escape);
        QTRY_VERIFY(!panel->isVisible());
    }

    // A side panel holds the keyboard while it is shown and Escape cancels it; the level
    // panel shows the saved level again; in the history, Enter on the delete question
    // deletes nothing and Escape closes every dialog.
    void keyboardWalkThroughLevelAndHistoryPanels() {
        EraserLevel::store(3);
        QVERIFY(tabTo(toggleWithTip("Erasure level")));
        QWidget* settings = focused();
        press(Qt::Key_Space);
        QTRY_COMPARE_WITH_TIMEOUT(m_page->levelPanel()->x(), 0, 3000);
        auto* level = qobject_cast<SetEraserLevelVC*>(m_page->levelPanel()->content());
        QVERIFY(level && level->isAncestorOf(focused()));
        QVERIFY(tabTo(level->radioButton("35")));
        for (int step = 0; step < 12; ++step) {
            press(Qt::Key_Tab);
            QVERIFY2(level->isAncestorOf(focused()), "Tab left the level panel");
        }
        QVERIFY(tabTo(level->radioButton("35")));
        press(Qt::Key_Space);
        QCOMPARE(level->radioButton("35")->imageName(), QString("radiobutton_sel"));
        QAccessibleInterface* radio = QAccessible::queryAccessibleInterface(level->radioButton("35"));
        QVERIFY(radio);
        QCOMPARE(radio->role(), QAccessible::RadioButton);
        QVERIFY(radio->state().checked);
        QCOMPARE(radio->text(QAccessible::Name), EraserLevel::displayName(35));
        press(Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->levelPanel()->isVisible(), 3000);
        QCOMPARE(EraserLevel::stored(), 3);
        QCOMPARE(focused(), settings);
        press(Qt::Key_Space);
        level = qobject_cast<SetEraserLevelVC*>(m_page->levelPanel()->content());
        QCOMPARE(level->radioButton("3")->imageName(), QString("radiobutton_sel"));
        QCOMPARE(level->radioButton("35")->imageName(), QString("radiobutton_no"));
        QVERIFY(!QAccessible::queryAccessibleInterface(level->radioButton("35"))->state().checked);
        press(Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->levelPanel()->isVisible(), 3000);

        FileObj record;
        record.url = m_scratch->filePath("gone.txt");
        record.failStr = "Erased";
        DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr({record});
        PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeFileHistory, "1");
        QVERIFY(tabTo(m_page->historyButton()));
        press(Qt::Key_Space);
        QTRY_COMPARE_WITH_TIMEOUT(m_page->historyPanel()->x(), 0, 3000);
        auto* history = qobject_cast<HistoryViewController*>(m_page->historyPanel()->content());
        QVERIFY(tabTo(history->outlineView()));  // taking the focus makes the first entry current
        QVERIFY(!history->keyClickStr().isEmpty());
        const QList<ImageToggle*> rowButtons = history->outlineView()->findChildren<ImageToggle*>();
        QCOMPARE(rowButtons.size(), 2);  // export and delete of the selected entry
        QVERIFY(tabTo(rowButtons.at(1)));
        press(Qt::Key_Space);
        QPointer<HistoryConfirmViewController> confirm = history->confirmPanel();
        QVERIFY(confirm && confirm->isVisible());
        press(Qt::Key_Return);
        QTRY_VERIFY(!confirm);
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 1);
        history->emptyAllButton()->click();
        confirm = history->confirmPanel();
        press(Qt::Key_Escape);
        QTRY_VERIFY(!confirm);
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 1);
        reactivate();

        // The export panel proposes an HTML file and lists HTML files; Escape closes it.
        QVERIFY(tabTo(rowButtons.at(0)));
        press(Qt::Key_Space);
        auto* save = history->findChild<QFileDialog*>();
        QVERIFY(save && save->isVisible());
        QCOMPARE(save->nameFilters(), QStringList("HTML Report (*.html)"));
        QCOMPARE(save->defaultSuffix(), QString("html"));
        QVERIFY(save->selectedFiles().value(0).endsWith(".html"));
        QTest::keyClick(save, Qt::Key_Escape);
        QTRY_VERIFY(!history->findChild<QFileDialog*>());
        reactivate();
        QVERIFY(tabTo(rowButtons.at(0)));
        press(Qt::Key_Space);
        save = history->findChild<QFileDialog*>();
        save->selectFile(m_scratch->filePath("report.html"));
        QTest::keyClick(save, Qt::Key_Return);  // saved under the name the panel showed
        QTRY_VERIFY(history->exportPanel());  // once the report is written
        QVERIFY(QFileInfo::exists(m_scratch->filePath("report.html")));
        QVERIFY(!QFileInfo::exists(m_scratch->filePath("report.html.html")));
        press(Qt::Key_Escape);  // the "exported" note
        QTRY_VERIFY(!history->exportPanel());
        reactivate();

        press(Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->historyPanel()->isVisible(), 3000);
        QCOMPARE(focused(), static_cast<QWidget*>(m_page->historyButton()));
        // The history was viewed: the button keeps its clock without the dot.
        QCOMPARE(m_page->historyButton()->imageName(), QString("ic_history_seen"));
    }

    // The rows decide the headline: a folder erased together with a file inside it is
    // a success with the file "erased with its folder"; a cancelled run keeps its
    // unreached items listed as "Cancelled".
    void headlineFollowsTheRows() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QString folder = m_scratch->filePath("Box");
        writeFile(folder + "/inner.txt", 2000);
        m_page->addSelectedPaths({folder, folder + "/inner.txt"});
        m_page->makeSureToEraserSelectFiles();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel() || m_page->failPanel(), 60000);
        QVERIFY2(m_page->successPanel(), "a run whose rows all say Erased ended in the failure view");
        QCOMPARE(m_page->deleteErrorArr().size(), 2);
        QCOMPARE(m_page->deleteErrorArr().at(1).failStr, QString("Erased"));
        QCOMPARE(m_page->deleteErrorArr().at(1).failReason, "erased with its folder " + folder);
        QVERIFY(!QFileInfo::exists(folder));
        saveScreenshotWith(m_window.get(), m_page->successPanel(), "keyboard_erase_folder_and_file_inside");
        press(Qt::Key_Escape);
        QTRY_VERIFY(!m_page->successPanel());
    }

    void cancelledItemsStayListedAsCancelled() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QString big = m_scratch->filePath("big.bin");
        const QString later = m_scratch->filePath("later.txt");
        writeFile(big, 64 << 20);
        writeFile(later, 100);
        m_page->addSelectedPaths({big, later});
        QTest::qWait(600);  // the list has slid in
        m_page->makeSureToEraserSelectFiles();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->progressPanel() && !m_page->progressPanel()->roundText().isEmpty(), 10000);
        press(Qt::Key_Escape);  // the progress view's Cancel
        QTRY_VERIFY_WITH_TIMEOUT(m_page->failPanel(), 60000);
        QVERIFY(QFileInfo::exists(later));
        const FileObjList rows = m_page->deleteErrorArr();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(1).failStr, QString("Cancelled"));
        QVERIFY(rows.at(0).failStr != "Failed" || !QFileInfo::exists(big));
        QVERIFY(m_page->valueArr().size() >= 1);
        QCOMPARE(m_page->valueArr().last().url, later);
        const auto* title = m_page->failPanel()->findChild<QLabel*>("panelTitle");
        QCOMPARE(title->text(), rows.at(0).failStr == "Failed" ? QString("Not every item was erased")
                                                                : QString("Erasure cancelled"));
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().first().at(2).value("Result"), QString("Cancelled"));
        saveScreenshotWith(m_window.get(), m_page->failPanel(), "keyboard_erase_cancelled");
    }

    // Quitting while a run is going asks first; Cancel (the default) keeps the run going;
    // "Stop and Quit" stops it the way its Cancel does, records it, and closes the window.
    void quittingDuringARunStopsItCleanly() {
        if (!QFileInfo(secureRemoveTool()).isExecutable())
            QSKIP(qPrintable("SKIPPED: the secure-remove tool is not built at " + secureRemoveTool()));
        const QString big = m_scratch->filePath("large.bin");
        writeFile(big, 64 << 20);
        m_page->addSelectedPaths({big});
        QTest::qWait(600);  // the list has slid in
        m_page->makeSureToEraserSelectFiles();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->progressPanel() && !m_page->progressPanel()->roundText().isEmpty(), 10000);
        QVERIFY(m_window->isJobRunning());

        press(Qt::Key_Q, Qt::ControlModifier);  // from the progress view, which has the keyboard
        QTRY_VERIFY(m_window->quitQuestion());
        QPointer<QWidget> question = m_window->quitQuestion();
        saveScreenshotWith(m_window.get(), question, "keyboard_quit_during_run");
        press(Qt::Key_Return);
        QTRY_VERIFY(!question);
        QVERIFY(m_window->isVisible() && m_window->isJobRunning() && m_page->progressPanel());

        m_window->requestQuit();  // the red button
        QTRY_VERIFY(m_window->quitQuestion());
        QPushButton* stop = test::stopAndQuitButton(*m_window);
        QVERIFY(stop);
        stop->click();
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), 60000);
        QVERIFY(!m_window->isJobRunning());
        QCOMPARE(DoDataBase::returnDoDataBase()->getAllData().size(), 1);
        QVERIFY(m_page->deleteErrorArr().first().failStr != "Erased" || !QFileInfo::exists(big));
        for (QWidget* window : QApplication::topLevelWidgets())
            QVERIFY2(!(qobject_cast<QDialog*>(window) && window->isVisible()), "a panel outlived the window");
    }

    // No text of the page, its list, side panels and result view is cut, at the smallest
    // and a large window (and, in the _scale2 run, at device pixel ratio 2); the page and
    // its list grow with the window.
    void nothingClippedAtTwoSizes() {
        const QString folder = m_scratch->filePath("A folder with a rather long name for the list");
        writeFile(folder + "/x.bin", 10);
        const QString big = m_scratch->filePath("sizable.bin");
        writeFile(big, 629'145'600 / 1000);
        m_page->addSelectedPaths({folder, big});
        m_page->selectListButton(0);
        // A history entry with the longest level name and result.
        EraserLevel::store(35);
        FileObj record;
        record.url = big;
        record.failStr = "Cancelled";
        DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr({record});
        EraserLevel::store(1);
        for (const QSize& size : {m_window->minimumSize(), QSize(1500, 950)}) {
            m_window->resize(size);
            QTest::qWait(600);
            QCOMPARE(m_page->size(), m_window->pageArea()->size());
            QCOMPARE(m_page->listView()->width(), m_page->width());
            QCOMPARE(m_page->tableView()->horizontalHeader()->length(), m_page->tableView()->viewport()->width());
            QStringList clipped = clippedTexts(m_window.get());
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));

            m_page->historyButtonAction();
            QTRY_COMPARE_WITH_TIMEOUT(m_page->historyPanel()->x(), 0, 3000);
            QCOMPARE(m_page->historyPanel()->size(), m_page->size());
            auto* history = qobject_cast<HistoryViewController*>(m_page->historyPanel()->content());
            QCOMPARE(history->outlineView()->topLevelItem(0)->child(1)->text(1), EraserLevel::displayName(35));
            clipped = clippedTexts(m_page->historyPanel());
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            m_page->closeHistoryView();
            QTRY_VERIFY_WITH_TIMEOUT(!m_page->historyPanel()->isVisible(), 3000);
            QCOMPARE(m_page->historyPanel()->x(), m_page->width());

            m_page->setButtonAction();
            QTRY_COMPARE_WITH_TIMEOUT(m_page->levelPanel()->x(), 0, 3000);
            clipped = clippedTexts(m_page->levelPanel());
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            qobject_cast<SetEraserLevelVC*>(m_page->levelPanel()->content())->cancelButtonAction();
            QTRY_VERIFY_WITH_TIMEOUT(!m_page->levelPanel()->isVisible(), 3000);
        }
        saveScreenshot(m_window.get(), "keyboard_erase_page_large");

        FileObj erased;
        erased.url = m_scratch->filePath("a.txt");
        erased.failStr = "Erased";
        FileObj cancelled;
        cancelled.url = m_scratch->filePath("b.txt");
        cancelled.failStr = "Cancelled";
        cancelled.failReason = "the erase was cancelled before it reached it";
        FileEraserFailViewController result({erased, cancelled}, true, m_window.get());
        result.show();
        const QStringList clipped = clippedTexts(&result);
        QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
        QCOMPARE(result.findChild<QLabel*>("panelTitle")->text(), QString("Erasure cancelled"));
    }

    // The sort menu ticks nothing while the list is in the order items were added.
    void sortMenuTicksNothingUntilSorted() {
        writeFile(m_scratch->filePath("b.txt"), 1);
        writeFile(m_scratch->filePath("a.txt"), 2);
        m_page->addSelectedPaths({m_scratch->filePath("b.txt"), m_scratch->filePath("a.txt")});
        m_page->sortButtonAction();
        QVERIFY(m_page->sortMenu());
        for (const char* item : {"0", "1", "2", "3", "4"}) QVERIFY(!m_page->sortMenu()->item(item)->isChecked());
        m_page->sortMenu()->buttonAction("3");  // a direction alone sorts by name
        QTRY_COMPARE(m_page->valueArr().first().name, QString("a.txt"));
        m_page->sortButtonAction();
        QVERIFY(m_page->sortMenu()->item("0")->isChecked() && m_page->sortMenu()->item("3")->isChecked());
        m_page->sortMenu()->close();
        writeFile(m_scratch->filePath("0.txt"), 3);
        m_page->addSelectedPaths({m_scratch->filePath("0.txt")});  // the sorted list stays sorted
        QTRY_COMPARE(m_page->valueArr().first().name, QString("0.txt"));
    }

    void revealSaysSoWhenNoFileManagerAnswers() {
        writeFile(m_scratch->filePath("shown.txt"), 1);
        m_page->addSelectedPaths({m_scratch->filePath("shown.txt")});
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", m_scratch->path().toUtf8());  // no opener to be found
        m_page->revealInFolder(0);
        qputenv("PATH", path);
        QTRY_VERIFY(m_page->findChild<NoticeViewController*>());
        auto* notice = m_page->findChild<NoticeViewController*>();
        QCOMPARE(notice->findChild<QLabel*>("panelTitle")->text(), QString("Cannot open Folder"));
        QTest::keyClick(notice, Qt::Key_Escape);
        QTRY_VERIFY(!m_page->findChild<NoticeViewController*>());
    }

private:
    // The window system gives the window back the keyboard when a panel over it closes;
    // the offscreen platform does not.
    void reactivate() {
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    ImageToggle* toggleWithTip(const QString& tip) const {
        for (ImageToggle* toggle : m_page->findChildren<ImageToggle*>())
            if (toggle->toolTip() == tip) return toggle;
        return nullptr;
    }
    static QString secureRemoveTool() { return qEnvironmentVariable("VELMORA_BIN_DIR") + "/srm"; }

    QTemporaryDir m_data;
    std::unique_ptr<QTemporaryDir> m_scratch;
    std::unique_ptr<MainWindowController> m_window;
    FileEraserViewController* m_page = nullptr;
};

QTEST_MAIN(EraseKeyboardTest)
#include "erase_keyboard_test.moc"
