// The disk-wipe page on real volumes: a small ext4 file system on a loop
// device is listed, chosen and (in free-space mode) wiped through the page.
#include "support/LoopVolume.h"
#include "support/KeyboardWalk.h"
#include "support/VolumeTable.h"
#include "support/PanelScreenshot.h"
#include "support/TempDataDir.h"
#include "support/TestFiles.h"
#include "support/PageTestSupport.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/VolumeScanner.h"
#include "gui/app/MainWindowController.h"
#include "gui/volumes/MakeSureWipeDiskViewController.h"
#include "gui/volumes/MakeSureWipeFreeSpaceViewController.h"
#include "gui/volumes/SystemEraserViewController.h"
#include "gui/volumes/VolumeTableModel.h"
#include "gui/volumes/WipeDiskViewController.h"
#include "gui/volumes/WipeFailViewController.h"
#include "gui/volumes/WipeFreeSpaceProViewController.h"
#include "gui/volumes/WipeSuccessViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"
#include "gui/widgets/SvgImageView.h"
#include "gui/erase/FileEraserTableModel.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStorageInfo>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace velmora;
using velmora::test::serveEventsFor;
using velmora::test::waitUntil;
using velmora::test::LoopVolume;
using velmora::test::loopDevicesUnavailable;
using keyboardwalk::focused;
using keyboardwalk::press;
using keyboardwalk::tabTo;
using volumetable::cell;
using volumetable::clickRow;
using volumetable::rowOfDevice;

constexpr const char* kLabel = "VELPAGE";

class WipeDiskPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
        EraserLevel::store(1);
    }

    void init() {
        if (const std::string why = loopDevicesUnavailable(); !why.empty()) QSKIP(why.c_str());
        m_volume = std::make_unique<LoopVolume>(64);
        std::string mountPoint;
        const std::string problem = m_volume->formatAndMount("ext4", kLabel, mountPoint);
        QVERIFY2(problem.empty(), problem.c_str());
        m_mountPoint = QString::fromStdString(mountPoint);
        m_device = QString::fromStdString(m_volume->node());
        PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeVolumeHistory, "0");
        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_page = qobject_cast<WipeDiskViewController*>(m_window->allBaseViewArr().at(1));
        QVERIFY(m_page);
    }

    void cleanup() {
        m_window.reset();
        m_volume.reset();
    }

    // Switching to the page scans; the loop volume shows with its name, type and sizes.
    // The other mode switches in place and keeps the list. Nothing chosen: no button. A
    // click chooses the row; a rescan clears and re-applies the choice by its device node
    // and UUID; when the chosen volume is unmounted the choice goes, and never moves to
    // whatever row took its place.
    void listsAndChoosesTheLoopVolumeInBothModes() {
        m_window->mouseClickAction(1);
        QVERIFY(m_page->busyIndicator()->isVisible() || rowOfDevice(m_page, m_device) >= 0);
        QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0; }));
        QVERIFY(waitUntil([this] { return !m_page->busyIndicator()->isVisible(); }));
        QCOMPARE(m_page->selectEraserType(), 2);
        QCOMPARE(m_page->titleLabel()->text(), QString("Erase Hard Drive"));

        const int row = rowOfDevice(m_page, m_device);
        const QStorageInfo storage(m_mountPoint);
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::Name), QString(kLabel));
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::Type), QString("ext4"));
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::TotalSize), QString("67.11 MB"));
        const qint64 free = m_page->allVolumeArr().at(row).volumeFreeSizeNum;
        // What the file system reports moves a little while ext4 settles after mounting.
        QVERIFY2(qAbs(free - storage.bytesFree()) < (4 << 20),
                 qPrintable(QString("%1 listed, %2 free").arg(free).arg(storage.bytesFree())));
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::FreeSize), VolumeScanner::byteToSizeWithByte(free));
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::CheckBox, FileEraserTableModel::ImageRole),
                 QString("radiobutton_no"));
        serveEventsFor(600);  // the pages' slide ends
        QVERIFY(saveScreenshot(m_window.get(), "wipe_page_erase_hard_drive"));

        const int listed = int(m_page->allVolumeArr().size());
        m_window->mouseClickAction(2);
        QCOMPARE(m_page->selectEraserType(), 1);
        QCOMPARE(m_page->titleLabel()->text(), QString("Erase Free Space"));
        QVERIFY(m_page->isVisible());
        QCOMPARE(int(m_page->allVolumeArr().size()), listed);
        QVERIFY(!m_page->wipeButton()->isEnabled());
        QVERIFY(m_page->selectedLabel()->text().isEmpty());
        // Volumes that other tests on this machine mount meanwhile move the rows.
        QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
        const int chosen = rowOfDevice(m_page, m_device);
        clickRow(m_page->tableView(), chosen);
        QVERIFY(saveScreenshot(m_window.get(), "wipe_page_erase_free_space"));
        QCOMPARE(m_page->selectIndex(), chosen);
        QCOMPARE(m_page->selectedLabel()->text(), QString("You have selected: %1").arg(kLabel));
        QVERIFY(m_page->wipeButton()->isEnabled());
        for (int other = 0; other < m_page->allVolumeArr().size(); ++other)
            QCOMPARE(cell(m_page->tableView(), other, VolumeTableModel::CheckBox, FileEraserTableModel::ImageRole),
                     QString(other == chosen ? "radiobutton_sel" : "radiobutton_no"));

        m_page->getallVolumes();
        QVERIFY(!m_page->wipeButton()->isEnabled());
        QVERIFY(m_page->selectedLabel()->text().isEmpty());
        QVERIFY(waitUntil([this] { return !m_page->busyIndicator()->isVisible(); }));
        QVERIFY(m_page->wipeButton()->isEnabled());
        QCOMPARE(m_page->selectedLabel()->text(), QString("You have selected: %1").arg(kLabel));

        QVERIFY(m_volume->unmountAll());
        QVERIFY(waitUntil([this] {
            return rowOfDevice(m_page, m_device) < 0 && !m_page->busyIndicator()->isVisible();
        }));
        QCOMPARE(m_page->selectIndex(), -1);
        QVERIFY(!m_page->wipeButton()->isEnabled());
        QVERIFY(m_page->selectedLabel()->text().isEmpty());
    }

    // A volume mounted while the confirmation is open rescans the list; the
    // confirmed run still acts on the volume that was chosen, found by its device.
    void mountEventsWhileTheConfirmationIsOpenKeepTheChosenVolume() {
        QVERIFY(openConfirmation(2));
        MakeSureWipeFreeSpaceViewController* confirm = m_page->makeSureFreeSpacePanel();

        // Another volume is mounted and the chosen one is remounted after it: the list
        // follows mount order, so the chosen volume's old row now holds another one.
        const int chosenRow = rowOfDevice(m_page, m_device);
        LoopVolume other(32);
        QCOMPARE(other.setupProblem(), std::string());
        std::string otherMount;
        QCOMPARE(other.formatAndMount("ext4", "AAVELOTHER", otherMount), std::string());
        const QString otherDevice = QString::fromStdString(other.node());
        QVERIFY(waitUntil([&] { return rowOfDevice(m_page, otherDevice) >= 0 && !m_page->busyIndicator()->isVisible(); }));
        QVERIFY(m_volume->unmountAll());
        QVERIFY(waitUntil([&] { return rowOfDevice(m_page, m_device) < 0 && !m_page->busyIndicator()->isVisible(); }));
        QCOMPARE(m_volume->mount("ext4", kLabel), m_mountPoint.toStdString());
        QVERIFY(waitUntil([&] {
            return rowOfDevice(m_page, m_device) > rowOfDevice(m_page, otherDevice) && !m_page->busyIndicator()->isVisible();
        }));
        QVERIFY(rowOfDevice(m_page, m_device) != chosenRow);
        QVERIFY(confirm->isVisible());
        QCOMPARE(m_page->selectVolumeObj().volRootDir, m_device);
        test::writeFile(otherMount + "/other.txt", "other volume");

        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->successPanel() || m_page->failPanel(); }, 240000));
        QVERIFY2(m_page->successPanel(), "the run ended in the failure view");
        QCOMPARE(m_page->selectVolumeObj().volRootDir, m_device);
        QCOMPARE(m_page->selectVolumeObj().volumeName, QString(kLabel));
        bool recorded = false;
        for (const HistoryRows& rows : DoDataBase::returnDoDataBase()->getAllDataWithKey(DoDataBase::kWipeVolume))
            for (const HistoryRow& row : rows)
                recorded |= row.value("Items") == QString("Erase Free Space:%1").arg(kLabel) && row.value("Result") == "Erased";
        QVERIFY(recorded);
        QVERIFY(QFileInfo::exists(QString::fromStdString(otherMount) + "/other.txt"));
        QVERIFY(!QFileInfo::exists(QString::fromStdString(otherMount) + "/.Velmora"));
        QTest::mouseClick(m_page->successPanel()->okButton(), Qt::LeftButton);
        serveEventsFor(600);
    }

    // "Erase Now" on the startup volume in whole-drive mode only shows its
    // notice: no confirmation, nothing runs.
    void startupVolumeIsRefusedForWholeDriveErase() {
        m_window->mouseClickAction(1);
        QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
        int startupRow = -1;
        for (int row = 0; row < m_page->allVolumeArr().size(); ++row)
            if (m_page->allVolumeArr().at(row).volumeMountPoint == "/") startupRow = row;
        if (startupRow < 0) QSKIP("SKIPPED: the system root is not mounted from a block device here, so it is not listed");
        serveEventsFor(600);
        QCOMPARE(VolumeTableModel::iconName(m_page->allVolumeArr().at(startupRow)),
                 QString(m_page->allVolumeArr().at(startupRow).bCanEject ? "ic_usb" : "ic_os"));

        clickRow(m_page->tableView(), startupRow);
        QTest::mouseClick(m_page->wipeButton(), Qt::LeftButton);
        QVERIFY(qobject_cast<SystemEraserViewController*>(m_page->noticePanel()));
        QVERIFY(m_page->noticePanel()->isVisible());
        QVERIFY(!m_page->makeSureDiskPanel());
        QVERIFY(!m_page->progressPanel());
        const QString message = m_page->noticePanel()->messageLabel()->text();
        QVERIFY(message.contains("<b>Erase Files</b>") && message.contains("<b>Erase Free Space</b>"));
        QVERIFY(message.contains("check full guide &gt;&gt;") || message.contains("check full guide >>"));
        QVERIFY(saveScreenshotWith(m_window.get(), m_page->noticePanel(), "wipe_page_startup_volume_notice"));
        QTest::mouseClick(m_page->noticePanel()->okButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return !m_page->noticePanel(); }, 2000));

        // The same volume in free-space mode goes to the confirmation instead.
        m_window->mouseClickAction(2);
        QTest::mouseClick(m_page->wipeButton(), Qt::LeftButton);
        QVERIFY(m_page->makeSureFreeSpacePanel());
        QTest::mouseClick(m_page->makeSureFreeSpacePanel()->cancelButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return !m_page->makeSureFreeSpacePanel(); }, 2000));
        QVERIFY(!m_page->progressPanel());
    }

    // A free-space wipe through the page: confirmation, progress with the
    // sidebar locked, the success view, the history record and flag, and the
    // volume's own files kept.
    void freeSpaceWipeRunsToItsSuccessView() {
        test::writeFile(m_mountPoint.toStdString() + "/kept.txt", "still here");
        QVERIFY(openConfirmation(2));
        QCOMPARE(m_page->historyButton()->imageName(), QString("ic_nohistory"));
        MakeSureWipeFreeSpaceViewController* confirm = m_page->makeSureFreeSpacePanel();
        QVERIFY(PanelContent::messageLabel(confirm)->isVisible());
        QVERIFY(saveScreenshotWith(m_window.get(), confirm, "wipe_page_free_space_confirmation"));

        bool shotProgress = false;
        bool sidebarLockedDuringRun = false;
        connect(m_page->freeSpaceWipe(), &FreeSpaceWipe::setRemoveProgress, this, [&] {
            if (shotProgress || !m_page->progressPanel()) return;
            shotProgress = saveScreenshotWith(m_window.get(), m_page->progressPanel(), "wipe_page_free_space_progress");
            sidebarLockedDuringRun = !m_window->allTypeButArr().at(0)->isEnabled();
        });
        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QVERIFY(m_page->progressPanel());
        QCOMPARE(m_page->progressPanel()->typeText(), EraserLevel::displayName(1));
        QVERIFY(!m_window->allTypeButArr().at(7)->isEnabled());

        QVERIFY(waitUntil([this] { return m_page->successPanel() || m_page->failPanel(); }, 240000));
        QVERIFY2(m_page->successPanel(), "the run ended in the failure view");
        QVERIFY(shotProgress);
        QVERIFY(sidebarLockedDuringRun);
        QVERIFY(!m_page->progressPanel() || !m_page->progressPanel()->isVisible());
        // Run by the administrator, the fill also takes the clusters ext4 keeps in reserve: nothing is left to tell.
        QCOMPARE(m_page->freeSpaceWipe()->unreachableBytes(), qint64(0));
        QCOMPARE(PanelContent::messageLabel(m_page->successPanel())->text(),
                 QString("The deleted/lost data on the hard drive has been successfully erased."));
        QVERIFY(m_window->allTypeButArr().at(0)->isEnabled());
        // The run ends with a rescan; the list behind the view is shown again.
        QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
        QVERIFY(saveScreenshotWith(m_window.get(), m_page->successPanel(), "wipe_page_free_space_success"));

        QVERIFY2(results("Erase Free Space").contains("Erased"), "no history row for the wipe");
        QCOMPARE(m_page->historyButton()->imageName(), QString("ic_history"));
        QVERIFY(QFileInfo::exists(m_mountPoint + "/kept.txt"));
        QVERIFY(!QFileInfo::exists(m_mountPoint + "/.Velmora"));
        QTest::mouseClick(m_page->successPanel()->okButton(), Qt::LeftButton);
    }

    // A fill folder planted as a link to a folder elsewhere ends the run in the
    // failure view: the folder behind the link is untouched and history says "Failed".
    void redirectedFillFolderEndsInTheFailureView() {
        QTemporaryDir outside;
        test::writeFile(outside.filePath("precious.txt").toStdString(), "keep me");
        QVERIFY(QFile::link(outside.path(), m_mountPoint + "/.Velmora"));
        const QStringList before = results("Erase Free Space");

        QVERIFY(openConfirmation(2));
        MakeSureWipeFreeSpaceViewController* confirm = m_page->makeSureFreeSpacePanel();
        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);

        QVERIFY(waitUntil([this] { return m_page->successPanel() || m_page->failPanel(); }, 120000));
        QVERIFY2(m_page->failPanel(), "the run ended in the success view");
        QCOMPARE(m_page->failPanel()->findChild<SvgImageView*>()->imageName(), QString("ic_fail"));
        QCOMPARE(m_page->failPanel()->findChild<QLabel*>("panelTitle")->text(),
                 QString("The free space of \"%1\" was not erased").arg(kLabel));
        QVERIFY(PanelContent::messageLabel(m_page->failPanel())->text().contains("read-only"));
        QVERIFY(m_page->failPanel()->detailLabel()->isVisibleTo(m_page->failPanel()));
        QVERIFY2(m_page->failPanel()->detailLabel()->text().contains("link"),
                 qPrintable(m_page->failPanel()->detailLabel()->text()));
        QVERIFY(m_window->allTypeButArr().at(0)->isEnabled());
        QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
        QVERIFY(saveScreenshotWith(m_window.get(), m_page->failPanel(), "wipe_page_free_space_failed"));

        QCOMPARE(QDir(outside.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{"precious.txt"});
        QCOMPARE(QFileInfo(m_mountPoint + "/.Velmora").symLinkTarget(), outside.path());
        const QStringList after = results("Erase Free Space");
        QCOMPARE(after.count("Failed"), before.count("Failed") + 1);
        QCOMPARE(after.count("Erased"), before.count("Erased"));
        QTest::mouseClick(m_page->failPanel()->okButton(), Qt::LeftButton);
    }

    // From the keyboard alone, in both modes: Tab reaches the list, where Down and Up
    // choose the volume below and above, as in a group of radio buttons, and stop at the
    // ends; Tab reaches "Erase Now"; Space opens the confirmation with Cancel focused and
    // default. Enter closes it without starting anything, also with the focus moved to
    // Continue, and Escape closes it too.
    void keyboardNeverStartsAnEraseByEnter() {
        const QStringList before = results("Erase Free Space") + results("Erase Hard Drive");
        for (int tag : {1, 2}) {
            m_window->mouseClickAction(tag);
            QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
            serveEventsFor(600);
            m_window->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
            QVERIFY(tabTo(m_page->tableView()));
            const int rows = int(m_page->allVolumeArr().size());
            for (int step = 0; step <= rows; ++step) press(Qt::Key_Down);
            QCOMPARE(m_page->selectIndex(), rows - 1);
            for (int step = 0; step <= rows; ++step) press(Qt::Key_Up);
            QCOMPARE(m_page->selectIndex(), 0);
            for (int step = 0; step < rows && m_page->selectVolumeObj().volumePath != m_device; ++step)
                press(Qt::Key_Down);
            QCOMPARE(m_page->selectVolumeObj().volumePath, m_device);
            QCOMPARE(m_page->selectedLabel()->text(), QString("You have selected: %1").arg(kLabel));
            QVERIFY(m_page->wipeButton()->isEnabled());
            QVERIFY(tabTo(m_page->wipeButton()));

            const auto confirmation = [this, tag]() -> MAAttachedWindow* {
                if (tag == 1) return m_page->makeSureDiskPanel();
                return m_page->makeSureFreeSpacePanel();
            };
            for (int key : {Qt::Key_Return, Qt::Key_Escape}) {
                for (bool focusOnContinue : {false, true}) {
                    if (key == Qt::Key_Escape && focusOnContinue) continue;
                    QVERIFY(tabTo(m_page->wipeButton()));
                    press(Qt::Key_Space);
                    QTRY_VERIFY(confirmation() && confirmation()->isVisible());
                    QPushButton* cancel = confirmation()->cancelButton();
                    QTRY_COMPARE(focused(), cancel);
                    QVERIFY(cancel->isDefault());
                    if (focusOnContinue) {
                        QPushButton* go = nullptr;
                        for (QPushButton* button : confirmation()->findChildren<QPushButton*>())
                            if (button->text() == "Continue") go = button;
                        QVERIFY(go && tabTo(go));
                        QVERIFY(!go->isDefault());
                    }
                    press(key);
                    QTRY_VERIFY(!confirmation());
                    QVERIFY(!m_page->progressPanel());
                }
            }
        }
        QCOMPARE(results("Erase Free Space") + results("Erase Hard Drive"), before);
        QVERIFY(!QFileInfo::exists(m_mountPoint + "/.Velmora"));

        // The header's icon buttons open the level and history panels; Escape closes each.
        for (ImageToggle* button : m_page->findChildren<ImageToggle*>()) {
            QVERIFY(!button->accessibleName().isEmpty() && !button->toolTip().isEmpty());
            QVERIFY(tabTo(button));
            press(Qt::Key_Space);
            SlidePanel* panel = button == m_page->historyButton() ? m_page->historyPanel() : m_page->levelPanel();
            QTRY_VERIFY(panel->isShown());
            press(Qt::Key_Escape);
            QTRY_VERIFY(!panel->isShown());
        }
    }

    // "Erase Hard Drive" on the loop volume: the progress names the reformat (a moving
    // bar) and then the fill (its percentage); the end view names the volume over the
    // fixed text, and the history records it. Nothing written before survives.
    void wholeDriveEraseShowsBothStagesAndNamesTheVolume() {
        test::writeFile(m_mountPoint.toStdString() + "/old.txt", "old data");
        const QStringList before = results("Erase Hard Drive");
        QVERIFY(openConfirmation(1));
        MakeSureWipeDiskViewController* confirm = m_page->makeSureDiskPanel();
        QStringList stagesAtFillProgress;
        connect(m_page->freeSpaceWipe(), &FreeSpaceWipe::setRemoveProgress, this, [&] {
            if (m_page->progressPanel())
                stagesAtFillProgress << m_page->progressPanel()->stageText() + (m_page->progressPanel()->isBusy() ? " busy" : "");
        });
        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QVERIFY(m_page->progressPanel());
        QCOMPARE(m_page->progressPanel()->stageText(), QString("Step 1 of 2: reformatting \"%1\"").arg(kLabel));
        QVERIFY(m_page->progressPanel()->isBusy());
        QVERIFY(saveScreenshotWith(m_window.get(), m_page->progressPanel(), "wipe_page_whole_drive_stage1"));

        QVERIFY(waitUntil([this] { return m_page->successPanel() || m_page->failPanel(); }, 240000));
        QVERIFY2(m_page->successPanel(), m_page->failPanel() ? qPrintable(PanelContent::messageLabel(m_page->failPanel())->text()) : "");
        QVERIFY(!stagesAtFillProgress.isEmpty());
        for (const QString& stage : stagesAtFillProgress)
            QCOMPARE(stage, QString("Step 2 of 2: overwriting all the space of \"%1\"").arg(kLabel));
        QCOMPARE(m_page->successPanel()->findChild<QLabel*>("panelTitle")->text(),
                 QString("\"%1\" has been erased").arg(kLabel));
        QVERIFY(PanelContent::messageLabel(m_page->successPanel())
                    ->text()
                    .startsWith("All the data on the selected hard drive has been successfully erased."));
        QVERIFY(saveScreenshotWith(m_window.get(), m_page->successPanel(), "wipe_page_whole_drive_success"));
        QCOMPARE(results("Erase Hard Drive").count("Erased"), before.count("Erased") + 1);
        QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
        QVERIFY(!QFileInfo::exists(m_page->allVolumeArr().at(rowOfDevice(m_page, m_device)).volumeMountPoint + "/old.txt"));
        press(Qt::Key_Escape);
        QTRY_VERIFY(!m_page->successPanel());
    }

    // A disk utility that answers nothing (the volume cannot be pinned, nor reformatted)
    // ends the run in the failure view, with its mark and the volume named; the run is
    // recorded as failed and the files stay.
    void wholeDriveRunWithoutTheDiskUtilityEndsInTheFailureView() {
        test::writeFile(m_mountPoint.toStdString() + "/kept.txt", "");
        const QStringList before = results("Erase Hard Drive");
        QVERIFY(openConfirmation(1));
        qputenv("VELMORA_DISKUTIL", "/bin/false");
        QTest::mouseClick(m_page->makeSureDiskPanel()->continueButton(), Qt::LeftButton);
        const bool ended = waitUntil([this] { return m_page->successPanel() || m_page->failPanel(); }, 60000);
        qunsetenv("VELMORA_DISKUTIL");
        QVERIFY(ended);
        QVERIFY(m_page->failPanel());
        QVERIFY(!m_page->progressPanel() || !m_page->progressPanel()->isVisible());
        QCOMPARE(m_page->failPanel()->findChild<SvgImageView*>()->imageName(), QString("ic_fail"));
        QCOMPARE(m_page->failPanel()->findChild<QLabel*>("panelTitle")->text(), QString("\"%1\" was not erased").arg(kLabel));
        QVERIFY(PanelContent::messageLabel(m_page->failPanel())->text().startsWith("Nothing was erased"));
        QCOMPARE(results("Erase Hard Drive").count("Failed"), before.count("Failed") + 1);
        QCOMPARE(results("Erase Hard Drive").count("Erased"), before.count("Erased"));
        QVERIFY(QFileInfo::exists(m_mountPoint + "/kept.txt"));
        QVERIFY(m_window->allTypeButArr().at(0)->isEnabled());
    }

    // No text of the page (both modes), its panels and end views is cut at the smallest
    // and a large window (and at scale 2 in the _scale2 run); the list grows with the page.
    void nothingClippedAtTwoSizes() {
        for (const QSize& size : {QSize(1500, 950), m_window->minimumSize()}) {
            m_window->resize(size);
            for (int tag : {2, 1}) {
                m_window->mouseClickAction(tag);
                QVERIFY(waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }));
                serveEventsFor(600);
                QCOMPARE(m_page->size(), m_window->pageArea()->size());
                QCOMPARE(m_page->tableView()->horizontalHeader()->length(), m_page->tableView()->viewport()->width());
                const QStringList clipped = clippedTexts(m_page);
                QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            }
            const QString sizeName = size == m_window->minimumSize() ? "small" : "large";
            m_window->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
            QVERIFY(tabTo(m_page->tableView()));
            press(Qt::Key_Down);
            QVERIFY(tabTo(m_page->wipeButton()));
            QVERIFY(saveScreenshot(m_window.get(), "keyboard_wipe_page_focus_" + sizeName));
        }
        const QString name = "A volume with a rather long name";
        WipeFreeSpaceProViewController progress("1 Pass (Zeros)", m_window.get());
        progress.setRemoveProgress("Erased 99.00% in 3 of 3 passes", 99);
        progress.setStage(QString("Step 2 of 2: overwriting all the space of \"%1\"").arg(name), false);
        WipeFailViewController failed(QString("Erasing the free space of \"%1\" was cancelled").arg(name),
                                      "The operation was canceled by the user.", QString(), true, m_window.get());
        WipeSuccessViewController done(QString("The free space of \"%1\" has been erased").arg(name),
                                       "The deleted/lost data on the hard drive has been successfully erased.",
                                       m_window.get());
        for (QWidget* panel : std::initializer_list<QWidget*>{&progress, &failed, &done}) {
            panel->show();
            const QStringList clipped = clippedTexts(panel);
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            panel->hide();
        }
    }

    void quittingDuringARunCancelsItRecordsItAndCloses_data() {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("tool");
        QTest::newRow("free space") << 2 << "Erase Free Space";
        QTest::newRow("whole drive") << 1 << "Erase Hard Drive";
    }

    // The red button over the progress view asks; "Stop and Quit" cancels the run as its
    // Cancel does: the run is recorded as failed (never erased), its fill folder goes, the
    // window closes once the run has ended.
    void quittingDuringARunCancelsItRecordsItAndCloses() {
        QFETCH(int, tag);
        QFETCH(QString, tool);
        EraserLevel::store(35);  // a long run, so that the quit meets it under way
        const QStringList before = results(tool);
        MAAttachedWindow* confirm = openConfirmation(tag);
        QVERIFY(confirm);
        bool filling = false;
        connect(m_page->freeSpaceWipe(), &FreeSpaceWipe::setRemoveProgress, this, [&] { filling = true; });
        QTest::mouseClick(tag == 1 ? m_page->makeSureDiskPanel()->continueButton()
                                   : m_page->makeSureFreeSpacePanel()->continueButton(),
                          Qt::LeftButton);
        const bool filled = waitUntil([&] { return filling; }, 120000);
        EraserLevel::store(1);
        QVERIFY(filled);

        // The window is blocked by the progress view: the click lands on the red button's stand-in.
        QWidget* standIn = m_window->closeStandIn();
        QVERIFY(waitUntil([standIn] { return standIn->isVisible(); }, 5000));
        QCOMPARE(standIn->geometry(), QRect(m_window->closeButton()->mapToGlobal(QPoint(0, 0)),
                                            m_window->closeButton()->size()));
        QTest::mouseClick(standIn->windowHandle(), Qt::LeftButton, {}, standIn->rect().center());
        QVERIFY(waitUntil([this] { return m_window->quitQuestion() != nullptr; }, 5000));
        QPushButton* stop = test::stopAndQuitButton(*m_window);
        QVERIFY(stop);
        QVERIFY(m_window->isJobRunning());
        stop->click();
        QVERIFY(waitUntil([this] { return !m_window->isVisible(); }, 120000));
        QVERIFY(!m_window->isJobRunning());
        const QStringList after = results(tool);
        QCOMPARE(after.size(), before.size() + 1);
        QCOMPARE(after.last(), QString("Failed"));
        if (tag == 2) QVERIFY(!QFileInfo::exists(m_mountPoint + "/.Velmora"));
    }

