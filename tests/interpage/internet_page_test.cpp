#include "support/KeyboardWalk.h"
#include "support/Screenshot.h"
#include "support/TempDataDir.h"
#include "engine/inter/BrowerObj.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/FileEraserTableModel.h"
#include "gui/inter/BrowserTableModel.h"
#include "gui/inter/CategoryTableModel.h"
#include "gui/inter/CleanerInterEndViewController.h"
#include "gui/inter/CloseBrowerViewController.h"
#include "gui/inter/FullDiskAccessViewController.h"
#include "gui/inter/InternetViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"
#include "support/BrowserProfiles.h"
#include "support/ChildProcess.h"
#include "support/FileAccessOverride.h"
#include "support/HeldThreadPool.h"
#include "support/PageTestSupport.h"

#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <csignal>
#include <sys/stat.h>

using namespace velmora;
using keyboardwalk::focused;
using keyboardwalk::press;
using keyboardwalk::tabTo;
using velmora::test::sidebarLocked;

namespace {

constexpr int kScanTimeoutMs = 20000;
const std::string kMarkerUrl = "https://only-in-deleted-rows.example/velmora-marker-7f3a9c";

long long rows(const QString& database, const QString& table) {
    return test::rowCount(database.toStdString(), table.toStdString());
}

bool profileHolds(const QString& folder, const QString& needle) {
    return !test::filesContaining(folder.toStdString(), needle.toStdString()).empty();
}

void clickCell(QTableView* table, int row, int column) {
    const QRect cell = table->visualRect(table->model()->index(row, column));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
}

void screenshot(QWidget* window, const QString& name) {
    QCoreApplication::processEvents();
    QVERIFY(saveScreenshot(window, name));
}

}  // namespace

class InternetPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
    }

    // A fake home with Chrome (3 history rows), Brave (1) and Firefox; no
    // program or .desktop entry of this machine counts, so exactly these three
    // are found.
    void init() {
        m_home = std::make_unique<test::FakeBrowserHome>();
        std::vector<std::string> urls = {kMarkerUrl, "https://example.org/one", "https://example.org/two"};
        test::makeChromeProfile(*m_home / ".config/google-chrome/Default", {urls, 2, 1, 2});
        test::makeChromeProfile(*m_home / ".config/BraveSoftware/Brave-Browser/Default",
                                {{"https://example.org/brave"}, 0, 0, 0});
        // A profile of today, found without profiles.ini by its ".default-release" name.
        m_firefoxProfile = QString::fromStdString(*m_home / ".mozilla/firefox/k3x9q2ab.default-release");
        test::makeFirefoxProfile(m_firefoxProfile.toStdString(), {2, 1});

        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_window->mouseClickAction(6);
        m_page = qobject_cast<InternetViewController*>(m_window->allBaseViewArr().at(4));
        QVERIFY(m_page);
        QTRY_COMPARE_WITH_TIMEOUT(m_page->pos(), QPoint(0, 0), 3000);
    }

    void cleanup() {
        m_window.reset();
        stopBraveStandIn();
        m_home.reset();
    }

    void scanShowsBrowsersAndCountsWhileTheSidebarIsLocked() {
        screenshot(m_window.get(), "internet_start");
        QCOMPARE(m_page->views()->currentWidget(), m_page->startView());
        QTest::mouseClick(m_page->scanButton(), Qt::LeftButton);
        QVERIFY(sidebarLocked(*m_window));
        QVERIFY(!m_page->isCanClick());
        QCOMPARE(m_page->views()->currentWidget(), m_page->scanningView());
        QVERIFY(saveScreenshot(m_window.get(), "internet_scanning"));  // at once: the scan may end next turn
        waitForResults();
        QVERIFY(!sidebarLocked(*m_window));

        QCOMPARE(browserNames(), QStringList({"Google Chrome", "Brave", "Firefox"}));
        QCOMPARE(m_page->broSelectIndex(), 0);
        QCOMPARE(m_page->detailLabel()->text(), QString("Google Chrome"));
        QVERIFY(m_page->categoryTable()->selectionModel()->selectedRows().isEmpty());
        QVERIFY(m_page->cleanButton()->isEnabled());
        QVERIFY(!m_page->isThorough());
        for (int row = 0; row < 3; ++row) {
            const QModelIndex name = m_page->browserModel()->index(row, BrowserTableModel::Name);
            QVERIFY(!name.data(Qt::DecorationRole).value<QIcon>().isNull());
            QCOMPARE(m_page->browserModel()->index(row, 0).data(FileEraserTableModel::ImageRole).toString(), QString("checkbox_yes"));
        }
        QCOMPARE(shownValue("Browsing History"), QString("3 Items"));
        QCOMPARE(shownValue("Download History"), QString("2 Items"));
        QCOMPARE(shownValue("Save Password"), QString("1 Items"));
        QCOMPARE(shownValue("Cookies"), QString("2 Items"));
        QVERIFY(!m_page->categoryModel()
                     ->index(categoryRow("Cookies"), CategoryTableModel::Name)
                     .data(Qt::DecorationRole)
                     .value<QIcon>()
                     .isNull());
        screenshot(m_window.get(), "internet_tables");

        // Up and Down in the browser table highlight another browser.
        m_page->browserTable()->setFocus();
        QTest::keyClick(m_page->browserTable(), Qt::Key_Down);
        QCOMPARE(m_page->broSelectIndex(), 1);
        QCOMPARE(m_page->detailLabel()->text(), QString("Brave"));
        QCOMPARE(shownValue("Browsing History"), QString("1 Items"));
        m_page->highlightBrowser(2);
        // Firefox shows the size of its cookie file, not a count.
        QVERIFY2(QRegularExpression("^\\d+(\\.\\d\\d)? (byte|KB)$").match(shownValue("Cookies")).hasMatch(),
                 qPrintable(shownValue("Cookies")));
        screenshot(m_window.get(), "internet_tables_firefox");
    }

    // Ticks: one category of an unticked browser leaves it partly ticked; its
    // own box then ticks all; Clean follows whether anything is ticked.
    void ticksPropagateAndDecideClean() {
        scanAndWait();
        QTableView* browsers = m_page->browserTable();
        for (int row = 0; row < 3; ++row) clickCell(browsers, row, BrowserTableModel::CheckBox);
        QVERIFY(!m_page->cleanButton()->isEnabled());
        BrowerObj& chrome = *m_page->browserArr().at(0);
        for (const BrowerObjPtr& category : chrome.chrArr) QCOMPARE(category->isSelect, 0);
        clickCell(browsers, 0, BrowserTableModel::Name);  // a click on the name highlights
        QCOMPARE(m_page->detailLabel()->text(), QString("Google Chrome"));

        clickCell(m_page->categoryTable(), categoryRow("Cookies"), CategoryTableModel::CheckBox);
        QCOMPARE(chrome.isSelect, 2);
        QCOMPARE(m_page->browserModel()->index(0, 0).data(FileEraserTableModel::ImageRole).toString(), QString("checkbox_election"));
        QVERIFY(m_page->cleanButton()->isEnabled());

        // Space on the focused category table ticks its current row.
        m_page->categoryTable()->setFocus();
        m_page->categoryTable()->setCurrentIndex(m_page->categoryModel()->index(categoryRow("Session"), 1));
        QTest::keyClick(m_page->categoryTable(), Qt::Key_Space);
        QCOMPARE(chrome.chrArr.at(categoryRow("Session"))->isSelect, 1);

        clickCell(browsers, 0, BrowserTableModel::CheckBox);
        QCOMPARE(chrome.isSelect, 1);
        for (const BrowerObjPtr& category : chrome.chrArr) QCOMPARE(category->isSelect, 1);
        clickCell(browsers, 0, BrowserTableModel::CheckBox);
        QVERIFY(!m_page->cleanButton()->isEnabled());
    }

    // Thorough cleaning of Chrome and Firefox: counts drop to zero, the
    // deleted URL is in no file of the Chrome profile, Firefox's cookie file
    // is gone, and the end dialog says what was done.
    void cleanRunEndsWithTheEndDialog() {
        scanAndWait();
        clickCell(m_page->browserTable(), 1, BrowserTableModel::CheckBox);  // Brave stays as it is
        QTest::mouseClick(m_page->thoroughButton(), Qt::LeftButton);
        QVERIFY(m_page->isThorough());
        QVERIFY(profileHolds(chromeProfile(), QString::fromStdString(kMarkerUrl)));

        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QVERIFY(!m_page->isCanClick());
        QVERIFY(sidebarLocked(*m_window));
        QVERIFY(!m_page->cleanButton()->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(m_page->endPanel() && m_page->endPanel()->isVisible(), kScanTimeoutMs);
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->endPanel(), "internet_end_dialog"));
        QVERIFY(!sidebarLocked(*m_window));
        QVERIFY(!m_page->cleanButton()->isEnabled());

        QCOMPARE(rows(chromeProfile() + "/History", "urls"), 0LL);
        QCOMPARE(rows(chromeProfile() + "/History", "downloads"), 0LL);
        QCOMPARE(rows(chromeProfile() + "/Login Data", "logins"), 0LL);
        QCOMPARE(rows(chromeProfile() + "/Network/Cookies", "cookies"), 0LL);
        QVERIFY(!profileHolds(chromeProfile(), QString::fromStdString(kMarkerUrl)));
        QVERIFY(!QFile::exists(m_firefoxProfile + "/cookies.sqlite"));
        QCOMPARE(rows(m_firefoxProfile + "/places.sqlite", "moz_historyvisits"), 0LL);
        QCOMPARE(rows(braveProfile() + "/History", "urls"), 1LL);

        m_page->highlightBrowser(0);
        QCOMPARE(shownValue("Browsing History"), QString("0 Item"));
        QCOMPARE(m_page->browserArr().at(0)->isSelect, 0);
        QCOMPARE(m_page->endPanel()->titleText(), QString("Browser data cleaned"));
        QVERIFY2(m_page->endPanel()->messageText().contains("categories were cleaned"),
                 qPrintable(m_page->endPanel()->messageText()));

        // The dialog is kept and shown again after the next run.
        CleanerInterEndViewController* endPanel = m_page->endPanel();
        QTest::mouseClick(endPanel->okButton(), Qt::LeftButton);
        QVERIFY(!endPanel->isVisible());
        clickCell(m_page->browserTable(), 0, BrowserTableModel::CheckBox);
        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(endPanel->isVisible(), kScanTimeoutMs);
        QCOMPARE(m_page->endPanel(), endPanel);
        QTest::keyClick(endPanel, Qt::Key_Escape);
        QVERIFY(!endPanel->isVisible());
    }

    // A category the engine could not clean is named with its reason, and the
    // dialog does not say "cleaned".
    void endDialogNamesWhatFailed() {
        QFile loginData(chromeProfile() + "/Login Data");
        QVERIFY(loginData.open(QIODevice::WriteOnly | QIODevice::Truncate));
        loginData.write(QByteArray(4096, 'x'));  // not a database
        loginData.close();
        scanAndWait();
        clickCell(m_page->browserTable(), 1, BrowserTableModel::CheckBox);
        clickCell(m_page->browserTable(), 2, BrowserTableModel::CheckBox);
        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->endPanel() && m_page->endPanel()->isVisible(), kScanTimeoutMs);
        QCOMPARE(m_page->endPanel()->titleText(), QString("1 category could not be cleaned"));
        QVERIFY2(m_page->endPanel()->messageText().contains("\nGoogle Chrome / Save Password: "),
                 qPrintable(m_page->endPanel()->messageText()));
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->endPanel(), "internet_end_dialog_failure"));
        QCOMPARE(rows(chromeProfile() + "/History", "urls"), 0LL);
    }

    // A running browser: Cancel leaves it and cleans nothing; Close ends it
    // and rescans, still without cleaning; the next Clean cleans.
    void runningBrowserIsClosedOnlyWhenTheUserAgrees() {
        scanAndWait();
        startBraveStandIn();
        clickCell(m_page->browserTable(), 0, BrowserTableModel::CheckBox);  // only Brave stays ticked
        clickCell(m_page->browserTable(), 2, BrowserTableModel::CheckBox);

        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QTRY_VERIFY(m_page->closePanel() && m_page->closePanel()->isVisible());
        QVERIFY(m_page->closePanel()->messageText().startsWith("Brave must be closed first"));
        QVERIFY(!m_page->closePanel()->closeButton()->isDefault());
        QVERIFY(sidebarLocked(*m_window));
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->closePanel(), "internet_close_dialog"));
        QTest::mouseClick(m_page->closePanel()->cancelButton(), Qt::LeftButton);
        QTRY_VERIFY(!m_page->closePanel());
        QVERIFY(m_page->isCanClick());
        QVERIFY(!sidebarLocked(*m_window));
        QCOMPARE(::kill(m_standIn, 0), 0);
        QCOMPARE(rows(braveProfile() + "/History", "urls"), 1LL);

        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QTRY_VERIFY(m_page->closePanel() && m_page->closePanel()->isVisible());
        QCOMPARE(m_page->allOpenId().size(), 1);
        QCOMPARE(m_page->allOpenId().first().pid, qint64(m_standIn));
        const BrowerObj* listedBefore = m_page->browserArr().value(0).get();
        QTest::mouseClick(m_page->closePanel()->closeButton(), Qt::LeftButton);
        QVERIFY(m_page->isClose());
        bool timedOut = false;
        QCOMPARE(test::waitForChild(m_standIn, 10, timedOut), -1);  // ended by a signal
        QVERIFY(!timedOut);
        m_standIn = -1;
        // The list is built anew a second later.
        QTRY_VERIFY_WITH_TIMEOUT(m_page->browserArr().value(0).get() != listedBefore, kScanTimeoutMs);
        waitForResults();
        QVERIFY(!m_page->endPanel());
        QCOMPARE(rows(braveProfile() + "/History", "urls"), 1LL);

        clickCell(m_page->browserTable(), 0, BrowserTableModel::CheckBox);  // the rescan ticked all again
        clickCell(m_page->browserTable(), 2, BrowserTableModel::CheckBox);
        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->endPanel() && m_page->endPanel()->isVisible(), kScanTimeoutMs);
        QCOMPARE(rows(braveProfile() + "/History", "urls"), 0LL);
        QCOMPARE(rows(chromeProfile() + "/History", "urls"), 3LL);
    }

    // Looking for running browsers runs on the background queue, before a clean run and
    // before a scan: with the queue held, the page serves its events, locked, and the
    // question about the running browser comes only once the queue is free.
    void runningBrowsersAreLookedForOffThePageThread() {
        scanAndWait();
        startBraveStandIn();
        auto held = std::make_unique<test::HeldThreadPool>();
        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        QVERIFY(test::postedEventIsServed());
        QVERIFY(!m_page->closePanel());
        QVERIFY(!m_page->isCanClick());
        QVERIFY(sidebarLocked(*m_window));
        held.reset();
        QTRY_VERIFY(m_page->closePanel() && m_page->closePanel()->isVisible());
        QTest::keyClick(m_page->closePanel(), Qt::Key_Escape);
        QTRY_VERIFY(m_page->isCanClick());
        QCOMPARE(m_page->views()->currentWidget(), m_page->resultView());
        QCOMPARE(rows(braveProfile() + "/History", "urls"), 1LL);

        held = std::make_unique<test::HeldThreadPool>();
        QTest::mouseClick(m_page->scanButton(), Qt::LeftButton);
        QVERIFY(test::postedEventIsServed());
        QVERIFY(!m_page->closePanel());
        QCOMPARE(m_page->views()->currentWidget(), m_page->scanningView());
        held.reset();
        QTRY_VERIFY(m_page->closePanel() && m_page->closePanel()->isVisible());
        QTest::keyClick(m_page->closePanel(), Qt::Key_Escape);
        QTRY_COMPARE(m_page->views()->currentWidget(), m_page->startView());
        QVERIFY(m_page->isCanClick());
    }

    // A profile folder the user cannot list: the panel names it, and the scan
    // goes on after it.
    void unreadableProfileFolderIsNamed() {
        const QString opera = homePath() + "/.config/opera";
        QVERIFY(QDir().mkpath(opera));
        QCOMPARE(::chmod(opera.toUtf8().constData(), 0), 0);
        {
            test::WithoutFileAccessOverride asUser;
            QVERIFY(asUser.active());
            QTest::mouseClick(m_page->scanButton(), Qt::LeftButton);
            // The folders are probed on this thread once the running browsers are known.
            QTRY_VERIFY(m_page->accessPanel() && m_page->accessPanel()->isVisible());
        }
        QVERIFY2(m_page->accessPanel()->messageText().startsWith(opera + " could not be listed ("),
                 qPrintable(m_page->accessPanel()->messageText()));
        QCOMPARE(m_page->views()->currentWidget(), m_page->scanningView());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->accessPanel(), "internet_access_panel"));
        QTest::mouseClick(m_page->accessPanel()->closeButton(), Qt::LeftButton);
        waitForResults();
        QVERIFY(browserNames().contains("Google Chrome"));
        ::chmod(opera.toUtf8().constData(), 0700);
    }

    // From the keyboard alone: Tab reaches Scan and Space scans; with a browser running,
    // the question to close it has Cancel focused and default, so Enter (like Escape)
    // closes it, the browser keeps running and nothing is scanned. Without it, the results are walked by
    // Tab in order: browsers, categories, the option, Back, Clean; Space ticks.
    void keyboardNeverClosesABrowserByEnter() {
        startBraveStandIn();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QVERIFY(tabTo(m_page->scanButton()));
        QVERIFY(saveScreenshot(m_window.get(), "keyboard_internet_page_focus"));
        for (int key : {Qt::Key_Return, Qt::Key_Escape}) {
            QVERIFY(tabTo(m_page->scanButton()));
            press(Qt::Key_Space);
            QTRY_VERIFY(m_page->closePanel() && m_page->closePanel()->isVisible());
            QTRY_COMPARE(focused(), m_page->closePanel()->cancelButton());
            QVERIFY(m_page->closePanel()->cancelButton()->isDefault());
            press(key);
            QTRY_VERIFY(!m_page->closePanel());
            QCOMPARE(::kill(m_standIn, 0), 0);
            QCOMPARE(m_page->views()->currentWidget(), m_page->startView());
            QVERIFY(m_page->browserArr().isEmpty());
            QVERIFY(m_page->isCanClick());
        }
        stopBraveStandIn();

        QVERIFY(tabTo(m_page->scanButton()));
        press(Qt::Key_Space);
        waitForResults();
        QVERIFY(tabTo(m_page->browserTable()));
        press(Qt::Key_Space);  // unticks the first browser
        QVERIFY(!m_page->browserArr().first()->isSelect);
        for (QWidget* next : std::initializer_list<QWidget*>{m_page->categoryTable(), m_page->thoroughButton(),
                                                             m_page->backButton(), m_page->cleanButton()}) {
            press(Qt::Key_Tab);
            QCOMPARE(focused(), next);
        }
        QVERIFY(saveScreenshot(m_window.get(), "keyboard_internet_results_focus_small"));
    }

    void quittingDuringWorkStopsItAndCloses_data() {
        QTest::addColumn<bool>("browserRuns");
        QTest::newRow("clean run") << false;
        QTest::newRow("close question") << true;
    }

    // "Stop and Quit" during a clean run stops it after the category it is cleaning (the
    // last browser's data is not reached); asked while the close question is open, it
    // cancels the question: the browser runs on and nothing is cleaned. The window closes.
    void quittingDuringWorkStopsItAndCloses() {
        QFETCH(bool, browserRuns);
        scanAndWait();
        if (browserRuns) startBraveStandIn();
        QTest::mouseClick(m_page->cleanButton(), Qt::LeftButton);
        if (browserRuns) QTRY_VERIFY(m_page->closePanel() && m_page->closePanel()->isVisible());
        QVERIFY(test::quitDuringJob(*m_window));
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), kScanTimeoutMs);
        QVERIFY(!m_window->isJobRunning());
        QCOMPARE(rows(m_firefoxProfile + "/places.sqlite", "moz_historyvisits"), 2LL);
        if (browserRuns) {
            QCOMPARE(::kill(m_standIn, 0), 0);
            QCOMPARE(rows(chromeProfile() + "/History", "urls"), 3LL);
        }
    }

    // No text of the start, scanning and result views is cut at a large and the smallest
    // window (and at scale 2 in the _scale2 run).
    void nothingClippedAtTwoSizes() {
        for (const QSize& size : {QSize(1500, 950), m_window->minimumSize()}) {
            m_window->resize(size);
            QTRY_COMPARE(m_page->size(), m_window->pageArea()->size());
            QStringList clipped = clippedTexts(m_page);
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            scanAndWait();
            clipped = clippedTexts(m_page);
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            QVERIFY(saveScreenshot(m_window.get(), size == m_window->minimumSize() ? "internet_small" : "internet_large"));
            QTest::mouseClick(m_page->backButton(), Qt::LeftButton);
        }
    }

