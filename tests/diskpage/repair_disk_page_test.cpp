// The "Disk Format" / "Disk Tool" page on real volumes: an ext4 file system on a
// loop device is listed, renamed, formatted and ejected through the page.
#include "support/KeyboardWalk.h"
#include "support/VolumeTable.h"
#include "support/ChildProcess.h"
#include "support/LoopVolume.h"
#include "support/PanelScreenshot.h"
#include "support/TempDataDir.h"
#include "support/PageTestSupport.h"
#include "engine/volumes/FormatChoices.h"
#include "gui/app/MainWindowController.h"
#include "gui/volumes/EidtNameViewcontroller.h"
#include "gui/volumes/FormatEndViewController.h"
#include "gui/volumes/FormatTypeViewController.h"
#include "gui/volumes/MakeSureFormatViewController.h"
#include "gui/volumes/NTFSViewController.h"
#include "gui/volumes/RepairDiskViewController.h"
#include "gui/volumes/VolumeTableModel.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <memory>

using namespace velmora;
using velmora::test::serveEventsFor;
using velmora::test::waitUntil;
using velmora::test::LoopVolume;
using keyboardwalk::focused;
using keyboardwalk::press;
using keyboardwalk::tabTo;
using volumetable::cell;
using volumetable::clickRow;
using volumetable::rowOfDevice;

namespace {

// What blkid reads from the device itself: "TYPE LABEL".
std::string blkidTypeAndLabel(const std::string& device) {
    const auto value = [&](const char* tag) {
        std::string out = test::runProcess({"blkid", "-p", "-o", "value", "-s", tag, device}).out;
        while (!out.empty() && out.back() == '\n') out.pop_back();
        return out;
    };
    return value("TYPE") + " " + value("LABEL");
}

}  // namespace

class RepairDiskPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
    }

    void init() {
        if (const std::string why = test::loopDevicesUnavailable(); !why.empty()) QSKIP(why.c_str());
        m_volume = std::make_unique<LoopVolume>(64);
        m_label = QString::fromStdString(test::uniqueLabel("VELDISK"));
        std::string mountPoint;
        const std::string problem = m_volume->formatAndMount("ext4", m_label.toStdString(), mountPoint);
        QVERIFY2(problem.empty(), problem.c_str());
        m_device = QString::fromStdString(m_volume->node());
        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_page = qobject_cast<RepairDiskViewController*>(m_window->allBaseViewArr().at(2));
        QVERIFY(m_page);
    }

    void cleanup() {
        m_window.reset();
        m_volume.reset();
    }

    // "Disk Tool": the list, the buttons of the mode, a rename to a name full of shell
    // characters (written as it is, nothing run), a refused name that leaves
    // the listed name alone, an eject refused while a file is open, then "Eject".
    void diskToolRenamesAndEjects() {
        QVERIFY(openMode(4));
        QCOMPARE(m_page->titleLabel()->text(), QString("Disk Tool"));
        const int row = rowOfDevice(m_page, m_device);
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::Name), m_label);
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::Type), QString("ext4"));
        QVERIFY(!m_page->renameButton()->isEnabled());
        clickRow(m_page->tableView(), row);
        QVERIFY(settled());
        QCOMPARE(m_page->selectedLabel()->text(), QString("You have selected: %1").arg(m_label));
        QVERIFY(m_page->renameButton()->isVisible() && m_page->renameButton()->isEnabled());
        QVERIFY(!m_page->formatButton()->isVisible());
        QVERIFY(m_page->selectVolume().bCanEject);  // a loop device
        QVERIFY(m_page->ejectButton()->isVisible());
        QVERIFY(saveScreenshot(m_window.get(), "disk_tool_list"));

        // The sheet offers the current name; Enter in the field saves the name exactly as typed.
        const QString shellName = "new;name \"$(x)'";
        QTest::mouseClick(m_page->renameButton(), Qt::LeftButton);
        EidtNameViewcontroller* sheet = m_page->editNamePanel();
        QVERIFY(sheet && sheet->isVisible());
        QCOMPARE(sheet->nameField()->text(), m_label);
        sheet->nameField()->selectAll();
        QTest::keyClicks(sheet->nameField(), shellName);
        QCOMPARE(sheet->editStr(), shellName);
        QVERIFY(saveScreenshotWith(m_window.get(), sheet, "disk_tool_rename_sheet"));
        QTest::keyClick(sheet->nameField(), Qt::Key_Return);
        QVERIFY(waitUntil([&] {
            const int listed = rowOfDevice(m_page, m_device);
            return !m_page->isScanV() && listed >= 0 && cell(m_page->tableView(), listed, VolumeTableModel::Name) == shellName;
        }));
        QVERIFY(!m_page->formatEndPanel());
        QCOMPARE(blkidTypeAndLabel(m_volume->node()), "ext4 " + shellName.toStdString());
        QCOMPARE(m_page->selectedLabel()->text(), QString("You have selected: %1").arg(shellName));

        // 17 bytes do not fit an ext4 label: refused with the reason, the listed name stays.
        QVERIFY(settled());
        QTest::mouseClick(m_page->renameButton(), Qt::LeftButton);
        sheet = m_page->editNamePanel();
        sheet->nameField()->selectAll();
        QTest::keyClicks(sheet->nameField(), "seventeen-bytes-x");
        QVERIFY(!sheet->hintLabel()->text().isEmpty());
        QTest::mouseClick(sheet->saveButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->formatEndPanel() != nullptr; }, 20000));
        FormatEndViewController* end = m_page->formatEndPanel();
        QVERIFY(!end->succeeded());
        QVERIFY2(PanelContent::messageLabel(end)->text().contains("16"), qPrintable(PanelContent::messageLabel(end)->text()));
        QVERIFY(settled());
        QCOMPARE(cell(m_page->tableView(), rowOfDevice(m_page, m_device), VolumeTableModel::Name), shellName);
        QCOMPARE(blkidTypeAndLabel(m_volume->node()), "ext4 " + shellName.toStdString());
        QVERIFY(saveScreenshotWith(m_window.get(), end, "disk_tool_rename_failed"));
        QTest::keyClick(end, Qt::Key_Return);
        QVERIFY(waitUntil([this] { return !m_page->formatEndPanel(); }, 2000));

        // A file open on the volume keeps it busy: the eject fails and says who holds it.
        auto busy = std::make_unique<QFile>(QString::fromStdString(m_volume->mountPoints().front()) + "/open.txt");
        QVERIFY(busy->open(QIODevice::WriteOnly));
        QVERIFY(settled());
        QTest::mouseClick(m_page->ejectButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->formatEndPanel() != nullptr; }, 60000));
        end = m_page->formatEndPanel();
        QVERIFY(!end->succeeded());
        QVERIFY2(PanelContent::messageLabel(end)->text().contains("in use by"), qPrintable(PanelContent::messageLabel(end)->text()));
        QVERIFY(settled());
        QVERIFY(saveScreenshotWith(m_window.get(), end, "disk_tool_eject_busy"));
        QTest::mouseClick(end->okButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return !m_page->formatEndPanel(); }, 2000));
        busy.reset();

        QVERIFY(settled());
        QTest::mouseClick(m_page->ejectButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return !m_page->isScanV() && rowOfDevice(m_page, m_device) < 0; }));
        QVERIFY(!m_page->formatEndPanel());
        QVERIFY(m_volume->mountPoints().empty());
        QVERIFY(!m_page->ejectButton()->isEnabled());
    }

    // "Stop and Quit" during a format lets it end (a volume formatted halfway would be
    // unreadable): the page says the window closes then, and it does, the volume formatted.
    void quittingDuringAFormatLetsItEndAndCloses() {
        QVERIFY(openMode(3));
        clickRow(m_page->tableView(), rowOfDevice(m_page, m_device));
        QVERIFY(settled());
        MakeSureFormatViewController* confirm = openConfirmation();
        QVERIFY(confirm);
        confirm->nameField()->selectAll();
        QTest::keyClicks(confirm->nameField(), "QUITFMT");
        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QVERIFY(m_page->diskTool()->isRunning());
        QVERIFY(test::quitDuringJob(*m_window));
        QVERIFY(m_page->selectedLabel()->text().endsWith("the window closes when the format has finished."));
        QVERIFY(m_window->isVisible());
        QVERIFY(waitUntil([this] { return !m_window->isVisible(); }, 120000));
        QVERIFY(!m_page->diskTool()->isRunning());
        QCOMPARE(blkidTypeAndLabel(m_volume->node()), std::string("ext4 QUITFMT"));
    }

    // "Disk Format": the confirmation with the engine's type list, a real format as FAT32 with the sidebar locked, and the end view after
    // the rescan; a name exFAT cannot take ends in the end view as a failure.
    void diskFormatFormatsThroughTheConfirmation() {
        QVERIFY(openMode(3));
        QCOMPARE(m_page->titleLabel()->text(), QString("Disk Format"));
        QVERIFY(!m_page->renameButton()->isVisible() && !m_page->ejectButton()->isVisible());
        clickRow(m_page->tableView(), rowOfDevice(m_page, m_device));
        QVERIFY(settled());
        QVERIFY(m_page->formatButton()->isVisible() && m_page->formatButton()->isEnabled());
        QVERIFY(saveScreenshot(m_window.get(), "disk_format_list"));

        MakeSureFormatViewController* confirm = openConfirmation();
        QVERIFY(confirm);
        QCOMPARE(confirm->nameField()->text(), m_label);
        QCOMPARE(confirm->typeText(), QString("ext4"));
        QVERIFY(!confirm->typeFixed() && confirm->typeButton()->isEnabled() && confirm->typeArrow()->isVisibleTo(confirm));
        QTest::mouseClick(confirm->typeButton(), Qt::LeftButton);
        FormatTypeViewController* list = confirm->typeList();
        QVERIFY(list && list->isVisible());
        QStringList offered;
        for (QAction* item : list->actions()) offered.append(item->text());
        QStringList expected;
        for (const FormatChoice& choice : formatChoices()) expected.append(choice.typeText);
        QCOMPARE(offered, expected);
        QVERIFY(offered.contains("MS-DOS FAT32") && offered.contains("ExFAT") && offered.contains("ext4"));
        QVERIFY(list->actionForType(3)->isChecked());
        QVERIFY(saveScreenshotWith(m_window.get(), {confirm, list}, "disk_format_type_list"));
        list->actionForType(1)->trigger();
        list->close();
        QCOMPARE(confirm->typeButton()->text(), QString("MS-DOS FAT32"));
        confirm->nameField()->selectAll();
        QTest::keyClicks(confirm->nameField(), "backup disk 2024");
        QCOMPARE(confirm->nameHint()->text(), QString("The volume will be named \"BACKUP DISK\"."));
        QVERIFY(saveScreenshotWith(m_window.get(), confirm, "disk_format_confirmation"));

        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QVERIFY(m_page->diskTool()->isRunning());
        QVERIFY(!m_window->allTypeButArr().at(0)->isEnabled());
        QVERIFY(!m_page->formatButton()->isEnabled());
        QVERIFY(waitUntil([this] { return m_page->formatEndPanel() != nullptr; }, 120000));
        FormatEndViewController* end = m_page->formatEndPanel();
        QVERIFY2(end->succeeded(), qPrintable(PanelContent::messageLabel(end)->text()));
        QVERIFY(m_window->allTypeButArr().at(0)->isEnabled());
        // The end view comes after the rescan: the list already shows the new volume
        // (unless a volume mounted elsewhere started another scan meanwhile).
        QVERIFY(settled());
        const int row = rowOfDevice(m_page, m_device);
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::Name), QString("BACKUP DISK"));
        QCOMPARE(cell(m_page->tableView(), row, VolumeTableModel::Type), QString("MS-DOS FAT32"));
        QCOMPARE(blkidTypeAndLabel(m_volume->node()), std::string("vfat BACKUP DISK"));
        QVERIFY(PanelContent::messageLabel(end)->text().contains("BACKUP DISK"));
        QVERIFY(saveScreenshotWith(m_window.get(), end, "disk_format_end"));
        QTest::mouseClick(end->okButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return !m_page->formatEndPanel(); }, 2000));

        // exFAT holds 15 UTF-16 units: a longer name is refused, the volume is untouched.
        QVERIFY(settled());
        clickRow(m_page->tableView(), rowOfDevice(m_page, m_device));
        QVERIFY(settled());
        confirm = openConfirmation();
        QVERIFY(confirm);
        confirm->selectFormatbyType(0);
        QCOMPARE(confirm->typeText(), QString("ExFAT"));
        confirm->nameField()->selectAll();
        QTest::keyClicks(confirm->nameField(), "a name far too long");
        QVERIFY(!confirm->nameHint()->text().isEmpty());
        QTest::mouseClick(confirm->continueButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->formatEndPanel() != nullptr; }, 20000));
        end = m_page->formatEndPanel();
        QVERIFY(!end->succeeded());
        QVERIFY(PanelContent::messageLabel(end)->text().contains("BACKUP DISK"));
        QCOMPARE(blkidTypeAndLabel(m_volume->node()), std::string("vfat BACKUP DISK"));
        QVERIFY(m_window->allTypeButArr().at(0)->isEnabled());
        QVERIFY(saveScreenshotWith(m_window.get(), end, "disk_format_failed"));
        QTest::keyClick(end, Qt::Key_Escape);
        QVERIFY(waitUntil([this] { return !m_page->formatEndPanel(); }, 2000));
    }

    // An NTFS volume can only be erased as FAT32 named NEW, an APFS volume only be
    // reformatted in place: the type is fixed (dimmed, no arrow, no list) and the
    // confirmation says so, with the guide's links; the name typed is not taken.
    void ntfsAndApfsVolumesHaveAFixedTypeAndTheirNotice() {
        const struct {
            const char* diskType;
            const char* typeText;
            const char* link;
        } cases[] = {{"NTFS", "MS-DOS FAT32", NTFSViewController::kGuideUrl},
                     {"APFS", "APFS", MakeSureFormatViewController::kApfsArticleUrl}};
        QVERIFY(openMode(3));
        for (const auto& fixed : cases) {
            auto* confirm = new MakeSureFormatViewController(formatChoices(), m_page);
            confirm->setName("WINDISK", fixed.diskType);
            confirm->open();
            QCOMPARE(confirm->typeText(), QString(fixed.typeText));
            QVERIFY(confirm->typeFixed());
            QVERIFY(!confirm->typeButton()->isEnabled());
            QVERIFY(!confirm->typeArrow()->isVisibleTo(confirm));
            QVERIFY(confirm->noticeLabel()->isVisibleTo(confirm));
            QVERIFY(confirm->noticeLabel()->text().contains(fixed.link));
            serveEventsFor(50);
            QVERIFY(confirm->nameField()->isReadOnly());
            confirm->typeButtonAction();
            QVERIFY(!confirm->typeList());
            confirm->selectFormatbyType(0);
            QCOMPARE(confirm->typeText(), QString(fixed.typeText));
            if (QString(fixed.diskType) == "NTFS")
                QVERIFY(saveScreenshotWith(m_window.get(), confirm, "disk_format_ntfs_confirmation"));
            QTest::keyClick(confirm, Qt::Key_Escape);
            QVERIFY(!confirm->isVisible());
        }
    }

    // The startup volume never offers "Format"; in "Disk Tool" a volume that is not
    // ejectable never offers "Eject".
    void startupVolumeHasNoFormatButton() {
        QVERIFY(openMode(3));
        if (startupRow() < 0) QSKIP("SKIPPED: the system root is not mounted from a block device here, so it is not listed");
        clickRow(m_page->tableView(), startupRow());
        QVERIFY(settled());
        QCOMPARE(m_page->selectVolume().volumeMountPoint, QString("/"));
        QVERIFY(!m_page->formatButton()->isVisible());
        m_page->formatButtonAction();
        QVERIFY(!m_page->makeSureFormatPanel());
        QVERIFY(openMode(4));
        clickRow(m_page->tableView(), startupRow());
        QVERIFY(settled());
        QVERIFY(m_page->renameButton()->isVisible());
        QCOMPARE(m_page->ejectButton()->isVisible(), m_page->selectVolume().bCanEject);
    }

    // From the keyboard alone: Tab reaches the list (Down chooses the volume) and the
    // mode's button. In "Disk Format", Space opens the confirmation; Enter there is
    // Cancel (nothing is formatted) and Escape closes it. In "Disk Tool", Escape closes
    // the rename sheet.
    void keyboardNeverFormatsByEnter() {
        QVERIFY(openMode(3));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QVERIFY(tabTo(m_page->tableView()));
        for (int step = 0; step < m_page->allVolumeArr().size() && m_page->selectVolume().volumePath != m_device; ++step)
            press(Qt::Key_Down);
        QCOMPARE(m_page->selectVolume().volumePath, m_device);
        QVERIFY(tabTo(m_page->formatButton()));
        QVERIFY(saveScreenshot(m_window.get(), "keyboard_disk_page_focus_small"));
        for (int key : {Qt::Key_Return, Qt::Key_Escape}) {
            // A volume event elsewhere makes the page scan again, with its buttons off meanwhile.
            QVERIFY(settled());
            QVERIFY(tabTo(m_page->formatButton()));
            press(Qt::Key_Space);
            QTRY_VERIFY(m_page->makeSureFormatPanel() && m_page->makeSureFormatPanel()->isVisible());
            QTRY_VERIFY(focused() && m_page->makeSureFormatPanel()->isAncestorOf(focused()));
            QVERIFY(m_page->makeSureFormatPanel()->cancelButton()->isDefault());
            QVERIFY(!m_page->makeSureFormatPanel()->continueButton()->isDefault());
            press(key);
            QTRY_VERIFY(!m_page->makeSureFormatPanel());
            QVERIFY(!m_page->diskTool()->isRunning());
        }
        QCOMPARE(blkidTypeAndLabel(m_device.toStdString()), "ext4 " + m_label.toStdString());

        QVERIFY(openMode(4));
        QVERIFY(tabTo(m_page->tableView()));
        QVERIFY(tabTo(m_page->renameButton()));
        press(Qt::Key_Space);
        QTRY_VERIFY(m_page->editNamePanel() && m_page->editNamePanel()->isVisible());
        QTRY_VERIFY(focused() && m_page->editNamePanel()->isAncestorOf(focused()));
        press(Qt::Key_Escape);
        QTRY_VERIFY(!m_page->editNamePanel());
        QVERIFY(!m_page->diskTool()->isRunning());
    }

    // No text of the page, in both modes, is cut at a large and the smallest window (and
    // at scale 2 in the _scale2 run); sizes are never shortened.
    void nothingClippedAtTwoSizes() {
        for (const QSize& size : {QSize(1500, 950), m_window->minimumSize()}) {
            m_window->resize(size);
            for (int tag : {3, 4}) {
                QVERIFY(openMode(tag));
                clickRow(m_page->tableView(), rowOfDevice(m_page, m_device));
                QVERIFY(settled());
                QCOMPARE(m_page->size(), m_window->pageArea()->size());
                const QStringList clipped = clippedTexts(m_page);
                QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            }
            QVERIFY(saveScreenshot(m_window.get(), size == m_window->minimumSize() ? "disk_page_small" : "disk_page_large"));
        }
    }

