// The drive-copy page between two ext4 loop volumes: opened from the menu and from the
// disk page, source and destination chosen with their refusal, files picked in the tree,
// confirmed, copied with progress, and the end view: success, a file the copy could not
// read listed in the details, and a copy stopped by the user.
#include "support/KeyboardWalk.h"
#include "support/FileAccessOverride.h"
#include "support/HeldThreadPool.h"
#include "support/LoopVolume.h"
#include "support/TestFiles.h"
#include "support/PanelScreenshot.h"
#include "support/PageTestSupport.h"
#include "engine/copy/Controller.h"
#include "engine/copy/DiskCopyLogic.h"
#include "gui/app/MainWindowController.h"
#include "gui/copy/CopyFailViewController.h"
#include "gui/copy/CopyFileTreeModel.h"
#include "gui/copy/CopyIssueList.h"
#include "gui/copy/CopyMakeSureVC.h"
#include "gui/copy/CopyProgreViewController.h"
#include "gui/copy/CopySuccessViewController.h"
#include "gui/copy/DiskCopyViewController.h"
#include "gui/copy/DiskListViewController.h"
#include "gui/copy/FilePreviewViewController.h"
#include "gui/copy/SelectCopyFilesViewController.h"
#include "gui/copy/SelectDiskViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/LComboBox.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QThreadPool>
#include <QTreeView>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

using namespace velmora;
using velmora::test::serveEventsFor;
using velmora::test::waitUntil;
using velmora::test::LoopVolume;
using keyboardwalk::focused;
using keyboardwalk::press;
using keyboardwalk::tabTo;

namespace {

// The one "VLclone(...)" folder on a volume, empty when there is none or more than one.
std::string cloneFolderIn(const std::string& mountPoint) {
    std::string found;
    int count = 0;
    if (DIR* folder = opendir(mountPoint.c_str())) {
        while (const dirent* entry = readdir(folder))
            if (std::string(entry->d_name).rfind("VLclone(", 0) == 0) {
                found = mountPoint + "/" + entry->d_name;
                ++count;
            }
        closedir(folder);
    }
    return count == 1 ? found : std::string();
}

QModelIndex childNamed(const QAbstractItemModel* model, const QString& name, const QModelIndex& parent = {}) {
    for (int row = 0; row < model->rowCount(parent); ++row)
        if (model->index(row, 0, parent).data().toString() == name) return model->index(row, 0, parent);
    return {};
}

int checkState(const QModelIndex& index) { return index.data(Qt::CheckStateRole).toInt(); }

}  // namespace

class CopyPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
    }

    void init() {
        if (const std::string why = test::loopDevicesUnavailable(); !why.empty()) QSKIP(why.c_str());
        m_source = mountVolume(test::uniqueLabel("VLSRC"), m_sourceMount);
        m_destination = mountVolume(test::uniqueLabel("VLDST"), m_destinationMount);
        QVERIFY(m_source && m_destination);
        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_page = m_window->diskCopyView();
        QVERIFY(m_page);
    }

    void cleanup() {
        m_window.reset();
        m_source.reset();
        m_destination.reset();
    }

    // Tools > Copy Drive… opens the page; the destination cannot be the source; a folder
    // ticked wholly and then one of its files unticked copies just the rest of it; the
    // sidebar is locked from the confirmation to the end view.
    void copiesPickedItemsBetweenLoopVolumes() {
        QCOMPARE(mkdir((m_sourceMount + "/docs").c_str(), 0755), 0);
        test::writeFile(m_sourceMount + "/docs/a.txt", "first file\n");
        test::writeFile(m_sourceMount + "/docs/b.txt", "second file\n");
        test::writeFile(m_sourceMount + "/top.txt", std::string(5000, 't'));
        QVERIFY(openFromMenu());

        chooseRow(m_page->sourcePicker(), m_sourceMount);
        chooseRow(m_page->destinationPicker(), m_sourceMount);
        QCOMPARE(m_page->errorLabel()->text(), DiskCopyLogic::kSameDriveText);
        QVERIFY(!m_page->copyButton()->isEnabled());
        QVERIFY(!m_page->destinationPicker()->rowOfPath(QString::fromStdString(m_sourceMount))->isChosen());
        chooseRow(m_page->destinationPicker(), m_destinationMount);
        QVERIFY(m_page->errorLabel()->text().isEmpty());
        QVERIFY(m_page->copyButton()->isEnabled());
        QVERIFY(m_page->destinationLabel()->text().contains(m_page->logic().toVolume()->volumeName + "\": "));
        QVERIFY(m_page->destinationLabel()->text().endsWith(" free"));
        QVERIFY(saveScreenshot(m_window.get(), "copy_page"));

        // "Copy Some Files" from the keyboard opens the picking tree.
        m_page->copyTypeBox()->setFocus();
        QTest::keyClick(m_page->copyTypeBox(), Qt::Key_Down);
        SelectCopyFilesViewController* pick = m_page->pickPanel();
        QVERIFY(pick);
        QVERIFY(waitUntil([pick] { return !pick->isScanning(); }));
        QVERIFY(!pick->chooseButton()->isEnabled());
        QTreeView* tree = pick->treeView();
        const QAbstractItemModel* model = tree->model();
        // The top of the source is listed in the background once the tree shows it.
        QVERIFY(waitUntil([model] { return childNamed(model, "docs").isValid(); }));
        QModelIndex docs = childNamed(model, "docs");
        QCOMPARE(model->index(docs.row(), CopyFileTreeModel::Size).data().toString(), QString("23 byte"));

        // Right opens the folder, which is listed in the background; Space ticks it.
        tree->setFocus();
        tree->setCurrentIndex(docs);
        QTest::keyClick(tree, Qt::Key_Right);
        QVERIFY(waitUntil([&] { return model->rowCount(childNamed(model, "docs")) == 2; }));
        docs = childNamed(model, "docs");
        QTest::keyClick(tree, Qt::Key_Space);
        QCOMPARE(checkState(docs), int(Qt::Checked));
        QCOMPARE(checkState(childNamed(model, "b.txt", docs)), int(Qt::Checked));
        QCOMPARE(pick->selectAllBox()->checkState(), Qt::PartiallyChecked);
        tree->setCurrentIndex(childNamed(model, "b.txt", docs));
        QTest::keyClick(tree, Qt::Key_Space);
        QCOMPARE(checkState(docs), int(Qt::PartiallyChecked));
        QCOMPARE(checkState(childNamed(model, "a.txt", docs)), int(Qt::Checked));
        QCOMPARE(pick->selectedLabel()->text(), QString("Selected: 11 byte"));
        QVERIFY(saveScreenshotWith(m_window.get(), pick, "copy_picking_tree"));

        // A text file previews as text.
        tree->setCurrentIndex(childNamed(model, "a.txt", docs));
        QTest::mouseClick(pick->previewButton(), Qt::LeftButton);
        auto* preview = pick->findChild<FilePreviewViewController*>();
        QVERIFY(preview);
        QCOMPARE(preview->kind(), FilePreviewViewController::Kind::Text);
        QTest::keyClick(preview, Qt::Key_Escape);

        QVERIFY(pick->chooseButton()->isEnabled());
        QTest::mouseClick(pick->chooseButton(), Qt::LeftButton);
        QCOMPARE(m_page->pickedLabel()->text(), QString("Picked: 11 byte"));
        QCOMPARE(m_page->copyTypeBox()->currentIndex(), 1);

        QTest::mouseClick(m_page->copyButton(), Qt::LeftButton);
        CopyMakeSureVC* makeSure = m_page->makeSurePanel();
        QVERIFY(makeSure && makeSure->isVisible());
        QVERIFY(!makeSure->copyButton()->isDefault());
        QVERIFY(saveScreenshotWith(m_window.get(), makeSure, "copy_confirmation"));
        QTest::mouseClick(makeSure->copyButton(), Qt::LeftButton);

        CopyProgreViewController* progress = m_page->copyProgressVC();
        QVERIFY(progress && progress->isVisible());
        QVERIFY(!m_window->allTypeButArr().first()->isEnabled());
        QVERIFY(!m_page->closeButton()->isEnabled());
        QVERIFY(saveScreenshotWith(m_window.get(), progress, "copy_progress"));

        QVERIFY(waitUntil([this] { return m_page->successPanel() != nullptr; }));
        QVERIFY(!m_page->failPanel());
        QVERIFY(m_window->allTypeButArr().first()->isEnabled());
        serveEventsFor(100);
        QVERIFY(saveScreenshotWith(m_window.get(), m_page->successPanel(), "copy_success"));

        const std::string clone = cloneFolderIn(m_destinationMount);
        QVERIFY2(!clone.empty(), m_destinationMount.c_str());
        QCOMPARE(test::readFile(clone + "/docs/a.txt"), std::string("first file\n"));
        QVERIFY(!test::exists(clone + "/docs/b.txt"));
        QVERIFY(!test::exists(clone + "/top.txt"));

        // Any sidebar entry leaves the page.
        QTest::keyClick(m_page->successPanel(), Qt::Key_Escape);
        QTest::mouseClick(m_window->allTypeButArr().at(3), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->isHidden(); }));
    }

    // Opened from the disk page, "Copy All Files" with verification: a file the copy cannot
    // read is counted and listed with its reason; everything else is copied.
    void failureListsWhatWasNotCopied() {
        test::writeFile(m_sourceMount + "/readable.txt", "fine\n");
        test::writeFile(m_sourceMount + "/locked.txt", "private\n");
        QCOMPARE(chmod((m_sourceMount + "/locked.txt").c_str(), 0), 0);
        QVERIFY(openFromDiskPage());
        chooseRow(m_page->sourcePicker(), m_sourceMount);
        chooseRow(m_page->destinationPicker(), m_destinationMount);
        QTest::mouseClick(m_page->verifyBox(), Qt::LeftButton);
        QVERIFY(m_page->verifyBox()->isChecked());

        QTest::mouseClick(m_page->copyButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->makeSurePanel() != nullptr; }));
        {
            // The copy's threads are made from here without root's power to read any file:
            // the pool lets its idle threads go first, so none that still has it takes the work.
            QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
            test::WithoutFileAccessOverride asUser;
            QVERIFY(asUser.active());
            QTest::mouseClick(m_page->makeSurePanel()->copyButton(), Qt::LeftButton);
            QVERIFY(waitUntil([this] { return m_page->failPanel() || m_page->successPanel(); }));
            QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
        }
        CopyFailViewController* fail = m_page->failPanel();
        QVERIFY(!m_page->successPanel());
        QCOMPARE(fail->titleText(), QString("1 item could not be copied"));
        QVERIFY(fail->details()->isHidden());
        QTest::mouseClick(fail->detailsButton(), Qt::LeftButton);
        QVERIFY(fail->details()->isVisible());
        const QStringList lines = fail->details()->lines();
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().startsWith(QString::fromStdString(m_sourceMount) + "/locked.txt: Not copied: "),
                 qPrintable(lines.first()));
        serveEventsFor(100);
        QVERIFY(saveScreenshotWith(m_window.get(), fail, "copy_failure"));

        const std::string clone = cloneFolderIn(m_destinationMount);
        QVERIFY(!clone.empty());
        QCOMPARE(test::readFile(clone + "/readable.txt"), std::string("fine\n"));
        QVERIFY(!test::exists(clone + "/locked.txt"));
    }

    // Cancel stops the copy: the end view says so and never claims a whole copy.
    void cancelStopsTheCopy() {
        startCopyOfManyFiles("f");
        QVERIFY(!QTest::currentTestFailed());
        CopyProgreViewController* progress = m_page->copyProgressVC();
        QVERIFY(progress);
        QTest::mouseClick(progress->cancelButton(), Qt::LeftButton);
        QVERIFY(!progress->cancelButton()->isEnabled());
        QVERIFY(progress->cancelNote()->isVisibleTo(progress));
        QVERIFY(waitUntil([this] { return m_page->failPanel() != nullptr; }));
        QVERIFY(!m_page->successPanel());
        QCOMPARE(m_page->failPanel()->titleText(), DiskCopyLogic::kStoppedText);
        QVERIFY(m_page->failPanel()->messageText().contains("not copied"));
        QVERIFY(m_window->allTypeButArr().first()->isEnabled());
        QVERIFY(m_page->closeButton()->isEnabled());
    }

    // "Stop and Quit" during a copy stops it as its Cancel does: what was not reached is
    // not copied, and the window closes once the page has ended the run.
    void quittingDuringACopyStopsItAndCloses() {
        startCopyOfManyFiles("q");
        QVERIFY(!QTest::currentTestFailed());
        QVERIFY(m_page->copyProgressVC());
        QVERIFY(test::quitDuringJob(*m_window));
        QVERIFY(waitUntil([this] { return !m_window->isVisible(); }));
        QVERIFY(!m_window->isJobRunning());
        QVERIFY(!m_page->isCopying());
        int copied = 0;
        for (int folder = 0; folder < 20; ++folder)
            for (int file = 0; file < 40; ++file)
                copied += test::exists(cloneFolderIn(m_destinationMount) + "/q" + std::to_string(folder) + "/" +
                                       std::to_string(file));
        QVERIFY2(copied < 800, qPrintable(QString("%1 files copied").arg(copied)));
    }

    // In a large window the page slides in from below the page area to cover it whole,
    // follows a resize, and slides out below it again.
    void slidesOverTheWholePageAreaInALargeWindow() {
        m_window->resize(1500, 950);
        m_window->showDiskCopyView();
        QCOMPARE(m_page->pos(), QPoint(0, m_window->pageArea()->height()));
        QVERIFY(waitUntil([this] { return m_page->pos() == QPoint(0, 0); }, 3000));
        QCOMPARE(m_page->size(), m_window->pageArea()->size());
        QWidget* covered = m_window->allBaseViewArr().first();
        QVERIFY(!covered->isVisible());  // Tab cannot reach the page under it
        m_window->resize(m_window->minimumSize());
        QCOMPARE(m_page->geometry(), m_window->pageArea()->rect());
        m_window->resize(1500, 950);
        m_page->closePage();
        QVERIFY(waitUntil([this] { return !m_page->isVisible(); }, 3000));
        QVERIFY(covered->isVisible());
        QCOMPARE(m_page->pos(), QPoint(0, m_window->pageArea()->height()));
        QCOMPARE(covered->geometry(), m_window->pageArea()->rect());
    }

    // From the keyboard alone: Tab goes as the page reads, from the close button through
    // the source and the destination rows to the footer (the copy mode waits for a source).
    // Space on a row chooses it; Space on "Copy Now" asks, with Cancel focused and default,
    // so Enter (like Escape) copies nothing.
    void keyboardNeverCopiesByEnter() {
        test::writeFile(m_sourceMount + "/top.txt", "top\n");
        QVERIFY(openFromMenu());
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QList<QWidget*> order;
        for (DiskListViewController* row : m_page->sourcePicker()->rows()) order.append(row);
        for (DiskListViewController* row : m_page->destinationPicker()->rows()) order.append(row);
        order.append(m_page->verifyBox());
        m_page->closeButton()->setFocus(Qt::TabFocusReason);
        for (QWidget* next : order) {
            press(Qt::Key_Tab);
            QCOMPARE(focused(), next);
        }
        QVERIFY(tabTo(m_page->sourcePicker()->rowOfPath(QString::fromStdString(m_sourceMount))));
        press(Qt::Key_Space);
        QVERIFY(tabTo(m_page->destinationPicker()->rowOfPath(QString::fromStdString(m_destinationMount))));
        press(Qt::Key_Space);
        QVERIFY(m_page->copyButton()->isEnabled());
        QVERIFY(tabTo(m_page->copyButton()));
        QVERIFY(saveScreenshot(m_window.get(), "keyboard_copy_page_focus_small"));
        for (int key : {Qt::Key_Return, Qt::Key_Escape}) {
            QVERIFY(tabTo(m_page->copyButton()));
            press(Qt::Key_Space);
            QTRY_VERIFY(m_page->makeSurePanel() && m_page->makeSurePanel()->isVisible());
            QTRY_COMPARE(focused(), m_page->makeSurePanel()->cancelButton());
            QVERIFY(m_page->makeSurePanel()->cancelButton()->isDefault());
            press(key);
            QTRY_VERIFY(!m_page->makeSurePanel());
            QVERIFY(!m_page->copyProgressVC());
        }
        QVERIFY(cloneFolderIn(m_destinationMount).empty());
    }

    // Listing and measuring the source, and listing a folder when it is opened, run on the
    // background queue: with the queue held the picker serves its events, still measuring
    // or listing; freed, the rows arrive. A tick reaches every entry of the folder, one
    // entry unticked leaves the folder partly ticked, and the picked size follows.
    void pickingTreeListsOffThePageThread() {
        QCOMPARE(mkdir((m_sourceMount + "/many").c_str(), 0755), 0);
        for (int i = 0; i < 40; ++i) test::writeFile(m_sourceMount + "/many/file" + std::to_string(i), "12345");
        Controller controller;
        auto held = std::make_unique<test::HeldThreadPool>();
        controller.eumeAllRootFileNodeWithRootArr(QString::fromStdString(m_sourceMount), false, true);
        auto* picker = new SelectCopyFilesViewController(controller, "Source", true, m_window.get());
        picker->open();
        CopyFileTreeModel* model = picker->treeModel();
        QVERIFY(test::postedEventIsServed());
        QVERIFY(picker->isScanning());
        QCOMPARE(model->rowCount(), 0);
        held.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!picker->isScanning(), 20000);
        QModelIndex folder;
        for (int row = 0; row < model->rowCount(); ++row)
            if (model->nodeOf(model->index(row, 0))->name == "many") folder = model->index(row, 0);
        QVERIFY(folder.isValid());

        held = std::make_unique<test::HeldThreadPool>();
        picker->treeView()->expand(folder);
        QVERIFY(test::postedEventIsServed());
        QVERIFY(model->isListing(folder));
        QCOMPARE(model->rowCount(folder), 0);
        held.reset();
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(folder), 40, 20000);

        QVERIFY(model->setData(folder, Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(model->index(39, 0, folder).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QCOMPARE(controller.selectedSize(), quint64(40 * 5));
        QVERIFY(model->setData(model->index(7, 0, folder), Qt::Unchecked, Qt::CheckStateRole));
        QCOMPARE(folder.data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
        QCOMPARE(controller.selectedSize(), quint64(39 * 5));
        picker->reject();
    }

    // No text of the page is cut at a large and the smallest window (and at scale 2 in
    // the _scale2 run); the pickers share the width.
    void nothingClippedAtTwoSizes() {
        QVERIFY(openFromMenu());
        chooseRow(m_page->sourcePicker(), m_sourceMount);
        chooseRow(m_page->destinationPicker(), m_destinationMount);
        for (const QSize& size : {QSize(1500, 950), m_window->minimumSize()}) {
            m_window->resize(size);
            QTRY_COMPARE(m_page->size(), m_window->pageArea()->size());
            QVERIFY(qAbs(m_page->sourcePicker()->width() - m_page->destinationPicker()->width()) <= 1);
            const QStringList clipped = clippedTexts(m_page);
            QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
            QVERIFY(saveScreenshot(m_window.get(), size == m_window->minimumSize() ? "copy_small" : "copy_large"));
        }
    }

private:
    // Fills the source with 800 files of 20 kB in folders named PREFIX0.., and starts
    // their copy to the destination from the menu, past the confirmation.
    void startCopyOfManyFiles(const std::string& prefix) {
        for (int folder = 0; folder < 20; ++folder) {
            QCOMPARE(mkdir((m_sourceMount + "/" + prefix + std::to_string(folder)).c_str(), 0755), 0);
            for (int file = 0; file < 40; ++file)
                test::writeFile(m_sourceMount + "/" + prefix + std::to_string(folder) + "/" + std::to_string(file),
                                std::string(20000, 'x'));
        }
        QVERIFY(openFromMenu());
        chooseRow(m_page->sourcePicker(), m_sourceMount);
        chooseRow(m_page->destinationPicker(), m_destinationMount);
        QTest::mouseClick(m_page->copyButton(), Qt::LeftButton);
        QVERIFY(waitUntil([this] { return m_page->makeSurePanel() != nullptr; }));
        QTest::mouseClick(m_page->makeSurePanel()->copyButton(), Qt::LeftButton);
    }

    std::unique_ptr<LoopVolume> mountVolume(const std::string& label, std::string& mountPoint) {
        auto volume = std::make_unique<LoopVolume>(64);
        const std::string problem = volume->formatAndMount("ext4", label, mountPoint);
        if (!problem.empty()) {
            qWarning("%s", problem.c_str());
            return nullptr;
        }
        return volume;
    }

    bool openFromMenu() {
        QAction* copyDrive = nullptr;
        for (QAction* action : m_window->applicationMenu()->actions())
            if (action->menu() && action->text() == "Tools")
                for (QAction* inner : action->menu()->actions())
                    if (inner->text() == "Copy Drive…") copyDrive = inner;
        if (!copyDrive) return false;
        copyDrive->trigger();
        return waitUntil([this] { return m_page->isVisible() && m_page->pos().y() == 0; });
    }

    bool openFromDiskPage() {
        m_window->mouseClickAction(4);
        QPushButton* copyDrive = nullptr;
        for (QPushButton* button : m_window->allBaseViewArr().at(2)->findChildren<QPushButton*>())
            if (button->text() == "Copy Drive") copyDrive = button;
        if (!copyDrive) return false;
        serveEventsFor(600);  // the pages' slide ends
        QTest::mouseClick(copyDrive, Qt::LeftButton);
        return waitUntil([this] { return m_page->isVisible() && m_page->pos().y() == 0; });
    }

    void chooseRow(SelectDiskViewController* picker, const std::string& mountPoint) {
        DiskListViewController* row = picker->rowOfPath(QString::fromStdString(mountPoint));
        QVERIFY2(row, mountPoint.c_str());
        QTest::mouseClick(row, Qt::LeftButton);
    }

    std::unique_ptr<LoopVolume> m_source;
    std::unique_ptr<LoopVolume> m_destination;
    std::string m_sourceMount;
    std::string m_destinationMount;
    std::unique_ptr<MainWindowController> m_window;
    DiskCopyViewController* m_page = nullptr;
};

QTEST_MAIN(CopyPageTest)
#include "copy_page_test.moc"