private:
    QString homePath() const { return QString::fromStdString(m_home->path()); }
    QString chromeProfile() const { return homePath() + "/.config/google-chrome/Default"; }
    QString braveProfile() const { return homePath() + "/.config/BraveSoftware/Brave-Browser/Default"; }

    // A program named "brave" of this user: what the running-browser check looks for.
    void startBraveStandIn() {
        const QString program = homePath() + "/bin/brave";
        QDir().mkpath(homePath() + "/bin");
        QVERIFY(QFile::copy("/bin/sleep", program));
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
        m_standIn = test::spawnQuietly({program.toStdString(), "120"});
        QVERIFY(m_standIn > 0);
        QTRY_VERIFY(QFile::symLinkTarget(QString("/proc/%1/exe").arg(m_standIn)) == program);
    }

    void stopBraveStandIn() {
        if (m_standIn <= 0) return;
        ::kill(m_standIn, SIGKILL);
        bool timedOut = false;
        test::waitForChild(m_standIn, 5, timedOut);
        m_standIn = -1;
    }

    void waitForResults() {
        QTRY_COMPARE_WITH_TIMEOUT(m_page->views()->currentWidget(), m_page->resultView(), kScanTimeoutMs);
        QVERIFY(m_page->isCanClick());
    }

    void scanAndWait() {
        QTest::mouseClick(m_page->scanButton(), Qt::LeftButton);
        waitForResults();
        QCOMPARE(browserNames(), QStringList({"Google Chrome", "Brave", "Firefox"}));
    }

    QStringList browserNames() const {
        QStringList names;
        for (const BrowerObjPtr& browser : m_page->browserArr()) names.append(browser->name);
        return names;
    }

    int categoryRow(const QString& name) const {
        for (int row = 0; row < m_page->categoryModel()->rowCount(); ++row)
            if (m_page->categoryModel()->categoryAt(row)->name == name) return row;
        return -1;
    }

    QString shownValue(const QString& category) const {
        const int row = categoryRow(category);
        return row < 0 ? QString("<none>")
                       : m_page->categoryModel()->index(row, CategoryTableModel::Size).data().toString();
    }

    TempDataDir m_dataDir;
    std::unique_ptr<test::FakeBrowserHome> m_home;
    QString m_firefoxProfile;
    std::unique_ptr<MainWindowController> m_window;
    InternetViewController* m_page = nullptr;
    pid_t m_standIn = -1;
};

QTEST_MAIN(InternetPageTest)
#include "internet_page_test.moc"