private:
    // Chooses a sidebar entry of the page and waits for the rescanned list with the test volume.
    bool openMode(int tag) {
        m_window->mouseClickAction(tag);
        serveEventsFor(600);  // the pages' slide ends
        return settled();
    }

    // Other tests on this machine mount volumes too, and every mount rescans the list:
    // waits until no scan runs and the test volume is listed.
    bool settled() {
        return waitUntil([this] { return !m_page->isScanV() && rowOfDevice(m_page, m_device) >= 0; });
    }

    int startupRow() const {
        for (int row = 0; row < m_page->allVolumeArr().size(); ++row)
            if (m_page->allVolumeArr().at(row).volumeMountPoint == "/") return row;
        return -1;
    }

    MakeSureFormatViewController* openConfirmation() {
        QTest::mouseClick(m_page->formatButton(), Qt::LeftButton);
        MakeSureFormatViewController* confirm = m_page->makeSureFormatPanel();
        if (!confirm || !confirm->isVisible()) return nullptr;
        // The name field takes keys once the panel is up.
        return waitUntil([confirm] { return !confirm->nameField()->isReadOnly(); }, 2000) ? confirm : nullptr;
    }

    TempDataDir m_data;
    std::unique_ptr<LoopVolume> m_volume;
    QString m_label;
    QString m_device;
    std::unique_ptr<MainWindowController> m_window;
    RepairDiskViewController* m_page = nullptr;
};

QTEST_MAIN(RepairDiskPageTest)
#include "repair_disk_page_test.moc"
