#include "support/KeyboardWalk.h"
#include "support/LayoutCheck.h"
#include "support/Screenshot.h"
#include "support/TempDataDir.h"
#include "engine/duplicate/DuplicateResults.h"
#include "engine/platform/NativePath.h"
#include "gui/app/MainWindowController.h"
#include "gui/duplicate/ChoosePathPanel.h"
#include "gui/duplicate/DeleteAllCopiesSheet.h"
#include "gui/duplicate/DuplicateEmptyView.h"
#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/duplicate/DuplicateOutlineView.h"
#include "gui/duplicate/DuplicateSearchingView.h"
#include "gui/duplicate/DuplicateStartView.h"
#include "gui/duplicate/DuplicateTabBar.h"
#include "gui/duplicate/DuplicationDetFailViewController.h"
#include "gui/duplicate/DuplicationDetProgressViewController.h"
#include "gui/duplicate/DuplicationDetSuccessViewController.h"
#include "gui/duplicate/MarkSureDeleteVC.h"
#include "gui/duplicate/SameFileDeleteViewController.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/Style.h"
#include "support/TestFiles.h"
#include "support/PageTestSupport.h"

#include <QApplication>
#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QScopeGuard>
#include <QStackedWidget>
#include <QTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace velmora;
using velmora::test::dragAndDrop;
using velmora::test::sidebarLocked;

namespace {

constexpr int kSearchTimeoutMs = 60000;

// Content that differs from every other seed from its first byte on.
QByteArray contentFor(int seed, int size) {
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 2166136261u ^ quint32(seed);
    for (char& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = char(state >> 24);
    }
    return bytes;
}

void writeFile(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(content), content.size());
}

// The immutable flag, which keeps even root from removing a file. Cleared
// again by the destructor so that the temporary folder can go.
class ImmutableFile {
public:
    explicit ImmutableFile(const QString& path) : m_path(path) { m_set = setFlag(true); }
    ~ImmutableFile() {
        if (m_set) setFlag(false);
    }
    bool isSet() const { return m_set; }

private:
    bool setFlag(bool on) {
        const int fd = open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NONBLOCK);
        if (fd < 0) return false;
        int flags = 0;
        bool done = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        done = done && ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        close(fd);
        return done;
    }
    QString m_path;
    bool m_set = false;
};

using Group = DuplicateResults::Group;
using Copy = DuplicateResults::Copy;

QStringList leafPaths(const DuplicateResults& results, Group group) {
    QStringList paths;
    for (Copy copy : results.copies(group)) paths.append(results.path(copy));
    return paths;
}

QPushButton* buttonNamed(QWidget* parent, const QString& text) {
    for (QPushButton* button : parent->findChildren<QPushButton*>())
        if (button->text() == text) return button;
    return nullptr;
}

// Lets the layouts requested by the last change run, as they would before
// the next paint, then saves the picture.
void screenshot(QWidget* window, const QString& name) {
    QCoreApplication::processEvents();
    QVERIFY(saveScreenshot(window, name));
}

}  // namespace

class DuplicatePageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        test::usePageFontAndStyle();
    }

    void init() {
        m_scratch = std::make_unique<QTemporaryDir>();
        QVERIFY(m_scratch->isValid());
        m_window = std::make_unique<MainWindowController>();
        m_window->show();
        m_window->mouseClickAction(7);
        m_page = qobject_cast<SameFileDeleteViewController*>(m_window->allBaseViewArr().at(5));
        QVERIFY(m_page);
        QTRY_COMPARE_WITH_TIMEOUT(m_page->pos(), QPoint(0, 0), 3000);
    }

    void cleanup() {
        m_window.reset();
        m_scratch.reset();
    }

    // Six groups: a document in three copies, two copies each of a song, a
    // clip, a picture, a zip and a .tar.gz (which is not an archive: only a
    // last suffix counts); a lone file and a file of a copy's size but other
    // content are in no group.
    void searchSortsGroupsIntoTabs() {
        const QString root = makeTree();
        screenshot(m_window.get(), "duplicate_start");
        QCOMPARE(m_page->views()->currentIndex(), 0);

        m_page->searchPathChosen(root + "/");
        QCOMPARE(m_page->searchPath(), root);
        QVERIFY(sidebarLocked(*m_window));
        QVERIFY(!m_page->isCanClick());
        QCOMPARE(m_page->views()->currentWidget(), m_page->searchingView());
        // Taken at once: the search may end with the next turn of the event loop.
        QVERIFY(saveScreenshot(m_window.get(), "duplicate_searching"));
        waitForSearch();
        QVERIFY(!sidebarLocked(*m_window));
        QCOMPARE(m_page->views()->currentWidget(), m_page->resultView());
        screenshot(m_window.get(), "duplicate_results");

        const QStringList labels = {"tree", "Documents", "Videos", "Music", "Archives", "Pictures", "Others"};
        const QList<int> groups = {6, 1, 1, 1, 1, 1, 1};
        const QList<int> files = {13, 3, 2, 2, 2, 2, 2};
        const QStringList names = {"", "report.pdf", "clip.mp4", "song.mp3", "data.zip", "photo.JPG", "backup.tar.gz"};
        QCOMPARE(m_page->tabBar()->count(), DuplicateTabBar::kTabCount);
        for (int tab = 0; tab < DuplicateTabBar::kTabCount; ++tab) {
            m_page->segmentSelect(tab);
            QCOMPARE(m_page->remberWitchSelect(), tab);
            QCOMPARE(m_page->tabBar()->tabText(tab), labels[tab]);
            QCOMPARE(m_page->outlineModel()->rowCount(), groups[tab]);
            const QString shown = QString("%1 files in %2").arg(files[tab]).arg(labels[tab]);
            QCOMPARE(m_page->titleLabel()->text(), shown + ", selected 7 files in All.");
            QCOMPARE(m_page->titleLabel()->toolTip(), shown);
            if (tab > 0) QCOMPARE(m_page->results()->groupName(m_page->shownGroups().front()), names[tab]);
            // The first group is open.
            QVERIFY(m_page->outlineView()->isExpanded(m_page->outlineModel()->index(0, 0)));
        }
        // Tab 2 shows videos and tab 3 music, the categories' numbers crossed.
        QCOMPARE(&m_page->results()->groupsForTab(2), &m_page->results()->groups(DuplicateResults::Videos));
        QCOMPARE(&m_page->results()->groupsForTab(3), &m_page->results()->groups(DuplicateResults::Music));
        m_page->segmentSelect(0);
    }

    void selectAllKeepsTheLastCopyOfEachGroup() {
        searchAndWait(makeTree());
        const DuplicateResults& results = *m_page->results();
        auto checkKeepsLast = [&results](Group group) {
            const QList<Copy> copies = results.copies(group);
            for (qsizetype i = 0; i < copies.size(); ++i) QCOMPARE(results.isSelected(copies[i]), i + 1 < copies.size());
            QCOMPARE(results.groupState(group), DuplicateResults::PartlySelected);
            QCOMPARE(results.groupLabel(group), QString("%1/%2").arg(copies.size() - 1).arg(copies.size()));
        };
        // After the search every group is ticked so, and the header, like the
        // groups, shows partly ticked; its click then unticks.
        for (Group group : m_page->shownGroups()) checkKeepsLast(group);
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_election"));
        QCOMPARE(m_page->selectAllButton()->accessibleName(), QString("Unselect all"));

        QTest::mouseClick(m_page->selectAllButton(), Qt::LeftButton);
        QVERIFY(m_page->results()->allSelectNumArr().isEmpty());
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_no"));
        QVERIFY(!m_page->removeButton()->isEnabled());
        QVERIFY(m_page->titleLabel()->text().endsWith(", selected 0 files in All."));
        const QModelIndex firstGroup = m_page->outlineModel()->index(0, 0);
        QCOMPARE(firstGroup.data(DuplicateOutlineModel::CheckImageRole).toString(), QString("checkbox_no"));
        QCOMPARE(m_page->selectAllButton()->accessibleName(), QString("Select all"));

        QTest::mouseClick(m_page->selectAllButton(), Qt::LeftButton);
        for (Group group : m_page->shownGroups()) checkKeepsLast(group);
        QCOMPARE(firstGroup.data(DuplicateOutlineModel::CheckImageRole).toString(), QString("checkbox_election"));
        QCOMPARE(firstGroup.siblingAtColumn(DuplicateOutlineModel::Selected).data().toString(),
                 results.groupLabel(m_page->shownGroups().front()));

        // Select-all of a tab reaches only that tab's groups.
        m_page->segmentSelect(1);
        QTest::mouseClick(m_page->selectAllButton(), Qt::LeftButton);
        QCOMPARE(m_page->titleLabel()->text(), QString("3 files in Documents, selected 5 files in All."));
        m_page->segmentSelect(0);
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_election"));

        // Fully ticked only with every copy of the tab ticked; one group partly
        // ticked makes it partly ticked again.
        m_page->segmentSelect(3);
        const QList<Copy> music = results.copies(m_page->shownGroups().front());
        m_page->alertEnded(QDialog::Accepted, music.last());
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_yes"));
        QCOMPARE(m_page->outlineModel()->index(0, 0).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Checked);
        m_page->setSelectState(m_page->outlineModel()->indexForCopy(music.first()));
        QCOMPARE(m_page->selectAllButton()->imageName(), QString("checkbox_election"));
        QCOMPARE(m_page->outlineModel()->index(0, 0).data(Qt::CheckStateRole).value<Qt::CheckState>(),
                 Qt::PartiallyChecked);
    }

    // Remove takes the ticks of the tab on show and nothing else; a tab
    // without ticks, or emptied by a removal, leaves it disabled.
    void removeActsOnTheShownTab() {
        searchAndWait(makeTree());
        m_page->segmentSelect(5);
        const QString picture = leafPaths(*m_page->results(), m_page->shownGroups().front()).first();
        QVERIFY(m_page->removeButton()->isEnabled());
        m_page->setSelectState(m_page->outlineModel()->index(0, 0));  // the group's checkbox clears it
        QVERIFY(!m_page->removeButton()->isEnabled());
        QCOMPARE(m_page->results()->allSelectNumArr().size(), 6);
        m_page->setSelectState(m_page->outlineModel()->index(0, 0));
        QVERIFY(m_page->removeButton()->isEnabled());

        m_page->removeBtnClicked();
        QVERIFY(m_page->markSurePanel());
        QVERIFY2(PanelContent::messageLabel(m_page->markSurePanel())->text().startsWith("1 selected copy"),
                 qPrintable(PanelContent::messageLabel(m_page->markSurePanel())->text()));
        QTest::mouseClick(m_page->markSurePanel()->continueButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel(), kSearchTimeoutMs);
        QCOMPARE(m_page->successPanel()->messageText(), QString("1 duplicate file removed, 4.00 KB freed."));
        QVERIFY(!QFileInfo::exists(picture));
        QCOMPARE(m_page->results()->allSelectNumArr().size(), 6);
        for (Copy copy : m_page->results()->allSelectNumArr())
            QVERIFY2(QFileInfo::exists(m_page->results()->path(copy)), qPrintable(m_page->results()->path(copy)));
        QCOMPARE(m_page->outlineModel()->rowCount(), 0);
        QVERIFY(!m_page->removeButton()->isEnabled());
        m_page->segmentSelect(0);
        QVERIFY(m_page->removeButton()->isEnabled());
    }

    void tickingTheLastCopyAsksFirst() {
        searchAndWait(makeTree());
        m_page->segmentSelect(1);
        DuplicateOutlineModel* model = m_page->outlineModel();
        const QModelIndex group = model->index(0, 0);
        const QModelIndex last = model->index(2, 0, group);
        const QModelIndex first = model->index(0, 0, group);
        const Copy lastCopy = model->copyOf(last);
        const DuplicateResults& results = *m_page->results();
        DuplicateOutlineView* view = m_page->outlineView();

        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->checkBoxRect(last).center());
        QVERIFY(m_page->deleteAllCopiesSheet());
        QTRY_VERIFY(m_page->deleteAllCopiesSheet()->isVisible());
        QVERIFY(!results.isSelected(lastCopy));
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->deleteAllCopiesSheet(), "duplicate_last_copy_sheet"));
        QTest::mouseClick(m_page->deleteAllCopiesSheet()->cancelButton(), Qt::LeftButton);
        QVERIFY(!results.isSelected(lastCopy));
        QCOMPARE(group.siblingAtColumn(DuplicateOutlineModel::Selected).data().toString(), QString("2/3"));

        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->checkBoxRect(last).center());
        QTest::mouseClick(m_page->deleteAllCopiesSheet()->okButton(), Qt::LeftButton);
        QVERIFY(results.isSelected(lastCopy));
        QCOMPARE(group.siblingAtColumn(DuplicateOutlineModel::Selected).data().toString(), QString("3/3"));
        QCOMPARE(group.data(DuplicateOutlineModel::CheckImageRole).toString(), QString("checkbox_yes"));
        QVERIFY(m_page->titleLabel()->text().endsWith("selected 8 files in All."));

        // Unticking never asks; the group's own checkbox clears the group,
        // and ticks all copies but the last when none is ticked.
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->checkBoxRect(first).center());
        QTRY_VERIFY(!m_page->deleteAllCopiesSheet());
        QVERIFY(!results.isSelected(model->copyOf(first)));
        QCOMPARE(group.siblingAtColumn(DuplicateOutlineModel::Selected).data().toString(), QString("2/3"));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->checkBoxRect(group).center());
        QCOMPARE(group.siblingAtColumn(DuplicateOutlineModel::Selected).data().toString(), QString("0/3"));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->checkBoxRect(group).center());
        QCOMPARE(group.siblingAtColumn(DuplicateOutlineModel::Selected).data().toString(), QString("2/3"));
        QVERIFY(!results.isSelected(lastCopy));
    }

    // Groups follow the clicked column, ascending then descending; an open
    // group stays open wherever it moves, and its copies keep their order.
    void headerClickSortsGroupsNotCopies() {
        searchAndWait(makeTree());
        DuplicateOutlineModel* model = m_page->outlineModel();
        QHeaderView* header = m_page->outlineView()->header();
        const DuplicateResults& results = *m_page->results();
        const Group opened = m_page->shownGroups().front();
        const QStringList copies = leafPaths(results, opened);
        auto groupNames = [this, &results] {
            QStringList names;
            for (Group group : m_page->shownGroups()) names.append(results.groupName(group));
            return names;
        };
        const QPoint sizeHeader(header->sectionViewportPosition(DuplicateOutlineModel::Size) + 10, header->height() / 2);
        // The sort runs on a worker: the click returns with the order unchanged and the page busy.
        const QStringList found = groupNames();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, sizeHeader);
        QCOMPARE(groupNames(), found);
        QVERIFY(!m_page->isCanClick());
        const QStringList ascending = {"data.zip", "backup.tar.gz", "photo.JPG", "report.pdf", "song.mp3", "clip.mp4"};
        QTRY_COMPARE(groupNames(), ascending);
        QTRY_VERIFY(m_page->isCanClick());
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, sizeHeader);
        QStringList descending = ascending;
        std::reverse(descending.begin(), descending.end());
        QTRY_COMPARE(groupNames(), descending);
        QTRY_VERIFY(m_page->isCanClick());
        QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);

        const QModelIndex moved = model->indexForGroup(opened);
        QCOMPARE(moved.row(), int(descending.indexOf(results.groupName(opened))));
        QVERIFY(m_page->outlineView()->isExpanded(moved));
        QCOMPARE(leafPaths(results, opened), copies);
        QCOMPARE(model->rowCount(), 6);
        QCOMPARE(model->index(0, DuplicateOutlineModel::Size).data().toString(), QString("14.00 KB"));
    }

    // The document group keeps two copies (only one was ticked): it stays,
    // labelled 0/2. Every other group loses its ticked copy and, a single
    // copy being no duplicate, leaves the outline and its category.
    void removalDeletesTickedCopiesAndRefreshesTheOutline() {
        searchAndWait(makeTree());
        const DuplicateResults& results = *m_page->results();
        const Group documents = results.groups(DuplicateResults::Documents).front();
        m_page->setSelectState(m_page->outlineModel()->indexForCopy(results.copyAt(documents, 0)));
        QStringList removed;
        QStringList kept;
        for (Group group : m_page->shownGroups())
            for (Copy copy : results.copies(group)) (results.isSelected(copy) ? removed : kept).append(results.path(copy));
        QCOMPARE(removed.size(), 6);

        m_page->removeBtnClicked();
        QVERIFY(m_page->markSurePanel());
        QTRY_VERIFY(m_page->markSurePanel()->isVisible());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->markSurePanel(), "duplicate_confirm_removal"));
        QTest::mouseClick(m_page->markSurePanel()->continueButton(), Qt::LeftButton);
        QVERIFY(m_page->progressPanel());
        QVERIFY(sidebarLocked(*m_window));
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel(), kSearchTimeoutMs);
        QTRY_VERIFY(m_page->successPanel()->isVisible());
        QVERIFY(!m_page->progressPanel());
        QVERIFY(!sidebarLocked(*m_window));
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->successPanel(), "duplicate_removal_success"));

        for (const QString& path : removed) QVERIFY2(!QFileInfo::exists(path), qPrintable(path));
        for (const QString& path : kept) QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        QCOMPARE(m_page->delNodesArr().size(), removed.size());
        QCOMPARE(m_page->successPanel()->messageText(), QString("6 duplicate files removed, 24.10 KB freed."));

        QCOMPARE(m_page->shownGroups(), std::vector<Group>{documents});
        QCOMPARE(results.copyCount(documents), 2);
        QCOMPARE(results.groupLabel(documents), QString("0/2"));
        QCOMPARE(m_page->outlineModel()->rowCount(), 1);
        QCOMPARE(m_page->outlineModel()->rowCount(m_page->outlineModel()->index(0, 0)), 2);
        for (int tab = 2; tab < DuplicateTabBar::kTabCount; ++tab)
            QVERIFY(m_page->results()->groupsForTab(tab).empty());
        QVERIFY(m_page->results()->allSelectNumArr().isEmpty());
        QCOMPARE(m_page->titleLabel()->text(), QString("2 files in tree, selected 0 files in All."));
        QTest::mouseClick(m_page->successPanel()->okButton(), Qt::LeftButton);
        QTRY_VERIFY(!m_page->successPanel());
        screenshot(m_window.get(), "duplicate_after_removal");
    }

    void copyThatCannotGoStaysSelected() {
        if (geteuid() != 0) QSKIP("SKIPPED: making a file immune to removal needs root (the immutable flag)");
        searchAndWait(makeTree());
        const DuplicateResults& results = *m_page->results();
        const Group music = results.groups(DuplicateResults::Music).front();
        const Copy locked = results.copyAt(music, 0);
        QVERIFY(results.isSelected(locked));
        ImmutableFile immutable(results.path(locked));
        if (!immutable.isSet()) QSKIP("SKIPPED: the file system does not take the immutable flag");

        m_page->delDuplicateItems();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->failPanel(), kSearchTimeoutMs);
        QCOMPARE(m_page->failPanel()->titleText(), QString("Some files that require admin access can't be removed!"));
        QVERIFY(!m_page->successPanel());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->failPanel(), "duplicate_removal_failed"));
        QVERIFY(QFileInfo::exists(results.path(locked)));
        QCOMPARE(results.allSelectNumArr(), QList<Copy>({locked}));
        QCOMPARE(m_page->shownGroups(), std::vector<Group>{music});
        QCOMPARE(results.copyCount(music), 2);
        QVERIFY(m_page->removeButton()->isEnabled());
    }

    // With every copy of a group ticked (after the sheet), the removal still
    // leaves the last one on disk and says why.
    void allCopiesTickedStillLeavesOne() {
        searchAndWait(makeTree());
        const DuplicateResults& results = *m_page->results();
        const Group music = results.groups(DuplicateResults::Music).front();
        const QStringList copies = leafPaths(results, music).mid(0, 2);
        m_page->alertEnded(QDialog::Accepted, results.copies(music).last());
        QCOMPARE(m_page->results()->allSelectNumArr().size(), 8);

        m_page->delDuplicateItems();
        QTRY_VERIFY_WITH_TIMEOUT(m_page->failPanel(), kSearchTimeoutMs);
        QCOMPARE(m_page->failPanel()->titleText(), QString("Some copies were left on the disk"));
        QVERIFY2(m_page->failPanel()->messageText().contains("it is the last copy left"),
                 qPrintable(m_page->failPanel()->messageText()));
        QCOMPARE(m_page->delNodesArr().size(), 7);
        QCOMPARE(int(QFileInfo::exists(copies[0])) + int(QFileInfo::exists(copies[1])), 1);
        QFile left(QFileInfo::exists(copies[0]) ? copies[0] : copies[1]);
        QVERIFY(left.open(QIODevice::ReadOnly));
        QCOMPARE(left.readAll(), contentFor(2, 5000));
    }

    // Stopped before it could finish, a removal forgets the selection; what
    // it removed is gone from disk and outline, everything listed is on disk.
    void stoppedRemovalForgetsTheSelection() {
        searchAndWait(makeTree());
        m_page->delDuplicateItems();
        QTest::keyClick(m_page->progressPanel(), Qt::Key_Escape);  // Escape is Stop
        QTRY_VERIFY_WITH_TIMEOUT(m_page->failPanel(), kSearchTimeoutMs);
        QCOMPARE(m_page->failPanel()->titleText(), QString("Removal stopped"));
        QVERIFY(m_page->delNodesArr().size() < 7);
        const DuplicateResults& results = *m_page->results();
        for (Copy copy : m_page->delNodesArr()) QVERIFY(!QFileInfo::exists(results.path(copy)));
        QVERIFY(results.allSelectNumArr().isEmpty());
        for (Group group : m_page->shownGroups()) {
            QCOMPARE(results.groupState(group), DuplicateResults::NotSelected);
            for (Copy copy : results.copies(group)) {
                QVERIFY(!results.isSelected(copy));
                QVERIFY(QFileInfo::exists(results.path(copy)));
            }
        }
        QVERIFY(!m_page->removeButton()->isEnabled());
        QVERIFY(!sidebarLocked(*m_window));
        QTest::keyClick(m_page->failPanel(), Qt::Key_Escape);
        QTRY_VERIFY(!m_page->failPanel());
    }

    // Keyboard only: Tab walks the result view from top to bottom, Space acts
    // on the control in the ring, Enter on the removal's confirmation presses
    // Cancel and Escape closes each panel; the removal starts only once the
    // focus was moved onto Continue.
    void keyboardWalkAndPanelKeys() {
        searchAndWait(makeTree());
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_page->tabBar()->setFocus(Qt::TabFocusReason);
        keyboardwalk::press(Qt::Key_Right);  // the arrows switch tabs
        QCOMPARE(m_page->remberWitchSelect(), 1);
        screenshot(m_window.get(), "duplicate_focus_tabs");
        keyboardwalk::press(Qt::Key_Left);
        QCOMPARE(m_page->remberWitchSelect(), 0);
        QWidget* resultView = m_page->resultView();
        const QList<QWidget*> order = {m_page->selectAllButton(), m_page->outlineView(),
                                       buttonNamed(resultView, "Choose Folder"), buttonNamed(resultView, "Search Again"),
                                       m_page->removeButton()};
        for (QWidget* next : order) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), next);
            if (next == m_page->outlineView()) {
                // The first group is in the ring: Space clears its ticks and sets them again.
                const Group group = m_page->shownGroups().front();
                QTest::keyClick(next, Qt::Key_Space);
                QCOMPARE(m_page->results()->groupState(group), DuplicateResults::NotSelected);
                screenshot(m_window.get(), "duplicate_focus_outline");
                QTest::keyClick(next, Qt::Key_Space);
                QCOMPARE(m_page->results()->groupState(group), DuplicateResults::PartlySelected);
            }
        }
        const QStringList ticked = leafPaths(*m_page->results(), m_page->shownGroups().front()).mid(0, 2);

        QTest::keyClick(m_page->removeButton(), Qt::Key_Space);
        QVERIFY(m_page->markSurePanel());
        QTRY_COMPARE(QApplication::focusWidget(), m_page->markSurePanel()->cancelButton());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_VERIFY(!m_page->markSurePanel());
        QVERIFY(!m_page->progressPanel());
        m_page->removeBtnClicked();
        QTRY_VERIFY(m_page->markSurePanel()->isVisible());
        QTest::keyClick(m_page->markSurePanel(), Qt::Key_Escape);
        QTRY_VERIFY(!m_page->markSurePanel());
        QVERIFY(!m_page->progressPanel());
        for (const QString& path : ticked) QVERIFY(QFileInfo::exists(path));

        // The sheet before the last copy is ticked: Enter and Escape both leave it unticked.
        m_page->segmentSelect(3);
        const Copy lastSong = m_page->results()->copies(m_page->shownGroups().front()).last();
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            m_page->setSelectState(m_page->outlineModel()->indexForCopy(lastSong));
            QVERIFY(m_page->deleteAllCopiesSheet());
            QTRY_COMPARE(QApplication::focusWidget(), m_page->deleteAllCopiesSheet()->cancelButton());
            QTest::keyClick(QApplication::focusWidget(), key);
            QTRY_VERIFY(!m_page->deleteAllCopiesSheet());
            QVERIFY(!m_page->results()->isSelected(lastSong));
        }

        m_page->removeBtnClicked();
        QTRY_COMPARE(QApplication::focusWidget(), m_page->markSurePanel()->cancelButton());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->markSurePanel(), "duplicate_confirm_cancel_default"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_page->markSurePanel()->continueButton());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel() && m_page->successPanel()->isVisible(), kSearchTimeoutMs);
        QTest::keyClick(m_page->successPanel(), Qt::Key_Escape);
        QTRY_VERIFY(!m_page->successPanel());
    }

    // A copy that cannot be read and a folder that cannot be listed are
    // counted on the page, not dropped silently. As root the search runs
    // with the unprivileged user's rights, which the file modes then stop.
    void unreadableFilesAreCounted() {
        const QString root = makeTree();
        writeFile(root + "/locked/report.pdf", contentFor(1, 3000));
        writeFile(root + "/unreadable-report.pdf", contentFor(1, 3000));
        QVERIFY(chmod(qPrintable(root + "/locked"), 0) == 0);
        QVERIFY(chmod(qPrintable(root + "/unreadable-report.pdf"), 0) == 0);
        const auto unlock = qScopeGuard([&] { chmod(qPrintable(root + "/locked"), 0700); });
        QVERIFY(!m_page->unreadableLabel()->isVisible());
        {
            const bool asRoot = geteuid() == 0;
            if (asRoot) {
                QVERIFY(chmod(qPrintable(m_scratch->path()), 0755) == 0);
                QVERIFY(seteuid(65534) == 0);  // every thread of the process, through the C library
            }
            const auto backToRoot = qScopeGuard([asRoot] {
                if (asRoot && seteuid(0) != 0) qFatal("cannot return to root");
            });
            searchAndWait(root);
        }
        QVERIFY(m_page->unreadableLabel()->isVisible());
        QCOMPARE(m_page->unreadableLabel()->text(),
                 QString("2 files or folders could not be read; any copies of them are not listed."));
        QVERIFY(m_page->unreadableLabel()->toolTip().contains(root + "/unreadable-report.pdf"));
        QVERIFY(m_page->unreadableLabel()->toolTip().contains(root + "/locked"));
        QCOMPARE(m_page->results()->copyCount(m_page->results()->groups(DuplicateResults::Documents).front()), 3);
        screenshot(m_window.get(), "duplicate_unreadable_counted");

        m_page->searchPathChosen(root + "/docs");
        waitForSearch();
        QVERIFY(!m_page->unreadableLabel()->isVisible());
    }

    void folderGoneBeforeTheSearchShowsTheFailureView() {
        const QString folder = m_scratch->path() + "/gone";
        QVERIFY(QDir().mkpath(folder));
        m_page->searchPathChosen(folder);
        waitForSearch();
        QCOMPARE(m_page->views()->currentWidget(), m_page->emptyView());
        QVERIFY(!m_page->failPanel());
        QVERIFY(QDir(folder).removeRecursively());
        QTest::mouseClick(m_page->emptyView()->searchButton(), Qt::LeftButton);
        waitForSearch();
        QVERIFY(m_page->failPanel());
        QCOMPARE(m_page->failPanel()->titleText(), QString("The folder can't be searched"));
    }

    void folderComesFromADropOrThePanel() {
        const QString lonely = m_scratch->path() + "/lonely";
        writeFile(lonely + "/one.txt", contentFor(1, 900));
        writeFile(lonely + "/two.txt", contentFor(2, 900));

        // A dropped file is no folder to search; a dropped folder is searched.
        QMimeData file;
        file.setUrls({QUrl::fromLocalFile(lonely + "/one.txt")});
        QVERIFY(!dragAndDrop(m_page->startView(), &file));
        QVERIFY(!m_page->startView()->isHighlighted());
        QVERIFY(m_page->searchPath().isEmpty());
        QMimeData folder;
        folder.setUrls({QUrl::fromLocalFile(lonely + "/one.txt"), QUrl::fromLocalFile(lonely)});
        QVERIFY(dragAndDrop(m_page->startView(), &folder));
        QCOMPARE(m_page->searchPath(), lonely);
        waitForSearch();
        QCOMPARE(m_page->views()->currentWidget(), m_page->emptyView());
        QVERIFY(m_page->emptyView()->messageText().contains("lonely"));
        screenshot(m_window.get(), "duplicate_empty");

        const QString tree = makeTree();
        QTest::mouseClick(m_page->emptyView()->chooseButton(), Qt::LeftButton);
        auto* panel = m_page->findChild<ChoosePathPanel*>();
        QVERIFY(panel);
        QCOMPARE(panel->windowTitle(), QString("Choose a path to search"));
        QCOMPARE(panel->labelText(QFileDialog::Accept), QString("Choose"));
        QCOMPARE(panel->fileMode(), QFileDialog::Directory);
        panel->setDirectory(m_scratch->path());
        panel->selectFile(tree);
        static_cast<QDialog*>(panel)->accept();
        QCOMPARE(m_page->searchPath(), QFileInfo(tree).canonicalFilePath());
        waitForSearch();
        QCOMPARE(m_page->shownGroups().size(), 6u);
    }

    // A folder whose name is not text, dropped as a file manager hands it over (the raw
    // bytes of a URI list): searched, shown with the replacement character, and the
    // selected copy removed by its real name.
    void namesThatAreNotTextAreShownAndRemoved() {
        const test::TempDir scratch;  // QTemporaryDir could not remove a name that is not text
        const QByteArray folder = QByteArray::fromStdString(scratch.path()) + "/caf\xe9";
        QCOMPARE(mkdir(folder.constData(), 0700), 0);
        const QByteArray odd = folder + "/bad\xff\xfename.txt", plain = folder + "/plain.txt";
        for (const QByteArray& path : {odd, plain}) test::writeFile(path.toStdString(), contentFor(3, 1500).toStdString());
        QMimeData dropped;
        dropped.setData("text/uri-list", "file://" + folder.toPercentEncoding("/") + "\r\n");
        QVERIFY(dragAndDrop(m_page->startView(), &dropped));
        QCOMPARE(nativePath(m_page->searchPath()), folder);
        waitForSearch();
        QCOMPARE(m_page->shownGroups().size(), 1u);

        const QString shownFolder = displayPath(pathFromNative(folder));
        QVERIFY(shownFolder.endsWith(QString("/caf\uFFFD")));
        QCOMPARE(m_page->tabBar()->tabText(0), QString("caf\uFFFD"));
        QCOMPARE(m_page->tabBar()->tabToolTip(0), shownFolder);
        DuplicateOutlineModel* model = m_page->outlineModel();
        const QModelIndex group = model->index(0, 0);
        QStringList shown, tips;
        for (int row = 0; row < model->rowCount(group); ++row) {
            shown.append(model->index(row, 0, group).data().toString());
            tips.append(model->index(row, 0, group).data(Qt::ToolTipRole).toString());
        }
        QCOMPARE(QSet<QString>(shown.begin(), shown.end()),
                 (QSet<QString>{shownFolder + "/bad\uFFFD\uFFFDname.txt", shownFolder + "/plain.txt"}));
        QCOMPARE(tips, shown);
        QVERIFY(group.data(Qt::ToolTipRole).toString().endsWith(shown.last()));
        screenshot(m_window.get(), "duplicate_names_not_text");

        QByteArray selected;
        for (Copy copy : m_page->results()->copies(m_page->shownGroups().front()))
            if (m_page->results()->isSelected(copy)) selected = m_page->results()->nativePath(copy);
        QVERIFY(selected == odd || selected == plain);
        m_page->removeBtnClicked();
        QTRY_VERIFY(m_page->markSurePanel() && m_page->markSurePanel()->isVisible());
        QTest::mouseClick(m_page->markSurePanel()->continueButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel(), kSearchTimeoutMs);
        QVERIFY(!test::exists(selected.toStdString()));
        QVERIFY(test::exists((selected == odd ? plain : odd).toStdString()));
    }

    // Stopped at once, the search ends with the groups found so far (none
    // or few of the 400) and the page is usable again.
    void stopEndsTheSearch() {
        const QString root = m_scratch->path() + "/many";
        for (int pair = 0; pair < 400; ++pair) {
            const QByteArray content = contentFor(1000 + pair, 3000 + pair);
            writeFile(QString("%1/a%2/f%3.dat").arg(root).arg(pair % 40).arg(pair), content);
            writeFile(QString("%1/b%2/g%3.dat").arg(root).arg(pair % 40).arg(pair), content);
        }
        m_page->searchPathChosen(root);
        m_page->stopScanBtnClicked();
        QVERIFY(!m_page->searchingView()->stopButton()->isEnabled());
        waitForSearch();
        QVERIFY(!sidebarLocked(*m_window));
        QVERIFY(m_page->isCanClick());
        const size_t found = m_page->results() ? m_page->results()->groups(DuplicateResults::None).size() : 0;
        QVERIFY2(found < 400, qPrintable(QString("found %1 groups").arg(found)));

        // Searched again without a stop, the same folder gives every pair.
        m_page->searchBtnClicked();
        waitForSearch();
        QCOMPARE(m_page->results()->groups(DuplicateResults::None).size(), 400u);
    }

    // The search and the removal run on a worker: a timer set on the user interface
    // thread just after each starts fires while the page still waits for its end.
    void searchAndRemovalLeaveTheWindowFree() {
        const QString root = m_scratch->path() + "/free";
        for (int pair = 0; pair < 400; ++pair) {
            const QByteArray content = contentFor(5000 + pair, 2000 + pair);
            writeFile(QString("%1/a%2/f%3.bin").arg(root).arg(pair % 40).arg(pair), content);
            writeFile(QString("%1/b%2/f%3.bin").arg(root).arg(pair % 40).arg(pair), content);
        }
        bool searching = false;
        m_page->searchPathChosen(root);
        QTimer::singleShot(0, m_page, [&] { searching = !m_page->bSearchFinished() && !m_page->isCanClick(); });
        waitForSearch();
        QVERIFY(searching);
        QCOMPARE(m_page->results()->groups(DuplicateResults::None).size(), 400u);

        bool removing = false;
        m_page->delDuplicateItems();
        QTimer::singleShot(0, m_page, [&] {
            removing = m_page->progressPanel() && !m_page->successPanel() && m_page->delNodesArr().size() < 400;
        });
        QTRY_VERIFY_WITH_TIMEOUT(m_page->successPanel(), kSearchTimeoutMs);
        QVERIFY(removing);
        QCOMPARE(m_page->delNodesArr().size(), 400);
        QCOMPARE(m_page->outlineModel()->rowCount(), 0);
    }

    // Closing the window while a worker runs stops and waits for it.
    void closingDuringWorkStopsTheWorker() {
        const QString root = m_scratch->path() + "/pairs";
        for (int pair = 0; pair < 150; ++pair) {
            const QByteArray content = contentFor(5000 + pair, 1500 + pair);
            writeFile(QString("%1/a/f%2.bin").arg(root).arg(pair), content);
            writeFile(QString("%1/b/f%2.bin").arg(root).arg(pair), content);
        }
        searchAndWait(root);
        m_page->delDuplicateItems();
        QVERIFY(m_page->progressPanel());
        QVERIFY(saveScreenshotWithPanel(m_window.get(), m_page->progressPanel(), "duplicate_removal_progress"));
        m_window.reset();
        qsizetype left = 0;
        for (const char* folder : {"a", "b"}) left += QDir(root + "/" + folder).entryList(QDir::Files).size();
        QVERIFY(left >= 150);  // one copy of every pair at least

        m_window = std::make_unique<MainWindowController>();
        m_page = qobject_cast<SameFileDeleteViewController*>(m_window->allBaseViewArr().at(5));
        m_page->searchPathChosen(root);
        QVERIFY(!m_page->bSearchFinished());
        m_window.reset();
    }

    // The menu key and Shift+F10 open the current row's menu, as a right click does;
    // Escape closes it.
    void rowMenuOpensFromTheKeyboard() {
        searchAndWait(makeTree());
        QTreeView* outline = m_page->outlineView();
        outline->setFocus(Qt::TabFocusReason);
        outline->setCurrentIndex(outline->model()->index(0, 0));
        for (const QKeyCombination keys : {QKeyCombination(Qt::Key_Menu), QKeyCombination(Qt::ShiftModifier, Qt::Key_F10)}) {
            QTest::keyClick(outline, keys.key(), keys.keyboardModifiers());
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY2(menu, qPrintable(QKeySequence(keys).toString()));
            QCOMPARE(menu->actions().size(), 2);
            QCOMPARE(menu->actions().first()->text(), QString("Open"));
            QVERIFY(menu->geometry().intersects(
                QRect(outline->viewport()->mapToGlobal(QPoint(0, 0)), outline->viewport()->size())));
            QTest::keyClick(menu, Qt::Key_Escape);
            QTRY_VERIFY(!QApplication::activePopupWidget());
        }
        QTest::keyClick(outline, Qt::Key_F10);
        QVERIFY(!QApplication::activePopupWidget());
    }

    void quittingDuringWorkStopsItAndCloses_data() {
        QTest::addColumn<bool>("removal");
        QTest::addColumn<bool>("copyPageOver");
        QTest::newRow("search") << false << false;
        QTest::newRow("removal") << true << false;
        QTest::newRow("search under the drive-copy page") << false << true;
    }

    // "Stop and Quit" during a search or a removal stops it as its Stop button does;
    // the window closes once the page has ended the run.
    void quittingDuringWorkStopsItAndCloses() {
        QFETCH(bool, removal);
        QFETCH(bool, copyPageOver);
        const QString root = m_scratch->path() + "/pairs";
        // A search gets enough files that it is still running when the stop arrives,
        // also after the time it takes the drive-copy page to come up.
        const int pairs = removal ? 400 : 3000;
        for (int pair = 0; pair < pairs; ++pair) {
            const QByteArray content = contentFor(7000 + pair, 1500 + pair);
            writeFile(QString("%1/a%2/f%3.bin").arg(root).arg(pair % 40).arg(pair), content);
            writeFile(QString("%1/b%2/f%3.bin").arg(root).arg(pair % 40).arg(pair), content);
        }
        if (removal) {
            searchAndWait(root);
            m_page->delDuplicateItems();
            QVERIFY(m_page->progressPanel());
        } else {
            m_page->searchPathChosen(root);
        }
        if (copyPageOver) m_window->showDiskCopyView();  // the menu stays open to a running search
        QVERIFY(test::quitDuringJob(*m_window));
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), kSearchTimeoutMs);
        QVERIFY(!m_window->isJobRunning());
        if (removal) {
            qsizetype left = 0;
            for (const QString& folder : QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
                left += QDir(root + "/" + folder).entryList(QDir::Files).size();
            QVERIFY2(left > 400, qPrintable(QString("%1 files left").arg(left)));  // stopped before the last copy
        } else {
            QVERIFY(m_page->bSearchFinished());
            const size_t found = m_page->results() ? m_page->results()->groups(DuplicateResults::None).size() : 0;
            QVERIFY2(found < size_t(pairs), qPrintable(QString("found %1 groups").arg(found)));
        }
    }

    // No text of the start, result and empty views (nor a size in the outline)
    // is cut at the smallest and a large window, and at scale 2 in the _scale2
    // run; the outline grows with the window.
    void nothingClippedAtTwoSizes() {
        const QString root = makeTree();
        const QString empty = m_scratch->path() + "/a folder without any duplicate file in it";
        writeFile(empty + "/only.txt", contentFor(9, 100));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        for (const QSize& size : {m_window->minimumSize(), QSize(1500, 950)}) {
            m_window->resize(size);
            const QString sizeName = size == m_window->minimumSize() ? "small" : "large";
            QTRY_COMPARE(m_page->size(), m_window->pageArea()->size());
            m_page->views()->setCurrentIndex(0);
            QVERIFY2(clippedTexts(m_page).isEmpty(), qPrintable(clippedTexts(m_page).join('\n')));
            QVERIFY(keyboardwalk::tabTo(m_page->startView()->chooseButton()));
            screenshot(m_window.get(), "duplicate_focus_start_" + sizeName);

            m_page->searchPathChosen(empty);  // from the keyboard: the focus goes on with the views
            QCOMPARE(keyboardwalk::focused(), m_page->searchingView()->stopButton());
            waitForSearch();
            QCOMPARE(m_page->views()->currentWidget(), static_cast<QWidget*>(m_page->emptyView()));
            QCOMPARE(keyboardwalk::focused(), m_page->emptyView()->searchButton());
            QVERIFY2(clippedTexts(m_page).isEmpty(), qPrintable(clippedTexts(m_page).join('\n')));

            searchAndWait(root);
            m_page->segmentSelect(0);
            DuplicateOutlineView* outline = m_page->outlineView();
            QCOMPARE(keyboardwalk::focused(), outline);
            outline->expandAll();
            QCOMPARE(outline->header()->length(), outline->viewport()->width());
            QVERIFY2(clippedTexts(m_page).isEmpty(), qPrintable(clippedTexts(m_page).join('\n')));
            keyboardwalk::press(Qt::Key_Down);
            screenshot(m_window.get(), "duplicate_focus_outline_" + sizeName);
        }

        MarkSureDeleteVC confirm(12345, 987654321098ull, m_window.get());
        DeleteAllCopiesSheet lastCopy(m_window.get());
        DuplicationDetProgressViewController progress(m_window.get());
        progress.setRemoveProgress(99, root + "/a rather long folder name/and another one/report (copy 2).pdf");
        DuplicationDetFailViewController failed("Some files that require admin access can't be removed!",
                                                "12344 of 12345 selected copies are still on the disk; they stay "
                                                "selected.",
                                                m_window.get());
        DuplicationDetSuccessViewController done(12345, 987654321098ull, m_window.get());
        for (QWidget* panel : std::initializer_list<QWidget*>{&confirm, &lastCopy, &progress, &failed, &done}) {
            panel->show();
            QVERIFY2(clippedTexts(panel).isEmpty(), qPrintable(clippedTexts(panel).join('\n')));
            panel->hide();
        }
    }

