#include "support/LayoutCheck.h"
#include "support/QtTestSupport.h"
#include "support/Screenshot.h"
#include "engine/erase/EraserLevel.h"
#include "gui/app/HelperToolsCheck.h"
#include "gui/app/MainWindowController.h"
#include "gui/volumes/RepairDiskViewController.h"
#include "gui/volumes/WipeDiskViewController.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/MAAttachedWindow.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QLocalServer>
#include <QProcess>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

using namespace velmora;

class AppShellTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QVERIFY(m_data.isValid());
        qputenv("VELMORA_DATA_DIR", m_data.path().toUtf8());
        Style::apply(*qApp);
    }

    void tagsMapToSlots() {
        const int expected[] = {0, 1, 1, 2, 2, 3, 4, 5};
        for (int tag = 0; tag < 8; ++tag) QCOMPARE(MainWindowController::slotForTag(tag), expected[tag]);
    }

    void sidebarHasEightEntriesInOrder() {
        MainWindowController window;
        const QStringList titles = {"Erase Files", "Erase Hard Drive", "Erase Free Space", "Disk Format",
                                    "Disk Tool",   "Uninstaller",      "Internet Cleaner", "Duplicate Finder"};
        QCOMPARE(window.allTypeButArr().size(), 8);
        QCOMPARE(window.allBaseViewArr().size(), 6);
        for (int tag = 0; tag < 8; ++tag) {
            QCOMPARE(window.allTypeButArr().at(tag)->text(), titles.at(tag));
            QCOMPARE(window.allTypeButArr().at(tag)->tag(), tag);
        }
        QCOMPARE(window.windowTitle(), QString("Velmora Data Eraser"));
        QVERIFY(window.allTypeButArr().at(0)->isSelected());
    }

    void switchingSlidesBetweenSlotsButNotBetweenModes() {
        MainWindowController window;
        window.show();
        QWidget* eraseFiles = window.allBaseViewArr().at(0);
        QWidget* diskWipe = window.allBaseViewArr().at(1);
        auto* diskWipePage = qobject_cast<WipeDiskViewController*>(diskWipe);
        QVERIFY(diskWipePage);

        window.mouseClickAction(1);  // from "Erase Files": slide
        QCOMPARE(window.indexSelectView(), 1);
        QCOMPARE(diskWipe->y(), MainWindowController::kPageHeight);  // starts below
        QTRY_COMPARE_WITH_TIMEOUT(diskWipe->pos(), QPoint(0, 0), 2000);
        QTRY_VERIFY(!eraseFiles->isVisible());
        QCOMPARE(diskWipePage->titleLabel()->text(), QString("Erase Hard Drive"));
        saveScreenshot(&window, "shell_erase_hard_drive");

        window.mouseClickAction(2);  // the other mode of the same page: in place
        QCOMPARE(window.indexSelectView(), 2);
        QCOMPARE(diskWipe->pos(), QPoint(0, 0));
        QCOMPARE(diskWipePage->titleLabel()->text(), QString("Erase Free Space"));
        QVERIFY(window.allTypeButArr().at(2)->isSelected());
        QVERIFY(!window.allTypeButArr().at(1)->isSelected());

        window.mouseClickAction(2);  // same entry: nothing happens
        QCOMPARE(window.indexSelectView(), 2);

        window.mouseClickAction(4);  // "Disk Tool": another page, slides
        QTRY_COMPARE_WITH_TIMEOUT(window.allBaseViewArr().at(2)->pos(), QPoint(0, 0), 2000);
        QCOMPARE(qobject_cast<RepairDiskViewController*>(window.allBaseViewArr().at(2))->titleLabel()->text(),
                 QString("Disk Tool"));
        QTRY_VERIFY(!diskWipe->isVisible());
        saveScreenshot(&window, "shell_disk_tool");
    }

    // The window grows from its minimum; the sidebar and the page area follow, every
    // page takes the page area's rect, a slide travels the current height, and no text
    // of the shell or the first page is clipped at either size.
    void windowResizesAndPagesFollow() {
        MainWindowController window;
        window.show();
        const int sideWidth = window.sidebar()->width();
        QCOMPARE(window.minimumSize(), QSize(sideWidth + MainWindowController::kPageWidth,
                                             MainWindowController::kPageHeight));
        QCOMPARE(window.size(), window.minimumSize());
        for (const QSize& size : {window.minimumSize(), QSize(1440, 900)}) {
            window.resize(size);
            QCOMPARE(window.sidebar()->height(), size.height());
            QCOMPARE(window.pageArea()->geometry(), QRect(sideWidth, 0, size.width() - sideWidth, size.height()));
            QCOMPARE(window.allBaseViewArr().at(0)->geometry(), window.pageArea()->rect());
            for (int tag : {0, 1, 2}) {  // each selected entry in its bold face
                window.mouseClickAction(tag);
                QTRY_COMPARE_WITH_TIMEOUT(window.allBaseViewArr().at(MainWindowController::slotForTag(tag))->pos(),
                                          QPoint(0, 0), 2000);
                const QStringList clipped = clippedTexts(window.sidebar());
                QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            }
            window.mouseClickAction(0);
            QTRY_VERIFY_WITH_TIMEOUT(!window.allBaseViewArr().at(1)->isVisible(), 2000);
            const QStringList clipped = clippedTexts(&window);
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
        }
        saveScreenshot(&window, "shell_large");

        // A resize in the middle of a slide ends it at the new size.
        window.mouseClickAction(5);
        QTest::qWait(100);
        window.resize(1100, 700);
        QWidget* uninstaller = window.allBaseViewArr().at(3);
        QCOMPARE(uninstaller->geometry(), window.pageArea()->rect());
        QTRY_VERIFY(!window.allBaseViewArr().at(0)->isVisible());
    }

    // The layout check itself: a cut label, a cut button and an elided size are each
    // reported; a wrapped label with room is not.
    void layoutCheckReportsEachKindOfClipping() {
        QWidget root;
        root.resize(300, 200);
        auto* cut = new QLabel("A label far too long for its narrow box", &root);
        cut->setGeometry(0, 0, 60, 20);
        auto* size = new QLabel("629… MB", &root);
        size->setToolTip("629.15 MB");
        size->setGeometry(0, 30, 200, 20);
        auto* wrapped = new QLabel("Wrapped text that has all the room it needs", &root);
        wrapped->setWordWrap(true);
        wrapped->setGeometry(0, 60, 200, 60);
        auto* button = new QPushButton("Erase Everything Now", &root);
        button->setGeometry(0, 130, 50, 30);
        root.show();
        const QStringList clipped = clippedTexts(&root);
        QCOMPARE(clipped.size(), 3);
        QVERIFY(clipped.at(0).contains("far too long"));
        QVERIFY(clipped.at(1).contains("a size is elided"));
        QVERIFY(clipped.at(2).contains("Erase Everything"));
    }

    // Secondary text keeps WCAG AA contrast (4.5:1) on every surface it is drawn on.
    void secondaryTextMeetsContrastOnEverySurface() {
        const auto luminance = [](const QColor& colour) {
            const auto channel = [](double value) {
                return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) +
                   0.0722 * channel(colour.blueF());
        };
        for (const QColor& surface : {Style::kWindow, Style::kSidebar, Style::kPanel, Style::kSelection}) {
            const double alpha = Style::kSecondaryText.alphaF();
            const auto over = [alpha](double text, double below) { return alpha * text + (1 - alpha) * below; };
            const QColor shown = QColor::fromRgbF(over(Style::kSecondaryText.redF(), surface.redF()),
                                                  over(Style::kSecondaryText.greenF(), surface.greenF()),
                                                  over(Style::kSecondaryText.blueF(), surface.blueF()));
            const double ratio = (luminance(shown) + 0.05) / (luminance(surface) + 0.05);
            QVERIFY2(ratio >= 4.5, qPrintable(QString("%1 on %2").arg(ratio).arg(surface.name())));
        }
    }

    void windowButtonsAndMenuAreNamedForAssistiveTools() {
        MainWindowController window;
        window.show();
        QStringList names;
        for (QAbstractButton* button : window.sidebar()->findChildren<QAbstractButton*>()) {
            if (!button->text().isEmpty()) continue;
            QVERIFY2(!button->accessibleName().isEmpty() && !button->toolTip().isEmpty(),
                     button->metaObject()->className());
            names << button->accessibleName();
        }
        names.sort();
        QCOMPARE(names, QStringList({"Close", "Maximize", "Menu", "Minimize"}));
        QVERIFY(window.applicationMenu()->actions().size() >= 3);  // Tools, Help, Quit

        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, Qt::Key_F1);
        auto* help = window.findChild<QDialog*>("helpPanel");
        QVERIFY(help && help->isVisible());
        QTest::keyClick(help, Qt::Key_Escape);
        QTRY_VERIFY(!window.findChild<QDialog*>("helpPanel"));
    }

    void lockedSidebarIgnoresClicks() {
        MainWindowController window;
        window.show();
        window.canChangeType(false);
        for (SidebarButton* button : window.allTypeButArr()) QVERIFY(!button->isEnabled());
        QTest::mouseClick(window.allTypeButArr().at(5), Qt::LeftButton);
        QCOMPARE(window.indexSelectView(), 0);
        saveScreenshot(&window, "shell_locked");
        window.canChangeType(true);
        QTest::mouseClick(window.allTypeButArr().at(5), Qt::LeftButton);
        QCOMPARE(window.indexSelectView(), 5);

        // Jobs of two pages at once: the window stays locked, and asks before quitting,
        // until both have ended.
        QObject search, copy;
        window.canChangeType(false, &search);
        window.canChangeType(false, &copy);
        window.canChangeType(true, &search);
        QVERIFY(window.isJobRunning());
        QVERIFY(!window.allTypeButArr().at(0)->isEnabled());
        window.canChangeType(true, &copy);
        QVERIFY(!window.isJobRunning());
        QVERIFY(window.allTypeButArr().at(0)->isEnabled());
    }

    // While a modal panel blocks the window the window system drops clicks on it, the red
    // button's too: its stand-in then stands over it, follows the window and asks during a
    // job; it goes with the panel.
    void redButtonAsksWhileAModalPanelBlocksTheWindow() {
        MainWindowController window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QWidget* standIn = window.closeStandIn();
        QPushButton* red = window.closeButton();
        QVERIFY(!standIn->isVisible());
        window.canChangeType(false);  // a page runs a job
        auto* panel = new MAAttachedWindow(&window);
        panel->setAttribute(Qt::WA_DeleteOnClose);
        panel->open();
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, red->mapTo(&window, red->rect().center()));
        QVERIFY(!window.quitQuestion());

        for (const QPoint& shift : {QPoint(0, 0), QPoint(40, 30)}) {
            window.move(window.pos() + shift);
            QTRY_COMPARE(standIn->geometry(), QRect(red->mapToGlobal(QPoint(0, 0)), red->size()));
            QVERIFY(standIn->isVisible());
        }
        QTest::mouseClick(standIn->windowHandle(), Qt::LeftButton, {}, standIn->rect().center());
        QTRY_VERIFY(window.quitQuestion());
        QTest::keyClick(window.quitQuestion(), Qt::Key_Escape);  // Cancel: the job and the window stay
        QTRY_VERIFY(!window.quitQuestion());
        QVERIFY(window.isVisible());
        panel->close();
        QTRY_VERIFY(!standIn->isVisible());
        window.canChangeType(true);
    }

    void levelPanelSavesOnlyOnSave() {
        EraserLevel::store(3);
        QWidget page;
        page.resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
        auto* container = new SlidePanel(&page);
        page.show();
        SetEraserLevelVC* panel = SetEraserLevelVC::showIn(container);
        QCOMPARE(panel->eraserLevel(), QString("3"));
        QCOMPARE(panel->radioButton("3")->imageName(), QString("radiobutton_sel"));
        QCOMPARE(container->x(), container->hiddenX());
        QTRY_COMPARE_WITH_TIMEOUT(container->x(), 0, 2000);
        saveScreenshot(&page, "level_panel");

        QTest::mouseClick(panel->radioButton("35"), Qt::LeftButton);
        QCOMPARE(panel->radioButton("35")->imageName(), QString("radiobutton_sel"));
        QCOMPARE(panel->radioButton("3")->imageName(), QString("radiobutton_no"));
        panel->cancelButtonAction();
        QCOMPARE(EraserLevel::stored(), 3);
        QTRY_VERIFY_WITH_TIMEOUT(!container->isVisible(), 2000);
        QCOMPARE(container->x(), container->hiddenX());

        panel = SetEraserLevelVC::showIn(container);
        panel->buttonAction("7");
        panel->saveButtonAction();
        QCOMPARE(EraserLevel::stored(), 7);
    }

    void storedZeroShowsNothingSelectedAndSavesZero() {
        EraserLevel::store(0);
        SetEraserLevelVC panel;
        panel.setEraserLevelSelect();
        for (const char* id : {"1", "2", "3", "7", "35"})
            QCOMPARE(panel.radioButton(id)->imageName(), QString("radiobutton_no"));
        panel.saveButtonAction();
        QCOMPARE(EraserLevel::stored(), 0);
        QCOMPARE(EraserLevel::clamped(), 1);
    }

    void secondInstanceBringsFirstForwardAndExitsZero() {
        const QString binary = qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora";
        if (!QFile::exists(binary)) QSKIP("the velmora binary is not built");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        QProcess first;
        first.setProcessEnvironment(environment);
        first.start(binary, {});
        QVERIFY(first.waitForStarted());
        // Wait until the first instance listens before starting the second.
        QTest::qWait(1500);
        QCOMPARE(first.state(), QProcess::Running);
        QProcess second;
        second.setProcessEnvironment(environment);
        second.start(binary, {});
        QVERIFY(second.waitForFinished(15000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(first.state(), QProcess::Running);
        // Diagnostics go to logging categories that are off: nothing on standard output.
        QCOMPARE(first.readAllStandardOutput(), QByteArray());
        first.terminate();
        QVERIFY(first.waitForFinished(10000));
    }

    // The window over an incomplete installation names every missing helper program and
    // closes with Escape.
    void missingHelpersAreNamedInAPanel() {
        QTemporaryDir noTools;
        const test::ScopedEnv binDir("VELMORA_BIN_DIR", noTools.path());
        MainWindowController window;
        window.show();
        QWidget* panel = warnAboutMissingHelperTools(&window);
        QVERIFY(panel);
        QTRY_VERIFY(panel->isVisible());
        QString shown;
        for (const QLabel* label : panel->findChildren<QLabel*>()) shown += label->text() + '\n';
        for (const QString& path : missingHelperTools()) QVERIFY2(shown.contains(path), qPrintable(shown));
        QVERIFY(shown.contains(noTools.path() + "/srm"));
        saveScreenshotWithPanel(&window, panel, "shell_missing_helpers");
        QPointer<QWidget> open = panel;
        QTest::keyClick(panel, Qt::Key_Escape);
        QTRY_VERIFY(!open);
    }

    // Missing helper programs are told in a window, and in the velmora.app log, which is
    // off by default: the line reaches standard error only once the log is turned on.
    void missingHelperIsLoggedOnlyWhenAsked() {
        const QString binary = qEnvironmentVariable("VELMORA_BIN_DIR") + "/velmora";
        if (!QFile::exists(binary)) QSKIP("the velmora binary is not built");
        QTemporaryDir noTools;
        QTemporaryDir temporary;  // its own single-instance socket
        for (const bool logged : {false, true}) {
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert("QT_QPA_PLATFORM", "offscreen");
            environment.insert("VELMORA_BIN_DIR", noTools.path());
            environment.insert("TMPDIR", temporary.path());
            environment.remove("QT_LOGGING_RULES");
            if (logged) environment.insert("QT_LOGGING_RULES", "velmora.app.warning=true");
            QProcess app;
            app.setProcessEnvironment(environment);
            app.start(binary, {});
            QVERIFY(app.waitForStarted());
            QByteArray errors;
            const QByteArray line = "helper program missing: " + noTools.path().toUtf8() + "/srm";
            for (int waited = 0; waited < 4000 && !errors.contains(line); waited += 100) {
                app.waitForReadyRead(100);
                errors += app.readAllStandardError();
            }
            QCOMPARE(app.state(), QProcess::Running);
            app.terminate();
            QVERIFY(app.waitForFinished(10000));
            errors += app.readAllStandardError();
            QCOMPARE(app.readAllStandardOutput(), QByteArray());
            QVERIFY2(errors.contains(line) == logged, errors.constData());
        }
    }

private:
    QTemporaryDir m_data;
};

QTEST_MAIN(AppShellTest)
#include "app_shell_test.moc"
