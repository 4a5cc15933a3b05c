#include "gui/duplicate/SameFileDeleteViewController.h"

#include "engine/duplicate/DuplicateFilesOpt.h"
#include "engine/duplicate/DuplicateResults.h"
#include "engine/duplicate/ThreadWorker.h"
#include "engine/platform/NativePath.h"
#include "gui/app/MainWindowController.h"
#include "gui/duplicate/ChoosePathPanel.h"
#include "gui/duplicate/DeleteAllCopiesSheet.h"
#include "gui/duplicate/DuplicateEmptyView.h"
#include "gui/duplicate/DuplicateOutlineDelegate.h"
#include "gui/duplicate/DuplicateOutlineModel.h"
#include "gui/duplicate/DuplicateOutlineView.h"
#include "gui/duplicate/DuplicateSearchingView.h"
#include "gui/duplicate/DuplicateStartView.h"
#include "gui/duplicate/DuplicateTabBar.h"
#include "gui/duplicate/DuplicationDetFailViewController.h"
#include "gui/duplicate/DuplicationDetProgressViewController.h"
#include "gui/duplicate/DuplicationDetSuccessViewController.h"
#include "gui/duplicate/MarkSureDeleteVC.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProcess>
#include <QSet>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr int kContentTop = 96;
constexpr int kProgressIntervalMs = 100;

bool isReadableFolder(const QString& path) {
    const int fd = openLongPath(nativePath(path), O_RDONLY | O_DIRECTORY);
    if (fd < 0) return false;
    close(fd);
    return true;
}

// Removed copies reach the outline at most this often, so that a removal of
// many small files does not redraw it for each one.
constexpr int kRemovalBatchMs = 50;

using Group = DuplicateResults::Group;
using Copy = DuplicateResults::Copy;

// The widest text of a size in each unit has the most digits: only those are measured.
int widestSizeText(const QFontMetrics& metrics, const std::vector<quint64>& largestPerUnit) {
    int widest = 0;
    for (quint64 size : largestPerUnit)
        if (size > 0) widest = qMax(widest, metrics.horizontalAdvance(byteToSizeWithByte(size)));
    return widest;
}

void noteSize(std::vector<quint64>& largestPerUnit, quint64 size) {
    size_t unit = 0;
    for (quint64 rest = size; rest >= 1000 && unit + 1 < largestPerUnit.size(); rest /= 1000) ++unit;
    largestPerUnit[unit] = qMax(largestPerUnit[unit], size);
}

}  // namespace

SameFileDeleteViewController::SameFileDeleteViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent), m_superDelegate(superDelegate), m_progressTimer(new QTimer(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    createHeader();

    m_views = new QStackedWidget(this);
    QWidget* startPage = createStartPage();
    m_views->addWidget(startPage);

    m_searchingView = new DuplicateSearchingView(m_views);
    connect(m_searchingView, &DuplicateSearchingView::stopScanBtnClicked, this,
            &SameFileDeleteViewController::stopScanBtnClicked);
    m_views->addWidget(m_searchingView);

    m_resultView = createResultView();
    m_views->addWidget(m_resultView);

    m_emptyView = new DuplicateEmptyView(m_views);
    connect(m_emptyView, &DuplicateEmptyView::chooseFolder, this,
            &SameFileDeleteViewController::chooseFolderButtonClicked);
    connect(m_emptyView, &DuplicateEmptyView::searchAgain, this, &SameFileDeleteViewController::searchBtnClicked);
    m_views->addWidget(m_emptyView);
    m_views->setCurrentWidget(startPage);

    m_progressTimer->setInterval(kProgressIntervalMs);
    connect(m_progressTimer, &QTimer::timeout, this, &SameFileDeleteViewController::getPrograss);
    setTabOrder();
}

// The drop area takes the room the page has; at the window's smallest size it
// is 560 by 300 points.
QWidget* SameFileDeleteViewController::createStartPage() {
    auto* startPage = new QWidget(m_views);
    m_startView = new DuplicateStartView(startPage);
    m_startView->setMinimumSize(560, 300);
    connect(m_startView, &DuplicateStartView::chooseFolder, this,
            &SameFileDeleteViewController::chooseFolderButtonClicked);
    connect(m_startView, &DuplicateStartView::folderDropped, this, &SameFileDeleteViewController::searchPathChosen);
    QLabel* hint = Style::label("Nothing is removed before you confirm. Removed copies do not go to the Trash.", 11, true);
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true);
    auto* layout = new QVBoxLayout(startPage);
    layout->setContentsMargins(40, 40, 40, 100);
    layout->setSpacing(22);
    auto* dropRow = new QHBoxLayout;
    dropRow->setContentsMargins(72, 0, 72, 0);
    dropRow->addWidget(m_startView);
    layout->addLayout(dropRow, 1);
    layout->addWidget(hint);
    return startPage;
}

