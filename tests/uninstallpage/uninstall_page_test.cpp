#include "support/KeyboardWalk.h"
#include "support/LayoutCheck.h"
#include "support/Screenshot.h"
#include "engine/platform/NativePath.h"
#include "engine/uninstall/ApplicationInventory.h"
#include "engine/uninstall/UninstallSession.h"
#include "gui/app/MainWindowController.h"
#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/duplicate/DuplicateOutlineView.h"
#include "gui/erase/FileEraserSortVC.h"
#include "gui/erase/FileEraserTableModel.h"
#include "gui/uninstall/MakeSureUninstallViewController.h"
#include "gui/uninstall/UninstallProgressViewController.h"
#include "gui/uninstall/UninstallTableModel.h"
#include "gui/uninstall/UninstallTreeModel.h"
#include "gui/uninstall/UninstallViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"
#include "support/ChildProcess.h"
#include "support/FakeAppTrees.h"
#include "support/HeldThreadPool.h"
#include "support/PageTestSupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QToolButton>
#include <csignal>
#include <sys/stat.h>

using namespace velmora;

namespace {

constexpr int kTimeoutMs = 20000;

bool exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

bool sidebarLocked(const MainWindowController& window) {
    for (SidebarButton* button : window.allTypeButArr())
        if (button->isEnabled()) return false;
    return true;
}

QStringList namesOf(const AMAppItemList& items) {
    QStringList names;
    for (const AMAppItemPtr& item : items) names.append(item->name);
    return names;
}

void clickCell(QTableView* table, int row, int column) {
    const QRect cell = table->visualRect(table->model()->index(row, column));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
}

}  // namespace

class UninstallPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
    }

    // A Linux home with four applications of known sizes, the leftovers of "Go" (its own
    // settings folder and Chrome's, which only runs on past the name), a GNOME Shell
    // extension and a browser plug-in.
    void init() {
        m_tree = std::make_unique<test::FakeAppTree>("linux");
        test::makeSizedFile(home("Applications/Go-1.2-x86_64.AppImage"), 10);
        test::makeSizedFile(home("Applications/Krita-5.2.2-x86_64.AppImage"), 2000000);
        test::writeTreeFile(home("Applications/Zed-0.9-x86_64.AppImage"), test::readFile("/bin/sleep"));
        ::chmod(home("Applications/Zed-0.9-x86_64.AppImage").c_str(), 0755);
        test::writeTreeFile(home("Applications/Editor/editor.desktop"), "[Desktop Entry]\nName=Plain Editor\nExec=editor\n");
        test::makeSizedFile(home(".config/Go/settings.json"), 3000);
        test::makeSizedFile(home(".config/google-chrome/Default/History"), 50);
        test::makeSizedFile(home(".config/Zed/settings.json"), 20);
        test::writeTreeFile(home(".local/share/gnome-shell/extensions/dash@example.org/metadata.json"),
                            R"({"name": "Dash Dock", "uuid": "dash@example.org", "version": 12})");
        test::makeSizedFile(home(".mozilla/plugins/libviewer.so"), 10);

        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_window->mouseClickAction(5);
        m_page = qobject_cast<UninstallViewController*>(m_window->allBaseViewArr().at(3));
        QVERIFY(m_page);
        QTRY_COMPARE_WITH_TIMEOUT(m_page->pos(), QPoint(0, 0), 3000);
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->isScan(), kTimeoutMs);
    }

    void cleanup() {
        m_window.reset();
        test::setImmutable(home(".config/Zed/settings.json"), false);
        if (m_running > 0) {
            ::kill(m_running, SIGKILL);
            bool timedOut = false;
            test::waitForChild(m_running, 5, timedOut);
            m_running = -1;
        }
        m_tree.reset();
    }

    // The list: counters and header, search regardless of case, sorting by name and by the
    // lazily computed sizes, select all and single ticks, and the other two tabs.
    void listCountersSearchSortAndTabs() {
        QCOMPARE(sortedNames(), QStringList({"Go", "Krita", "Plain Editor", "Zed"}));
        QCOMPARE(m_page->nameHeaderText(), QString("   Applications(Total: 4 items)"));
        QCOMPARE(m_page->counterText(), QString("Total: 4 Items"));
        QVERIFY(!m_page->removeButton()->isEnabled());
        QVERIFY(!sidebarLocked(*m_window));

        QTest::keyClicks(m_page->searchField(), "kRI");
        QCOMPARE(namesOf(m_page->showListArr()), QStringList{"Krita"});
        QCOMPARE(m_page->nameHeaderText(), QString("   Applications(Total: 1 items)"));
        QCOMPARE(m_page->counterText(), QString("Total: 1 Item"));
        m_page->searchField()->clear();
        QCOMPARE(m_page->showListArr().size(), 4);

        // The sort menu offers name and size only.
        QTest::mouseClick(m_page->sortButton(), Qt::LeftButton);
        QTRY_VERIFY(m_page->sortMenu() && m_page->sortMenu()->isVisible());
        QVERIFY(m_page->sortMenu()->item("2")->isHidden());
        QTest::mouseClick(m_page->sortMenu()->item("4"), Qt::LeftButton);
        QCOMPARE(namesOf(m_page->showListArr()), QStringList({"Zed", "Plain Editor", "Krita", "Go"}));
        // Sizes are computed once their cells are drawn; until then they sort as 0.
        m_page->tableView()->grab();
        QTRY_VERIFY_WITH_TIMEOUT(allSized(), kTimeoutMs);
        m_page->selectSortbyType(1, 1);
        QCOMPARE(namesOf(m_page->showListArr()).first(), QString("Krita"));
        QCOMPARE(m_page->showListArr().first()->size, QString("2.00 MB"));
        QCOMPARE(namesOf(m_page->showListArr()).last(), QString("Go"));
        QTRY_VERIFY(!m_page->sortMenu());

        QTest::mouseClick(m_page->selectAllButton(), Qt::LeftButton);
        QCOMPARE(m_page->uninsatllAppArr().size(), 4);
        QCOMPARE(m_page->counterText(), QString("Selected: 4/4 Items"));
        QVERIFY(m_page->counterLabel()->text().contains("14pt"));
        QCOMPARE(m_page->selectAllButton()->text(), QString("Unselect all"));
        QVERIFY(m_page->removeButton()->isEnabled());
        QTest::mouseClick(m_page->selectAllButton(), Qt::LeftButton);
        QVERIFY(m_page->uninsatllAppArr().isEmpty());
        QCOMPARE(m_page->selectAllButton()->text(), QString("Select all"));

        clickCell(m_page->tableView(), 1, UninstallTableModel::CheckBox);
        QCOMPARE(m_page->uninsatllAppArr(), AMAppItemList{m_page->showListArr().at(1)});
        QCOMPARE(m_page->tableModel()->index(1, UninstallTableModel::CheckBox).data(FileEraserTableModel::ImageRole),
                 QVariant("checkbox_yes"));
        QCOMPARE(m_page->counterText(), QString("Selected: 1/4 Items"));
        QCOMPARE(m_page->selectAllButton()->text(), QString("Select all"));
        QVERIFY(saveScreenshot(m_window.get(), "uninstall_list"));

        // A tab keeps its own ticks; switching clears the search.
        QTest::keyClicks(m_page->searchField(), "zzz");
        QTest::mouseClick(m_page->tabButton(ApplicationInventory::Widgets), Qt::LeftButton);
        QVERIFY(m_page->searchField()->text().isEmpty());
        QCOMPARE(namesOf(m_page->showListArr()), QStringList{"Dash Dock"});
        QCOMPARE(m_page->nameHeaderText(), QString("   Items(Total: 1 items)"));
        QCOMPARE(m_page->counterText(), QString("Total: 1 Item"));
        QTest::mouseClick(m_page->tabButton(ApplicationInventory::Plugins), Qt::LeftButton);
        QCOMPARE(namesOf(m_page->showListArr()), QStringList{"libviewer.so"});
        QTest::mouseClick(m_page->tabButton(ApplicationInventory::Applications), Qt::LeftButton);
        QCOMPARE(m_page->uninsatllAppArr().size(), 1);
    }

    // Removing "Go": the confirmation lists its settings ticked and Chrome's folder
    // unticked as a possible match; Escape leaves everything as it was; "Uninstall" shows
    // the progress and the end message with the sidebar locked until "OK"; then Go and its
    // folder are gone from disk and list, and Chrome's folder is still there.
    void removalKeepsThePossibleMatch() {
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        tick("Go");
        QTest::mouseClick(m_page->removeButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        MakeSureUninstallViewController* panel = m_page->makeSurePanel();
        QVERIFY(sidebarLocked(*m_window));
        // Enter presses Cancel, which has the focus; Escape cancels too.
        QTRY_COMPARE(QApplication::focusWidget(), panel->cancelButton());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_VERIFY(!panel->isVisible());
        QVERIFY(!sidebarLocked(*m_window));
        QVERIFY(exists(home(".config/Go")));
        QTest::mouseClick(m_page->removeButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        QTest::keyClick(m_page->makeSurePanel(), Qt::Key_Escape);
        QTRY_VERIFY(!m_page->makeSurePanel()->isVisible());
        QVERIFY(exists(home(".config/Go")));

        QTest::mouseClick(m_page->removeButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        panel = m_page->makeSurePanel();
        QVERIFY(panel->runningLabel()->isHidden());
        UninstallTreeModel* tree = panel->treeModel();
        QCOMPARE(tree->rowCount(), 1);
        const QModelIndex group = tree->index(0, 0);
        QVERIFY(panel->treeView()->isExpanded(group));
        QCOMPARE(group.data().toString(), QString("Go"));
        const QModelIndex settings = recordRow(tree, home(".config/Go"));
        const QModelIndex chrome = recordRow(tree, home(".config/google-chrome"));
        QVERIFY(settings.isValid() && chrome.isValid());
        // File rows are leaves to the view, so the fully expanded tree keeps no index per file
        // row (thousands of them stalled the opening of the panel); groups still fold.
        QVERIFY(tree->flags(settings).testFlag(Qt::ItemNeverHasChildren));
        QVERIFY(!tree->flags(group).testFlag(Qt::ItemNeverHasChildren));
        QCOMPARE(settings.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_yes"));
        QCOMPARE(chrome.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_no"));
        QVERIFY(chrome.data().toString().endsWith("(possible match)"));
        QCOMPARE(group.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_election"));
        QVERIFY(panel->uninstallButton()->isEnabled());
        QVERIFY(!panel->uninstallButton()->isDefault());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), panel, "uninstall_confirmation"));

        // The group's box: ticks the rest, then unticks all (nothing to uninstall), then
        // the two certain records are ticked again one by one.
        clickBox(panel, group);
        QCOMPARE(chrome.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_yes"));
        QCOMPARE(group.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_yes"));
        clickBox(panel, group);
        QCOMPARE(group.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_no"));
        QVERIFY(!panel->uninstallButton()->isEnabled());
        clickBox(panel, tree->index(0, 0, group));
        clickBox(panel, settings);
        QCOMPARE(group.data(DuplicateOutlineModel::CheckImageRole), QVariant("checkbox_election"));

        QTest::mouseClick(panel->uninstallButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->progressPanel() && m_page->progressPanel()->isEndViewShown(), kTimeoutMs);
        UninstallProgressViewController* progress = m_page->progressPanel();
        QCOMPARE(progress->progressValue(), 100);
        QVERIFY(progress->messageText().startsWith(
            "Velmora Data Eraser has successfully removed the selected application(s) and all associated files."));
        QVERIFY(progress->messageText().endsWith(" KB MB disk space."));
        QVERIFY(progress->failureList()->isHidden());
        QVERIFY2(clippedTexts(progress).isEmpty(), qPrintable(clippedTexts(progress).join('\n')));
        QVERIFY(sidebarLocked(*m_window));
        QVERIFY(saveScreenshotWithPanel(m_window.get(), progress, "uninstall_end"));

        QTest::mouseClick(progress->okButton(), Qt::LeftButton);
        QTRY_VERIFY(!m_page->progressPanel());
        QVERIFY(!sidebarLocked(*m_window));
        QVERIFY(!exists(home("Applications/Go-1.2-x86_64.AppImage")));
        QVERIFY(!exists(home(".config/Go")));
        QVERIFY(exists(home(".config/google-chrome/Default/History")));
        QCOMPARE(sortedNames(), QStringList({"Krita", "Plain Editor", "Zed"}));
        QVERIFY(m_page->uninsatllAppArr().isEmpty());
        QCOMPARE(m_page->counterText(), QString("Total: 3 Items"));
    }

    void quittingDuringAJobStopsItAndCloses_data() {
        QTest::addColumn<bool>("removing");
        QTest::newRow("confirmation") << false;
        QTest::newRow("removal") << true;
    }

    // "Stop and Quit" while the confirmation is open cancels it and removes nothing; during
    // a removal it lets the removal end (never cut off halfway) and closes its end view.
    // Either way the window closes once the page is unlocked.
    void quittingDuringAJobStopsItAndCloses() {
        QFETCH(bool, removing);
        tick("Go");
        QTest::mouseClick(m_page->removeButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        if (removing) QTest::mouseClick(m_page->makeSurePanel()->uninstallButton(), Qt::LeftButton);
        QVERIFY(test::quitDuringJob(*m_window));
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), kTimeoutMs);
        QVERIFY(!m_window->isJobRunning());
        QCOMPARE(exists(home("Applications/Go-1.2-x86_64.AppImage")), !removing);
        QCOMPARE(exists(home(".config/Go")), !removing);
    }

    // The per-row remove of a running application: the confirmation names it with "Quit
    // it first". With the application itself unticked it stays on disk and in the list; a
    // settings file that cannot be deleted makes the end view name it instead of claiming
    // success.
    void perRowRemoveOfARunningApplicationWithAFailure() {
        m_running = test::spawnQuietly({home("Applications/Zed-0.9-x86_64.AppImage"), "60"});
        QVERIFY(m_running > 0);
        // The child runs the application once it has replaced itself with it.
        QTRY_COMPARE(QFile::symLinkTarget(QString("/proc/%1/exe").arg(m_running)),
                     QString::fromStdString(home("Applications/Zed-0.9-x86_64.AppImage")));
        const bool pinned = test::setImmutable(home(".config/Zed/settings.json"), true);
        QTest::keyClicks(m_page->searchField(), "ze");
        clickCell(m_page->tableView(), 0, UninstallTableModel::Uninstall);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        MakeSureUninstallViewController* panel = m_page->makeSurePanel();
        QVERIFY(panel->runningLabel()->isVisible());
        QVERIFY(panel->runningLabel()->text().startsWith("Zed is running. Quit it first"));
        const QModelIndex group = panel->treeModel()->index(0, 0);
        clickBox(panel, panel->treeModel()->index(0, 0, group));  // the application itself
        QVERIFY(panel->uninstallButton()->isEnabled());
        QTest::mouseClick(panel->uninstallButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->progressPanel() && m_page->progressPanel()->isEndViewShown(), kTimeoutMs);
        UninstallProgressViewController* progress = m_page->progressPanel();
        if (pinned) {
            QVERIFY(!progress->messageText().contains("successfully"));
            QCOMPARE(progress->failureList()->count(), 1);
            QVERIFY(progress->failureList()->item(0)->text().contains("/.config/Zed"));
            QVERIFY2(clippedTexts(progress).isEmpty(), qPrintable(clippedTexts(progress).join('\n')));
            QVERIFY(saveScreenshotWithPanel(m_window.get(), progress, "uninstall_end_failure"));
        } else {
            qWarning("SKIPPED the failure half: no immutable flag on this file system");
            QVERIFY(!exists(home(".config/Zed")));
        }
        QTest::keyClick(progress, Qt::Key_Return);
        QTRY_VERIFY(!m_page->progressPanel());
        QVERIFY(exists(home("Applications/Zed-0.9-x86_64.AppImage")));
        QVERIFY(m_page->searchField()->text().isEmpty());
        QCOMPARE(sortedNames(), QStringList({"Go", "Krita", "Plain Editor", "Zed"}));
    }

    // Keyboard only at the smallest and a large window: Tab walks the header, the table
    // and the footer in order, Space ticks the row in the ring; no text of the page or
    // of the confirmation is cut (also at scale 2 in the _scale2 run), the table grows
    // with the window, and Enter on the confirmation cancels it.
    void keyboardWalkAndLayoutAtTwoSizes() {
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        for (const QSize& size : {m_window->minimumSize(), QSize(1500, 950)}) {
            m_window->resize(size);
            QTRY_COMPARE(m_page->size(), m_window->pageArea()->size());
            QTRY_VERIFY_WITH_TIMEOUT(allSized(), kTimeoutMs);
            QTableView* table = m_page->tableView();
            QCOMPARE(table->horizontalHeader()->length(), table->viewport()->width());
            QVERIFY2(clippedTexts(m_page).isEmpty(), qPrintable(clippedTexts(m_page).join('\n')));

            QVERIFY(keyboardwalk::tabTo(m_page->searchField()));
            for (QWidget* next : std::initializer_list<QWidget*>{m_page->sortButton(), m_page->refreshButton(), table}) {
                keyboardwalk::press(Qt::Key_Tab);
                QCOMPARE(keyboardwalk::focused(), next);
            }
            const qsizetype ticked = m_page->tickedList().size();
            keyboardwalk::press(Qt::Key_Space);
            QCOMPARE(m_page->tickedList().size(), ticked == 0 ? 1 : 0);
            const QModelIndex current = table->currentIndex();
            QCOMPARE(current.siblingAtColumn(UninstallTableModel::CheckBox).data(Qt::CheckStateRole).value<Qt::CheckState>(),
                     ticked == 0 ? Qt::Checked : Qt::Unchecked);
            QVERIFY(table->selectionModel()->isRowSelected(current.row()));
            QCOMPARE(current.siblingAtColumn(UninstallTableModel::Uninstall).data(Qt::AccessibleTextRole).toString(),
                     "Uninstall " + m_page->showListArr().at(current.row())->name);
            QVERIFY(saveScreenshot(m_window.get(), "uninstall_focus_table_" +
                                                      QString(size == m_window->minimumSize() ? "small" : "large")));
            keyboardwalk::press(Qt::Key_Tab);
            QCOMPARE(keyboardwalk::focused(), m_page->selectAllButton());
        }
        QCOMPARE(m_page->tickedList().size(), 0);  // ticked at the first size, unticked at the second
        QVERIFY(keyboardwalk::tabTo(m_page->tableView()));
        keyboardwalk::press(Qt::Key_Space);
        QCOMPARE(m_page->tickedList().size(), 1);
        keyboardwalk::press(Qt::Key_Tab);
        keyboardwalk::press(Qt::Key_Tab);
        QCOMPARE(keyboardwalk::focused(), m_page->removeButton());
        keyboardwalk::press(Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        MakeSureUninstallViewController* panel = m_page->makeSurePanel();
        QVERIFY2(clippedTexts(panel).isEmpty(), qPrintable(clippedTexts(panel).join('\n')));
        QTRY_COMPARE(keyboardwalk::focused(), panel->cancelButton());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), panel, "uninstall_confirmation_cancel_default"));
        keyboardwalk::press(Qt::Key_Return);
        QTRY_VERIFY(!panel->isVisible());
        QVERIFY(!m_page->progressPanel());
        QCOMPARE(sortedNames(), QStringList({"Go", "Krita", "Plain Editor", "Zed"}));
    }

    // Scanning the applications and gathering the related files run on the background
    // queue: with the queue held, the page still serves its events, locked and waiting;
    // once the queue is free the list and then the confirmation appear.
    void scanAndRelatedFilesRunOffThePageThread() {
        auto held = std::make_unique<test::HeldThreadPool>();
        m_page->refButtonAction();
        QVERIFY(test::postedEventIsServed());
        QVERIFY(m_page->isScan());
        QVERIFY(m_page->showListArr().isEmpty());
        held.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->isScan(), kTimeoutMs);
        QCOMPARE(sortedNames(), QStringList({"Go", "Krita", "Plain Editor", "Zed"}));

        tick("Go");
        held = std::make_unique<test::HeldThreadPool>();
        m_page->uninstallAppButtonAction();
        QVERIFY(test::postedEventIsServed());
        QVERIFY(!m_page->makeSurePanel());
        QVERIFY(!m_page->isCanClick());
        QVERIFY(sidebarLocked(*m_window));
        held.reset();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible(), kTimeoutMs);
        QCOMPARE(m_page->makeSurePanel()->treeModel()->index(0, 0).data().toString(), QString("Go"));
        m_page->makeSurePanel()->reject();
        QTRY_VERIFY(m_page->isCanClick());

        // Several applications are counted as they are done; a stop (quitting) while they
        // are gathered ends the gathering with nothing to confirm.
        tick("Krita");
        const QPointer<MakeSureUninstallViewController> rejected = m_page->makeSurePanel();
        held = std::make_unique<test::HeldThreadPool>();
        m_page->uninstallAppButtonAction();
        QCOMPARE(m_page->scanningLabel()->text(), QString("Related files 0/2"));
        m_page->stopJob();
        held.reset();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->isCanClick(), kTimeoutMs);
        QCOMPARE(m_page->makeSurePanel(), rejected.data());
        QVERIFY(!rejected->isVisible());
        QVERIFY(!m_page->scanningLabel()->isVisible());
    }