private:
    QString makeTree() {
        const QString root = m_scratch->path() + "/tree";
        const QByteArray document = contentFor(1, 3000);
        writeFile(root + "/docs/report.pdf", document);
        writeFile(root + "/backup/report.pdf", document);
        writeFile(root + "/old/report.pdf", document);
        writeFile(root + "/music/song.mp3", contentFor(2, 5000));
        writeFile(root + "/backup/song.mp3", contentFor(2, 5000));
        writeFile(root + "/video/clip.mp4", contentFor(3, 7000));
        writeFile(root + "/backup/clip.mp4", contentFor(3, 7000));
        writeFile(root + "/pictures/photo.JPG", contentFor(4, 4000));
        writeFile(root + "/backup/photo.JPG", contentFor(4, 4000));
        writeFile(root + "/archives/data.zip", contentFor(5, 2500));
        writeFile(root + "/backup/data.zip", contentFor(5, 2500));
        writeFile(root + "/archives/backup.tar.gz", contentFor(6, 2600));
        writeFile(root + "/old/backup.tar.gz", contentFor(6, 2600));
        writeFile(root + "/notes.txt", contentFor(7, 1200));
        writeFile(root + "/other-report.pdf", contentFor(8, 3000));
        return root;
    }

    void waitForSearch() {
        QTRY_VERIFY_WITH_TIMEOUT(m_page->bSearchFinished(), kSearchTimeoutMs);
        QVERIFY(m_page->isCanClick());
    }

    void searchAndWait(const QString& root) {
        m_page->searchPathChosen(root);
        waitForSearch();
        QCOMPARE(m_page->views()->currentWidget(), m_page->resultView());
    }

    std::unique_ptr<QTemporaryDir> m_scratch;
    std::unique_ptr<MainWindowController> m_window;
    SameFileDeleteViewController* m_page = nullptr;
    TempDataDir m_data;
};

QTEST_MAIN(DuplicatePageTest)
#include "duplicate_page_test.moc"