// Tab walks the page from top to bottom: the tabs, select-all, the outline,
// then the buttons under it.
void SameFileDeleteViewController::setTabOrder() {
    QWidget::setTabOrder(m_tabBar, m_selectAllButton);
    QWidget::setTabOrder(m_selectAllButton, m_outlineView);
    QWidget::setTabOrder(m_outlineView, m_chooseButton);
    QWidget::setTabOrder(m_chooseButton, m_searchAgainButton);
    QWidget::setTabOrder(m_searchAgainButton, m_removeButton);
}

void SameFileDeleteViewController::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int textWidth = width() - 80;
    m_pageTitle->setGeometry(40, 28, textWidth, 34);
    m_subtitle->setGeometry(40, 62, textWidth, 20);
    m_unreadableLabel->setGeometry(40, 82, textWidth, 18);
    m_views->setGeometry(0, kContentTop, width(), height() - kContentTop);
}

SameFileDeleteViewController::~SameFileDeleteViewController() {
    // The worker uses this page: it is stopped and waited for first.
    if (!m_worker) return;
    m_isStopScan = true;
    m_bStopDelTask = true;
    if (m_opt) m_opt->stopSearch();
    m_worker->cancel();
    m_worker->wait();
}

void SameFileDeleteViewController::createHeader() {
    m_pageTitle = Style::label("Duplicate Finder", 22, false, true);
    m_pageTitle->setParent(this);
    m_subtitle = Style::label("Find identical files in a folder and remove the extra copies.", 12, true);
    m_subtitle->setParent(this);
    m_unreadableLabel = Style::label(QString(), 12, true);
    m_unreadableLabel->setParent(this);
    m_unreadableLabel->setObjectName("unreadableLine");
    m_unreadableLabel->hide();
}