private:
    // Opens the tool (1 "Erase Hard Drive", 2 "Erase Free Space"), chooses the test volume
    // and clicks "Erase Now": the confirmation shown, or null when a step did not happen.
    MAAttachedWindow* openConfirmation(int tag) {
        m_window->mouseClickAction(tag);
        if (!waitUntil([this] { return rowOfDevice(m_page, m_device) >= 0 && !m_page->busyIndicator()->isVisible(); }))
            return nullptr;
        serveEventsFor(600);
        clickRow(m_page->tableView(), rowOfDevice(m_page, m_device));
        QTest::mouseClick(m_page->wipeButton(), Qt::LeftButton);
        MAAttachedWindow* confirm = tag == 1 ? static_cast<MAAttachedWindow*>(m_page->makeSureDiskPanel())
                                             : static_cast<MAAttachedWindow*>(m_page->makeSureFreeSpacePanel());
        return confirm && confirm->isVisible() ? confirm : nullptr;
    }

    // The results the history holds for this tool ("Erase Free Space", "Erase Hard Drive") on the test volume.
    static QStringList results(const QString& tool) {
        QStringList found;
        for (const HistoryRows& rows : DoDataBase::returnDoDataBase()->getAllDataWithKey(DoDataBase::kWipeVolume))
            for (const HistoryRow& row : rows)
                if (row.value("Items") == QString("%1:%2").arg(tool, kLabel)) found.append(row.value("Result"));
        return found;
    }

    TempDataDir m_data;
    std::unique_ptr<LoopVolume> m_volume;
    QString m_mountPoint;
    QString m_device;
    std::unique_ptr<MainWindowController> m_window;
    WipeDiskViewController* m_page = nullptr;
};

QTEST_MAIN(WipeDiskPageTest)
#include "wipe_disk_page_test.moc"
