#include "Screenshot.h"
#include "engine/erase/EraserLevel.h"
#include "gui/app/MainWindowController.h"
#include "gui/volumes/RepairDiskViewController.h"
#include "gui/volumes/WipeDiskViewController.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QLabel>
#include <QLocalServer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

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
        QCOMPARE(container->x(), SlidePanel::kHiddenX);
        QTRY_COMPARE_WITH_TIMEOUT(container->x(), 0, 2000);
        saveScreenshot(&page, "level_panel");

        QTest::mouseClick(panel->radioButton("35"), Qt::LeftButton);
        QCOMPARE(panel->radioButton("35")->imageName(), QString("radiobutton_sel"));
        QCOMPARE(panel->radioButton("3")->imageName(), QString("radiobutton_no"));
        panel->cancelButtonAction();
        QCOMPARE(EraserLevel::stored(), 3);
        QTRY_VERIFY_WITH_TIMEOUT(!container->isVisible(), 2000);
        QCOMPARE(container->x(), SlidePanel::kHiddenX);

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
        first.terminate();
        QVERIFY(first.waitForFinished(10000));
    }

private:
    QTemporaryDir m_data;
};

QTEST_MAIN(AppShellTest)
#include "app_shell_test.moc"