QWidget* SameFileDeleteViewController::createResultView() {
    auto* view = new QWidget(m_views);
    m_tabBar = new DuplicateTabBar(view);
    connect(m_tabBar, &QTabBar::currentChanged, this, &SameFileDeleteViewController::loadValueForSegment);

    m_titleLabel = Style::label(QString(), 12, true);
    m_titleLabel->setObjectName("titleLine");
    m_titleLabel->setWordWrap(true);  // a long folder name takes a second line instead of being cut

    m_outlineView = new DuplicateOutlineView(view);
    m_model = new DuplicateOutlineModel(this);
    m_outlineView->setModel(m_model);
    connect(m_outlineView, &DuplicateOutlineView::checkBoxClicked, this,
            &SameFileDeleteViewController::setSelectState);
    connect(m_outlineView, &QWidget::customContextMenuRequested, this,
            &SameFileDeleteViewController::outlineRightMouseDown);

    QHeaderView* header = m_outlineView->header();
    header->setFixedHeight(30);
    header->setSectionsClickable(true);
    header->setHighlightSections(false);
    header->setSortIndicatorShown(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setFont(Style::regularFont(12));
    // The name column takes what the window gives; the others keep their widths.
    header->setStretchLastSection(false);
    for (int column = 0; column < DuplicateOutlineModel::ColumnCount; ++column) {
        header->setSectionResizeMode(column, column == DuplicateOutlineModel::Name ? QHeaderView::Stretch
                                                                                   : QHeaderView::Fixed);
        header->resizeSection(column, DuplicateOutlineModel::columnWidth(column));
    }
    m_outlineView->setStyleSheet(
        "QHeaderView { background: transparent; border-bottom: 1px solid rgba(255,255,255,30); }"
        "QHeaderView::section { padding-left: 8px; }"
        "QHeaderView::section:first { padding-left: 80px; }");
    connect(header, &QHeaderView::sectionClicked, this, &SameFileDeleteViewController::outlineViewDidClickTableColumn);

    m_selectAllButton = new ImageToggle("checkbox_no", header->viewport());
    m_selectAllButton->setToolTip("Select all");
    m_selectAllButton->setAccessibleName("Select all");
    m_selectAllButton->move(DuplicateOutlineDelegate::kGroupCheckBoxX, (header->height() - m_selectAllButton->height()) / 2);
    connect(m_selectAllButton, &ImageToggle::clicked, this, &SameFileDeleteViewController::setAllSelectOrNoSelect);

    m_noGroupsLabel = Style::label("No duplicates to show here", 13, true);
    m_noGroupsLabel->setAlignment(Qt::AlignCenter);
    m_noGroupsLabel->setAttribute(Qt::WA_TransparentForMouseEvents);

    m_chooseButton = ImageSetButton::secondary("Choose Folder", view);
    connect(m_chooseButton, &QPushButton::clicked, this, &SameFileDeleteViewController::chooseFolderButtonClicked);
    m_searchAgainButton = ImageSetButton::secondary("Search Again", view);
    connect(m_searchAgainButton, &QPushButton::clicked, this, &SameFileDeleteViewController::searchBtnClicked);
    m_removeButton = ImageSetButton::primary("Remove", view);
    m_removeButton->setFixedWidth(130);
    connect(m_removeButton, &QPushButton::clicked, this, &SameFileDeleteViewController::removeBtnClicked);

    auto* layout = new QVBoxLayout(view);
    layout->setContentsMargins(26, 0, 26, 22);
    layout->setSpacing(8);
    layout->addWidget(m_tabBar, 0, Qt::AlignLeft);
    layout->addWidget(m_titleLabel);
    auto* outlineArea = new QGridLayout;
    outlineArea->addWidget(m_outlineView, 0, 0);
    outlineArea->addWidget(m_noGroupsLabel, 0, 0);
    layout->addLayout(outlineArea, 1);
    layout->addSpacing(6);
    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(10);
    bottom->addWidget(m_chooseButton);
    bottom->addWidget(m_searchAgainButton);
    bottom->addStretch(1);
    bottom->addWidget(m_removeButton);
    layout->addLayout(bottom);
    return view;
}

const std::vector<Group>& SameFileDeleteViewController::shownGroups() const { return m_model->shownGroups(); }
DeleteAllCopiesSheet* SameFileDeleteViewController::deleteAllCopiesSheet() const { return m_deleteAllCopiesSheet; }
MarkSureDeleteVC* SameFileDeleteViewController::markSurePanel() const { return m_markSurePanel; }
DuplicationDetProgressViewController* SameFileDeleteViewController::progressPanel() const { return m_progressPanel; }
DuplicationDetSuccessViewController* SameFileDeleteViewController::successPanel() const { return m_successPanel; }
DuplicationDetFailViewController* SameFileDeleteViewController::failPanel() const { return m_failPanel; }

// ---- Choosing a folder and searching --------------------------------------

void SameFileDeleteViewController::chooseFolderButtonClicked() {
    if (!m_isCanClick) return;
    const QString start = m_searchPath.isEmpty() ? QDir::homePath() : m_searchPath;
    auto* panel = new ChoosePathPanel(start, this);
    connect(panel, &ChoosePathPanel::pathChosen, this, &SameFileDeleteViewController::searchPathChosen);
    panel->open();
}

void SameFileDeleteViewController::searchPathChosen(const QString& path) {
    if (path.isEmpty() || !m_isCanClick) return;
    m_searchPath = QDir::cleanPath(path);
    searchBtnClicked();
}

void SameFileDeleteViewController::searchBtnClicked() {
    if (m_searchPath.isEmpty() || m_worker || !m_isCanClick) return;
    m_model->setResults(nullptr, DuplicateResults::None);
    m_results.reset();
    m_opt = std::make_unique<DuplicateFilesOpt>();
    // A folder's hidden entries belong to programs (settings, caches,
    // repositories): their copies are not the user's to remove.
    m_opt->setSearchOption({false, false});
    m_isStopScan = false;
    m_bSearchFinished = false;
    m_unreadableLabel->hide();
    const bool keyboardUser = hasFocusInside();
    setBusy(true);
    m_searchingView->reset(m_searchPath);
    m_views->setCurrentWidget(m_searchingView);
    if (keyboardUser) m_searchingView->stopButton()->setFocus(Qt::TabFocusReason);
    m_progressTimer->start();
    DuplicateFilesOpt* opt = m_opt.get();
    m_worker = ThreadWorker::workOn(
        this, [this, opt](const QVariant& path, ThreadWorker*) { return searchDuplicateFiles(opt, path.toString()); },
        m_searchPath, [this](const QVariant& succeeded) { searchFinished(succeeded.toBool()); });
}

QVariant SameFileDeleteViewController::searchDuplicateFiles(DuplicateFilesOpt* opt, const QString& path) {
    if (m_isStopScan) return false;  // stopped before the search began
    const bool succeeded = opt->beginSearchAtPath(path, 0);
    // The result is built here as well, not on the user interface thread.
    opt->getDuplicateFiles(m_foundResults);
    return succeeded;
}

void SameFileDeleteViewController::getPrograss() {
    if (!m_opt) return;
    // A stop may reach the search object before the search has started on
    // it, which ignores it: it is repeated until the search ends.
    if (m_isStopScan) m_opt->stopSearch();
    m_searchingView->setProgress(m_opt->getProgress());
    m_searchingView->setCurrentPath(m_opt->getCurrentSearchFile());
}

void SameFileDeleteViewController::stopScanBtnClicked() {
    if (m_bSearchFinished || !m_opt) return;
    m_isStopScan = true;
    m_opt->stopSearch();
    m_searchingView->showStopping();
}

void SameFileDeleteViewController::searchFinished(bool succeeded) {
    // The worker has done its work and only returns now: a new one may start.
    m_worker = nullptr;
    m_progressTimer->stop();
    m_bSearchFinished = true;
    const bool keyboardUser = hasFocusInside();
    m_searchingView->indicator()->setIndeterminate(false);
    setBusy(false);

    // What could not be read may have copies the search could not see.
    const QStringList unreadable = m_opt->unreadablePaths();
    m_unreadableLabel->setText(QString("%1 %2 could not be read; any copies of %3 are not listed.")
                                   .arg(unreadable.size())
                                   .arg(unreadable.size() == 1 ? "file or folder" : "files or folders",
                                        unreadable.size() == 1 ? "it" : "them"));
    QStringList shown;
    for (const QString& path : unreadable.mid(0, 20)) shown.append(displayPath(path));
    m_unreadableLabel->setToolTip(shown.join('\n'));
    m_unreadableLabel->setVisible(!unreadable.isEmpty());

    m_results = std::move(m_foundResults);
    if (!m_results) {
        m_emptyView->setSearchPath(m_searchPath);
        m_views->setCurrentWidget(m_emptyView);
        if (keyboardUser) m_emptyView->searchButton()->setFocus(Qt::TabFocusReason);
        if (!succeeded && !m_isStopScan && !isReadableFolder(m_searchPath))
            showFailView("The folder can't be searched",
                         QString("%1 could not be read.").arg(displayPath(m_searchPath)));
        return;
    }
    // Every copy but the one found first in each group is offered for removal.
    m_results->setAllSelectOrNoSelect(DuplicateResults::None, true);
    m_sortColumn = -1;
    m_outlineView->header()->setSortIndicatorShown(false);
    m_tabBar->setAllTabLabel(m_searchPath);
    m_views->setCurrentWidget(m_resultView);
    segmentSelect(0);
    if (keyboardUser) m_outlineView->setFocus(Qt::TabFocusReason);
}

// ---- Tabs ------------------------------------------------------------------

void SameFileDeleteViewController::segmentSelect(int tab) {
    if (m_tabBar->currentIndex() != tab)
        m_tabBar->setCurrentIndex(tab);  // reported through currentChanged
    else
        loadValueForSegment(tab);
}

void SameFileDeleteViewController::loadValueForSegment(int tab) {
    if (tab < 0 || tab >= DuplicateTabBar::kTabCount) return;
    m_remberWitchSelect = tab;
    m_model->setResults(m_results.get(), DuplicateResults::categoryOfTab(tab));
    fitColumns();
    if (m_model->rowCount() > 0) m_outlineView->expand(m_model->index(0, 0));
    m_noGroupsLabel->setVisible(m_model->rowCount() == 0);
    updateTitle();
    updateSelectAllButton();
    updateRemoveButton();
}

// ---- Ticks -----------------------------------------------------------------

void SameFileDeleteViewController::setSelectState(const QModelIndex& index) {
    if (!m_isCanClick || !m_results || !index.isValid()) return;
    if (m_model->isCopy(index)) {
        const Copy copy = m_model->copyOf(index);
        if (!m_results->setSelectState(copy, !m_results->isSelected(copy))) {
            // Ticking it would leave the group without a copy: ask first.
            m_deleteAllCopiesSheet = new DeleteAllCopiesSheet(this);
            connect(m_deleteAllCopiesSheet, &QDialog::finished, this, [this, copy](int code) { alertEnded(code, copy); });
            m_deleteAllCopiesSheet->open();
            return;
        }
    } else {
        // A group's checkbox clears a group with any copy ticked, and ticks
        // every copy but the last of a group with none.
        const Group group = m_model->groupOf(index);
        const bool select = m_results->groupState(group) == DuplicateResults::NotSelected;
        const QList<Copy> copies = m_results->copies(group);
        for (qsizetype i = 0; i < copies.size(); ++i)
            m_results->setSelectState(copies[i], select && i + 1 < copies.size());
    }
    refreshSelection();
}

void SameFileDeleteViewController::alertEnded(int code, Copy copy) {
    if (code != QDialog::Accepted || !m_results) return;
    m_results->setSelectState(copy, true, true);
    refreshSelection();
}

void SameFileDeleteViewController::setAllSelectOrNoSelect() {
    if (!m_isCanClick || !m_results || shownGroups().empty()) return;
    m_results->setAllSelectOrNoSelect(m_model->category(), !everyGroupSelected());
    refreshSelection();
}

// Only the groups on screen are announced as changed: the view measures the
// height of every row a change covers, which over 50,000 groups takes seconds.
void SameFileDeleteViewController::refreshSelection() {
    const auto groupRowAt = [this](int y) {
        QModelIndex index = m_outlineView->indexAt(QPoint(0, y));
        while (index.parent().isValid()) index = index.parent();
        return index.isValid() ? index.row() : -1;
    };
    const int bottom = groupRowAt(m_outlineView->viewport()->height() - 1);
    m_model->selectionChanged(qMax(0, groupRowAt(0)), bottom < 0 ? m_model->rowCount() - 1 : bottom);
    updateTitle();
    updateSelectAllButton();
    updateRemoveButton();
}

// Like a group's checkbox: unticked when no copy of the tab is ticked, ticked
// when every copy is, and partly ticked in between (also after select-all,
// which keeps one copy of each group).
QString SameFileDeleteViewController::selectAllImage() const {
    qsizetype selected = 0;
    qsizetype copies = 0;
    for (Group group : shownGroups()) {
        selected += m_results->selectedCount(group);
        copies += m_results->copyCount(group);
    }
    if (selected == 0) return "checkbox_no";
    return selected == copies ? "checkbox_yes" : "checkbox_election";
}

// Whether select-all has nothing left to tick: then its click unticks.
bool SameFileDeleteViewController::everyGroupSelected() const {
    if (shownGroups().empty()) return false;
    for (Group group : shownGroups())
        if (m_results->selectedCount(group) < m_results->copyCount(group) - 1) return false;
    return true;
}

void SameFileDeleteViewController::updateSelectAllButton() {
    m_selectAllButton->setImageName(selectAllImage());
    const QString action = everyGroupSelected() ? "Unselect all" : "Select all";
    m_selectAllButton->setToolTip(action);
    m_selectAllButton->setAccessibleName(action);
}

void SameFileDeleteViewController::updateRemoveButton() {
    m_removeButton->setEnabled(m_isCanClick && !shownSelection().isEmpty());
}

void SameFileDeleteViewController::updateTitle() {
    qsizetype copies = 0;
    for (Group group : shownGroups()) copies += m_results->copyCount(group);
    const QString shown = QString("%1 files in %2").arg(copies).arg(m_tabBar->label(m_remberWitchSelect));
    const qsizetype selected = m_results ? m_results->selectionSize() : 0;
    const QString chosen = QString("selected %1 %2 in All").arg(selected).arg(selected == 1 ? "file" : "files");
    m_titleLabel->setText(shown + ", " + chosen + ".");
    m_titleLabel->setToolTip(shown);
}

// The fixed columns widen to their captions, and the size column to the longest size of
// the tab: sizes are never shortened.
void SameFileDeleteViewController::fitColumns() {
    QHeaderView* header = m_outlineView->header();
    const int padding = 2 * DuplicateOutlineDelegate::kPadding + 8;
    for (int column : {DuplicateOutlineModel::Selected, DuplicateOutlineModel::Date}) {
        const int caption = header->fontMetrics().horizontalAdvance(m_model->headerData(column, Qt::Horizontal).toString());
        header->resizeSection(column, qMax(DuplicateOutlineModel::columnWidth(column), caption + padding));
    }
    const int column = DuplicateOutlineModel::Size;
    int widest = header->fontMetrics().horizontalAdvance(m_model->headerData(column, Qt::Horizontal).toString());
    std::vector<quint64> groupSizes(7), copySizes(7);
    for (Group group : shownGroups()) {
        noteSize(groupSizes, m_results->groupSize(group));
        // The copies of a group are equal: one stands for all.
        noteSize(copySizes, m_results->size(m_results->copyAt(group, 0)));
    }
    widest = qMax(widest, widestSizeText(QFontMetrics(Style::boldFont(12)), groupSizes));
    widest = qMax(widest, widestSizeText(QFontMetrics(Style::regularFont(12)), copySizes));
    header->resizeSection(column, qMax(DuplicateOutlineModel::columnWidth(column), widest + padding));
}

// The groups are sorted on a worker (the names of 50,000 groups take a quarter
// of a second to compare) while the page is busy, so the result stays as read.
void SameFileDeleteViewController::outlineViewDidClickTableColumn(int column) {
    if (!m_isCanClick || !m_results || m_worker) return;
    m_sortDescending = column == m_sortColumn && !m_sortDescending;
    m_sortColumn = column;
    QHeaderView* header = m_outlineView->header();
    header->setSortIndicator(column, m_sortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    header->setSortIndicatorShown(true);
    setBusy(true);
    const DuplicateResults* results = m_results.get();
    m_worker = ThreadWorker::workOn(
        this,
        [this, results, groups = shownGroups(), column, descending = m_sortDescending](const QVariant&, ThreadWorker*) {
            m_sortedGroups = DuplicateOutlineModel::sortedGroups(*results, groups, column, descending);
            return QVariant();
        },
        {},
        [this](const QVariant&) {
            m_worker = nullptr;
            setBusy(false);
            m_model->showOrder(*m_results, std::move(m_sortedGroups));
        });
}

// ---- Context menu ----------------------------------------------------------

QString SameFileDeleteViewController::pathOfRow(const QModelIndex& index) const {
    if (!m_results || !index.isValid()) return {};
    if (m_model->isCopy(index)) return m_results->path(m_model->copyOf(index));
    // A group row stands for its copies: the first one is opened or shown.
    return m_results->path(m_results->copyAt(m_model->groupOf(index), 0));
}

void SameFileDeleteViewController::outlineRightMouseDown(const QPoint& viewportPosition) {
    const QModelIndex index = m_outlineView->indexAt(viewportPosition);
    if (!m_isCanClick || !index.isValid()) return;
    m_outlineView->setCurrentIndex(index);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QPersistentModelIndex row(index);
    menu->addAction("Open", this, [this, row] { openFile(row); });
    menu->addAction("Reveal in Folder", this, [this, row] { revealInFolder(row); });
    menu->popup(m_outlineView->viewport()->mapToGlobal(viewportPosition));
}

void SameFileDeleteViewController::openFile(const QModelIndex& index) {
    const QString path = pathOfRow(index);
    if (!path.isEmpty()) QDesktopServices::openUrl(fileUrl(path));
}

void SameFileDeleteViewController::revealInFolder(const QModelIndex& index) {
    const QString path = pathOfRow(index);
    if (path.isEmpty()) return;
#ifdef Q_OS_MACOS
    QProcess::startDetached("/usr/bin/open", {"-R", path});
#else
    // File managers differ in how they select an item: the folder is opened.
    QDesktopServices::openUrl(fileUrl(path.left(qMax<qsizetype>(1, path.lastIndexOf('/')))));
#endif
}

// ---- Removal ---------------------------------------------------------------

QList<Copy> SameFileDeleteViewController::shownSelection() const {
    QList<Copy> shown;
    if (!m_results) return shown;
    const DuplicateResults::Category category = m_model->category();
    for (Copy copy : m_results->allSelectNumArr()) {
        const Group group = m_results->groupOf(copy);
        if (!m_results->isDropped(group) && (category == DuplicateResults::None || m_results->groupCategory(group) == category))
            shown.append(copy);
    }
    return shown;
}

// Only what the user sees ticked is removed: ticks left in other tabs stay.
void SameFileDeleteViewController::removeBtnClicked() {
    const QList<Copy> selection = shownSelection();
    if (!m_isCanClick || selection.isEmpty()) return;
    quint64 totalSize = 0;
    for (Copy copy : selection) totalSize += m_results->size(copy);
    m_markSurePanel = new MarkSureDeleteVC(int(selection.size()), totalSize, this);
    connect(m_markSurePanel, &MarkSureDeleteVC::delDuplicateItems, this,
            &SameFileDeleteViewController::delDuplicateItems);
    m_markSurePanel->open();
}

void SameFileDeleteViewController::delDuplicateItems() {
    const QList<Copy> selection = shownSelection();
    if (selection.isEmpty() || m_worker) return;
    m_bStopDelTask = false;
    m_isClickStopRemove = false;
    m_delNodesArr.clear();
    m_removalLeaves = selection;
    setBusy(true);

    m_progressPanel = new DuplicationDetProgressViewController(this);
    connect(m_progressPanel, &DuplicationDetProgressViewController::stopRemoveBtnClicked, this,
            &SameFileDeleteViewController::stopRemoveBtnClicked);
    m_progressPanel->open();
    m_worker = ThreadWorker::workOn(
        this, [this](const QVariant&, ThreadWorker* worker) { return deleteDupFiles(worker); }, {},
        [this](const QVariant& leftReasons) { deleteFinished(leftReasons); });
}

// Answers why copies were left: "reason" per copy, "admin" when the system
// refused a removal. The removed copies and the progress reach the page in
// batches, at most every kRemovalBatchMs.
QVariant SameFileDeleteViewController::deleteDupFiles(ThreadWorker* worker) {
    // The plan builds the path of every copy and its siblings: on this worker, so that
    // the window does not wait for it. The result only changes through the batches below.
    m_removals = DuplicateRemover::plan(*m_results, m_removalLeaves);
    DuplicateRemover remover;
    QStringList reasons;
    bool refusedByTheSystem = false;
    QList<int> removed;
    QElapsedTimer sinceBatch;
    sinceBatch.start();
    const auto handOver = [&](int progress, const QString& path) {
        worker->performOnTargetThread([this, progress, path, removed] {
            setRemoveProgress(progress, path);
            refreshOutlineView(removed);
        });
        removed.clear();
        sinceBatch.restart();
    };
    QString lastPath;
    int progress = 0;
    for (int index = 0; index < m_removals.size() && !m_bStopDelTask && !worker->isCancelled(); ++index) {
        const QString& path = m_removals[index].copy.path;
        const DuplicateRemover::Verdict verdict = remover.remove(m_removals[index]);
        if (!verdict.removed()) {  // stays listed and selected
            reasons.append(QString("%1: %2").arg(displayPath(path), verdict.reason));
            refusedByTheSystem = refusedByTheSystem || verdict.outcome == DuplicateRemover::Outcome::Failed;
            continue;
        }
        removed.append(index);
        lastPath = path;
        progress = int((index + 1) * qint64(100) / m_removals.size());
        if (sinceBatch.elapsed() >= kRemovalBatchMs) handOver(progress, lastPath);
    }
    if (!removed.isEmpty()) handOver(progress, lastPath);
    return QVariantMap{{"reasons", reasons}, {"admin", refusedByTheSystem}};
}

void SameFileDeleteViewController::setRemoveProgress(int progress, const QString& path) {
    if (m_progressPanel) m_progressPanel->setRemoveProgress(progress, path);
}

void SameFileDeleteViewController::refreshOutlineView(const QList<int>& removed) {
    if (!m_results) return;
    QList<Copy> copies;
    copies.reserve(removed.size());
    for (int index : removed) copies.append(m_removalLeaves.value(index));
    m_delNodesArr.append(copies);
    m_model->applyTreeChange([this, &copies] { m_results->refreshOutlineView(copies); });
}

void SameFileDeleteViewController::stopRemoveBtnClicked() {
    m_isClickStopRemove = true;
    m_bStopDelTask = true;
}

void SameFileDeleteViewController::stopJob() {
    if (m_progressPanel && m_progressPanel->isVisible())
        stopRemoveBtnClicked();
    else
        stopScanBtnClicked();
}

void SameFileDeleteViewController::deleteFinished(const QVariant& leftReasons) {
    m_worker = nullptr;
    if (m_progressPanel) m_progressPanel->close();
    const qsizetype total = m_removalLeaves.size();
    const qsizetype removed = m_delNodesArr.size();
    m_results->forgetRemoved(m_delNodesArr);
    const qsizetype left = total - removed;
    // A stop that came after the last copy had gone changed nothing: the run ended in full.
    if (m_isClickStopRemove && left > 0) {
        m_results->setAllSelectOrNoSelect(DuplicateResults::None, false);
        showFailView("Removal stopped", QString("%1 of %2 selected copies were removed before the removal was stopped.")
                                            .arg(removed)
                                            .arg(total));
    } else if (left > 0) {
        const QString stay = left == 1 ? "%1 of %2 selected copies is still on the disk; it stays selected."
                                       : "%1 of %2 selected copies are still on the disk; they stay selected.";
        // A copy that changed, or whose kept copy changed, after the search
        // is left on purpose: the first such reason is shown.
        const QVariantMap why = leftReasons.toMap();
        const QStringList reasons = why.value("reasons").toStringList();
        if (why.value("admin").toBool())
            showFailView("Some files that require admin access can't be removed!", stay.arg(left).arg(total));
        else
            showFailView("Some copies were left on the disk",
                         stay.arg(left).arg(total) + (reasons.isEmpty() ? QString() : "\n" + reasons.first()));
    } else {
        quint64 freed = 0;
        for (Copy copy : std::as_const(m_delNodesArr)) freed += m_results->size(copy);
        m_successPanel = new DuplicationDetSuccessViewController(int(removed), freed, this);
        m_successPanel->open();
    }
    m_removalLeaves.clear();
    m_removals.clear();
    setBusy(false);
    m_noGroupsLabel->setVisible(m_model->rowCount() == 0);
    refreshSelection();
}

void SameFileDeleteViewController::showFailView(const QString& title, const QString& message) {
    m_failPanel = new DuplicationDetFailViewController(title, message, this);
    m_failPanel->open();
}

// ---- Shared ----------------------------------------------------------------

// Whether the keyboard focus is on this page: a view that replaces the one with the focus
// then hands it on to its own first control, so that Tab and Space go on where they were.
bool SameFileDeleteViewController::hasFocusInside() const {
    const QWidget* focus = window()->focusWidget();
    return focus && isAncestorOf(focus);
}

// Searching and removing lock the sidebar, the buttons and the outline.
void SameFileDeleteViewController::setBusy(bool busy) {
    m_isCanClick = !busy;
    if (m_superDelegate) m_superDelegate->canChangeType(!busy, this);
    m_chooseButton->setEnabled(!busy);
    m_searchAgainButton->setEnabled(!busy);
    m_emptyView->chooseButton()->setEnabled(!busy);
    m_emptyView->searchButton()->setEnabled(!busy);
    m_startView->chooseButton()->setEnabled(!busy);
    m_tabBar->setEnabled(!busy);
    m_selectAllButton->setEnabled(!busy);
    updateRemoveButton();
}

}  // namespace velmora