private:
    std::string home(const std::string& relative) const { return m_tree->inHome(relative); }

    QStringList sortedNames() const {
        QStringList names = namesOf(m_page->showListArr());
        names.sort();
        return names;
    }

    int rowOf(const QString& name) const {
        const AMAppItemList& shown = m_page->showListArr();
        for (int row = 0; row < shown.size(); ++row)
            if (shown.at(row)->name == name) return row;
        return -1;
    }

    void tick(const QString& name) {
        const int row = rowOf(name);
        QVERIFY(row >= 0);
        clickCell(m_page->tableView(), row, UninstallTableModel::CheckBox);
    }

    bool allSized() const {
        for (const AMAppItemPtr& item : m_page->showListArr())
            if (item->size == "0KB") return false;
        return true;
    }

    static QModelIndex recordRow(UninstallTreeModel* tree, const std::string& path) {
        const QModelIndex group = tree->index(0, 0);
        for (int row = 0; row < tree->rowCount(group); ++row) {
            const QModelIndex record = tree->index(row, 0, group);
            if (record.data(Qt::ToolTipRole).toString() == displayPath(pathFromNative(QByteArray::fromStdString(path))))
                return record;
        }
        return {};
    }

    static void clickBox(MakeSureUninstallViewController* panel, const QModelIndex& index) {
        DuplicateOutlineView* view = panel->treeView();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->checkBoxRect(index).center());
    }

    std::unique_ptr<test::FakeAppTree> m_tree;
    std::unique_ptr<MainWindowController> m_window;
    UninstallViewController* m_page = nullptr;
    pid_t m_running = -1;
};

QTEST_MAIN(UninstallPageTest)
#include "uninstall_page_test.moc"
