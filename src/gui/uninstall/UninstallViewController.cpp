#include "gui/uninstall/UninstallViewController.h"

#include "engine/platform/NativePath.h"
#include "engine/uninstall/ApplicationInventory.h"
#include "engine/uninstall/InventoryListing.h"
#include "engine/uninstall/RelatedAppFilesScanner.h"
#include "engine/uninstall/UninstallSession.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/FileEraserSortVC.h"
#include "gui/uninstall/MakeSureUninstallViewController.h"
#include "gui/uninstall/UninstallProgressViewController.h"
#include "gui/uninstall/UninstallTableDelegate.h"
#include "gui/uninstall/UninstallTableModel.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/ListTable.h"
#include "gui/widgets/Style.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QFutureWatcher>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QtConcurrent>
#include <sys/stat.h>

namespace velmora {
namespace {

constexpr int kMargin = 26;
constexpr int kTabsTop = 96;
constexpr int kTableTop = 148;
constexpr int kFooterHeight = 58;  // from the footer's buttons to the page's bottom edge
constexpr int kCounterWidth = 220;
constexpr int kRemoveDelayMs = 500;  // the confirmation has gone before the progress shows

struct TabLook {
    const char* title;
    const char* image;
};
constexpr TabLook kTabs[] = {{"Applications", "tab_app"}, {"Widgets", "tab_wid"}, {"Plug-ins", "tab_plugin"}};

QToolButton* tabButton(const TabLook& look, QWidget* parent) {
    auto* button = new QToolButton(parent);
    QIcon icon;
    icon.addFile(Style::imagePath(look.image), {}, QIcon::Normal, QIcon::Off);
    icon.addFile(Style::imagePath(QString(look.image) + "_sel"), {}, QIcon::Normal, QIcon::On);
    button->setIcon(icon);
    button->setIconSize({22, 22});
    button->setText(look.title);
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setCursor(Qt::PointingHandCursor);
    button->setFont(Style::regularFont(13));
    button->setFixedSize(button->fontMetrics().horizontalAdvance(button->text()) + 62, 38);
    button->setStyleSheet(QString("QToolButton { background: transparent; color: %1; border: none;"
                                  "  border-bottom: 2px solid transparent; padding: 0 8px; }"
                                  "QToolButton:hover { color: white; }"
                                  "QToolButton:checked { color: white; border-bottom: 2px solid %2; }"
                                  "QToolButton:focus { border: 2px solid %2; border-radius: 6px; }"
                                  "QToolButton:disabled { color: rgba(255,255,255,60); }")
                              .arg(Style::rgba(Style::kSecondaryText), Style::rgba(Style::kAccent)));
    return button;
}

bool pathExists(const QString& path) {
    struct stat info {};
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

}  // namespace

UninstallViewController::UninstallViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent),
      m_superDelegate(superDelegate),
      m_inventory(new ApplicationInventory(this)),
      m_model(new UninstallTableModel(m_inventory, this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    createHeader();
    createTable();
    createFooter();
    connect(m_inventory, &ApplicationInventory::itemFound, this, &UninstallViewController::itemFound);
    connect(m_inventory, &ApplicationInventory::scanFinished, this, &UninstallViewController::scanFinished);
    connect(m_inventory, &ApplicationInventory::sizeReady, m_model, &UninstallTableModel::redrawRecord);
    connect(m_inventory, &ApplicationInventory::sizeReady, this, &UninstallViewController::fitSizeColumn);
    m_model->setTickedList(&m_ticked[m_appsType]);
}

// The page is set up, and the first scan starts, when it is first shown: a user who never
// opens the uninstaller pays nothing for it.
void UninstallViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_scanned) return;
    m_scanned = true;
    begimScanFile();
}

// The inventory waits for its scans and sizes; a removal under way is waited for by the session.
UninstallViewController::~UninstallViewController() = default;

void UninstallViewController::createHeader() {
    QLabel* title = Style::label("Uninstaller", 22, false, true);
    title->setParent(this);
    title->setGeometry(40, 28, 400, 34);
    m_subtitle = Style::label("Remove applications, widgets and plug-ins together with the files they leave behind.",
                              12, true);
    m_subtitle->setParent(this);

    m_tabs = new QButtonGroup(this);
    m_tabs->setExclusive(true);
    int left = kMargin;
    for (int tab = 0; tab < ApplicationInventory::kTabCount; ++tab) {
        QToolButton* button = velmora::tabButton(kTabs[tab], this);
        button->move(left, kTabsTop);
        left += button->width() + 6;
        button->setChecked(tab == m_appsType);
        m_tabs->addButton(button, tab);
    }
    connect(m_tabs, &QButtonGroup::idClicked, this, &UninstallViewController::segmentSelectWithIndex);

    m_searchField = new QLineEdit(this);
    m_searchField->setObjectName("searchField");
    m_searchField->setPlaceholderText("Search");
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(QIcon(Style::imagePath("ic_search")), QLineEdit::LeadingPosition);
    m_searchField->setFont(Style::regularFont(12));
    m_searchField->resize(190, 28);
    m_searchField->setStyleSheet(QString("QLineEdit { background: rgba(255,255,255,18); color: white;"
                                         " border: 1px solid rgba(255,255,255,40); border-radius: 14px; padding: 0 8px; }"
                                         "QLineEdit:focus { border: 2px solid %1; }")
                                     .arg(Style::rgba(Style::kAccent)));
    connect(m_searchField, &QLineEdit::textChanged, this, &UninstallViewController::controlTextDidChange);

    m_sortButton = new ImageToggle("ic_sort", this, 24);
    m_sortButton->setToolTip("Sort");
    m_sortButton->setAccessibleName("Sort");
    m_sortButton->setFocusPolicy(Qt::TabFocus);
    connect(m_sortButton, &ImageToggle::clicked, this, [this] {
        if (m_sortMenu) m_sortMenu->close();
        m_sortMenu = new FileEraserSortVC(m_sortType, m_sortAD, this);
        // Name or size only: the third key of the eraser's menu has no meaning here.
        m_sortMenu->item("2")->hide();
        connect(m_sortMenu, &FileEraserSortVC::selectSortbyType, this, &UninstallViewController::selectSortbyType);
        m_sortMenu->popUpBelow(m_sortButton->mapToGlobal(QPoint(m_sortButton->width(), m_sortButton->height() + 6)));
    });
    m_refreshButton = new ImageToggle("ic_refresh", this, 24);
    m_refreshButton->setToolTip("Scan again");
    m_refreshButton->setAccessibleName("Scan again");
    m_refreshButton->setFocusPolicy(Qt::TabFocus);
    connect(m_refreshButton, &ImageToggle::clicked, this, &UninstallViewController::refButtonAction);
}

void UninstallViewController::createTable() {
    m_tableView = new QTableView(this);
    m_tableView->setObjectName("appTable");
    m_tableView->setModel(m_model);
    m_tableView->setItemDelegate(new UninstallTableDelegate(m_tableView));
    m_tableView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    QList<int> widths;
    for (int column = 0; column < UninstallTableModel::ColumnCount; ++column)
        widths.append(UninstallTableModel::columnWidth(column));
    applyListTableLook(m_tableView, 48, widths);
    // The name column takes what the window gives; sizes are never shortened.
    m_tableView->horizontalHeader()->setStretchLastSection(false);
    m_tableView->horizontalHeader()->setSectionResizeMode(UninstallTableModel::AppName, QHeaderView::Stretch);
    // From the keyboard: Tab into the table, Up and Down move, Space ticks, Delete removes the row.
    m_tableView->setFocusPolicy(Qt::TabFocus);
    m_tableView->setTabKeyNavigation(false);
    m_tableView->setStyleSheet(m_tableView->styleSheet() +
                               QString("QTableView:focus { border: 2px solid %1; border-radius: 6px; }")
                                   .arg(Style::rgba(Style::kAccent)));
    m_tableView->installEventFilter(this);
    // The row Space and Delete act on is always the highlighted one, also when Tab brought
    // the focus in.
    connect(m_tableView->selectionModel(), &QItemSelectionModel::currentRowChanged, m_tableView,
            [this](const QModelIndex& current) {
                if (current.isValid()) m_tableView->selectRow(current.row());
            });
    connect(m_tableView, &QTableView::clicked, this, &UninstallViewController::tableClicked);

    m_emptyLabel = Style::label(QString(), 13, true);
    m_emptyLabel->setParent(this);
    m_emptyLabel->setAlignment(Qt::AlignCenter);
    m_emptyLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void UninstallViewController::createFooter() {
    m_selectAllButton = ImageSetButton::secondary("Select all", this);
    m_selectAllButton->setFixedWidth(120);
    connect(m_selectAllButton, &QPushButton::clicked, this, &UninstallViewController::selectAllButtonAction);

    m_counterLabel = Style::label(QString(), 12, true);
    m_counterLabel->setParent(this);
    m_counterLabel->setObjectName("counterLabel");
    m_counterLabel->setTextFormat(Qt::RichText);
    m_counterLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);

    m_scanningLabel = Style::label("Scanning…", 12, true);
    m_scanningLabel->setParent(this);
    m_scanningLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    m_removeButton = ImageSetButton::primary("Uninstall", this);
    m_removeButton->setFixedWidth(150);
    m_removeButton->setAutoDefault(false);
    connect(m_removeButton, &QPushButton::clicked, this, &UninstallViewController::uninstallAppButtonAction);
    setTabOrder(m_searchField, m_sortButton);
    setTabOrder(m_sortButton, m_refreshButton);
    setTabOrder(m_refreshButton, m_tableView);
    setTabOrder(m_tableView, m_selectAllButton);
    setTabOrder(m_selectAllButton, m_removeButton);
}

// Header and footer keep their rows; the table between them, the search field and the
// buttons at the right follow the page's size.
void UninstallViewController::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int right = width() - kMargin;
    const int footerTop = height() - kFooterHeight;
    const int footerHeight = m_selectAllButton->sizeHint().height();
    m_subtitle->setGeometry(40, 62, width() - 80, 20);
    m_searchField->move(right - 76 - m_searchField->width(), kTabsTop + 5);
    m_sortButton->move(right - 62, kTabsTop + 7);
    m_refreshButton->move(right - 26, kTabsTop + 7);
    m_tableView->setGeometry(kMargin, kTableTop, right - kMargin, footerTop - kTableTop - 14);
    m_emptyLabel->setGeometry(kMargin, kTableTop + 80, right - kMargin, 40);
    m_selectAllButton->move(kMargin, footerTop);
    // The selected count is set larger than the rest of the line: the label is taller than the row.
    const int counterHeight = qMax(footerHeight, QFontMetrics(Style::boldFont(14)).height() + 6);
    m_counterLabel->setGeometry(kMargin + 136, footerTop + (footerHeight - counterHeight) / 2, kCounterWidth,
                                counterHeight);
    m_removeButton->move(right - m_removeButton->width(), footerTop);
    const int scanningLeft = m_counterLabel->geometry().right() + 10;
    m_scanningLabel->setGeometry(scanningLeft, footerTop, m_removeButton->x() - 10 - scanningLeft, footerHeight);
}

// Sizes are never shortened: the size column is as wide as the longest size shown.
void UninstallViewController::fitSizeColumn() {
    const int column = UninstallTableModel::Size;
    QHeaderView* header = m_tableView->horizontalHeader();
    const QFontMetrics metrics(Style::regularFont(12));
    int widest = header->fontMetrics().horizontalAdvance(m_model->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    for (const AMAppItemPtr& item : showListArr()) widest = qMax(widest, metrics.horizontalAdvance(item->size));
    header->resizeSection(column, qMax(UninstallTableModel::columnWidth(column), widest + 24));
}

QToolButton* UninstallViewController::tabButton(int tab) const { return static_cast<QToolButton*>(m_tabs->button(tab)); }
FileEraserSortVC* UninstallViewController::sortMenu() const { return m_sortMenu; }
MakeSureUninstallViewController* UninstallViewController::makeSurePanel() const { return m_makeSure; }
UninstallProgressViewController* UninstallViewController::progressPanel() const { return m_progress; }
bool UninstallViewController::isScan() const { return m_inventory->isScan(); }
const AMAppItemList& UninstallViewController::showListArr() const { return m_model->showListArr(); }
QString UninstallViewController::counterText() const {
    return InventoryListing::counterText(int(tickedList().size()), int(showListArr().size()));
}
QString UninstallViewController::nameHeaderText() const {
    return m_model->headerData(UninstallTableModel::AppName, Qt::Horizontal, Qt::DisplayRole).toString();
}

// ---- Scan --------------------------------------------------------------------

void UninstallViewController::begimScanFile() {
    if (isScan()) return;
    for (AMAppItemList& ticked : m_ticked) ticked.clear();
    m_model->reloadData({});
    setScanning(true);
    m_inventory->begimScanFile();
}

void UninstallViewController::refButtonAction() {
    if (isScan() || !m_isCanClick) return;
    m_ticked[m_appsType].clear();
    m_model->reloadData({});
    setScanning(true);
    m_inventory->refButtonAction(m_appsType);
}

void UninstallViewController::itemFound(int tab, const AMAppItemPtr& item) {
    if (tab != m_appsType) return;
    if (!InventoryListing::filtered({item}, m_searchField->text()).isEmpty()) m_model->appendRecord(item);
    refreshHeader();
}

void UninstallViewController::scanFinished() {
    setScanning(false);
    rebuildShownList();
}

void UninstallViewController::setScanning(bool scanning) {
    m_scanningLabel->setVisible(scanning);
    for (QAbstractButton* button : m_tabs->buttons()) button->setEnabled(!scanning && m_isCanClick);
    m_refreshButton->setEnabled(!scanning && m_isCanClick);
    changeSelectAllButtonState();
}

// ---- What the table shows ----------------------------------------------------

void UninstallViewController::segmentSelectWithIndex(int tab) {
    if (tab < 0 || tab >= ApplicationInventory::kTabCount) return;
    m_appsType = tab;
    m_tabs->button(tab)->setChecked(true);
    {
        const QSignalBlocker quiet(m_searchField);
        m_searchField->clear();
    }
    m_model->setTickedList(&m_ticked[tab]);
    rebuildShownList();
}

void UninstallViewController::controlTextDidChange(const QString&) { rebuildShownList(); }

void UninstallViewController::selectSortbyType(int sortType, int sortAD) {
    if (m_sortMenu) m_sortMenu->close();
    m_sortType = sortType;
    m_sortAD = sortAD;
    rebuildShownList();
}

void UninstallViewController::rebuildShownList() {
    const AMAppItemList shown = InventoryListing::filtered(m_inventory->items(m_appsType), m_searchField->text());
    m_model->reloadData(InventoryListing::sorted(shown, m_sortType, m_sortAD));
    fitSizeColumn();
    refreshHeader();
    changeSelectAllButtonState();
}

void UninstallViewController::refreshHeader() {
    const int shown = int(showListArr().size());
    m_model->setNameHeader(InventoryListing::headerText(m_appsType, shown));
    if (isScan() || shown > 0) {
        m_emptyLabel->hide();
        return;
    }
    m_emptyLabel->setText(m_searchField->text().isEmpty() ? QString("Nothing found in this tab")
                                                          : QString("Nothing matches the search"));
    m_emptyLabel->show();
}

// ---- Ticks -------------------------------------------------------------------

void UninstallViewController::tableClicked(const QModelIndex& index) {
    if (!index.isValid()) return;
    if (index.column() == UninstallTableModel::CheckBox) clickButtonAction(index.row());
    if (index.column() == UninstallTableModel::Uninstall) oneAppRemove(index.row());
}

void UninstallViewController::clickButtonAction(int row) {
    const AMAppItemPtr item = m_model->recordAt(row);
    if (isScan() || !m_isCanClick || !item) return;
    AMAppItemList& ticked = m_ticked[m_appsType];
    if (!ticked.removeOne(item)) ticked.append(item);
    m_model->redrawRecord(item);
    changeSelectAllButtonState();
}

void UninstallViewController::selectAllButtonAction() {
    if (isScan() || !m_isCanClick) return;
    m_ticked[m_appsType] = InventoryListing::selectAll(m_ticked[m_appsType], showListArr());
    m_model->redraw();
    changeSelectAllButtonState();
}

void UninstallViewController::changeSelectAllButtonState() {
    const int ticked = int(tickedList().size());
    const int shown = int(showListArr().size());
    m_removeButton->setEnabled(ticked > 0 && m_isCanClick && !isScan());
    m_selectAllButton->setText(InventoryListing::selectButtonTitle(ticked, shown));
    m_selectAllButton->setEnabled(shown > 0 && m_isCanClick && !isScan());
    if (ticked > 0)
        m_counterLabel->setText(QString("Selected: <span style=\"font-weight: 700; font-size: 14pt; color: white\">%1"
                                        "</span>/%2 Items")
                                    .arg(ticked)
                                    .arg(shown));
    else
        m_counterLabel->setText(InventoryListing::counterText(0, shown));
}

// ---- Removal -----------------------------------------------------------------

void UninstallViewController::uninstallAppButtonAction() {
    if (isScan() || !m_isCanClick || tickedList().isEmpty()) return;
    m_oneRemove = false;
    m_oneRemoveRecord.reset();
    collectRelatedFiles(tickedList());
}

void UninstallViewController::oneAppRemove(int row) {
    const AMAppItemPtr item = m_model->recordAt(row);
    if (isScan() || !m_isCanClick || !item) return;
    m_oneRemove = true;
    m_oneRemoveRecord = item;
    collectRelatedFiles({item});
}

// Sizing the related files of large applications takes a while: the lists are gathered
// on the background queue while the page waits, locked, and counts the applications done.
void UninstallViewController::collectRelatedFiles(const AMAppItemList& applications) {
    setBusy(true);
    QList<AMAppItem> records;
    for (const AMAppItemPtr& item : applications) records.append(*item);
    AMAppItemList installed;
    for (const AMAppItemPtr& item : m_inventory->allApplications()) installed.append(AMAppItemPtr::create(*item));
    auto* watcher = new QFutureWatcher<RelatedFiles>(this);
    m_relatedSearch = watcher;
    connect(watcher, &QFutureWatcher<RelatedFiles>::finished, this, [this, watcher] {
        watcher->deleteLater();
        // Stopped before the end: nothing to confirm.
        if (watcher->future().resultCount() == 0) {
            m_scanningLabel->hide();
            setBusy(false);
            return;
        }
        const RelatedFiles found = watcher->result();
        showSelectListWindiwWith(found.first, found.second);
    });
    const auto showCount = [this, total = records.size()](int done) {
        m_scanningLabel->setText(total < 2 ? QString("Looking for related files…")
                                           : QString("Related files %1/%2").arg(done).arg(total));
    };
    connect(watcher, &QFutureWatcher<RelatedFiles>::progressValueChanged, this, showCount);
    showCount(0);
    m_scanningLabel->show();
    watcher->setFuture(QtConcurrent::run([records, installed](QPromise<RelatedFiles>& promise) {
        promise.setProgressRange(0, int(records.size()));
        QList<AMAppItemList> groups;
        for (const AMAppItem& record : records) {
            if (promise.isCanceled()) return;
            groups.append(RelatedAppFilesScanner::relatedFilesToApplication(record, installed));
            promise.setProgressValue(int(groups.size()));
        }
        promise.addResult(RelatedFiles{groups, UninstallSession::runningApplicationsOf(groups)});
    }));
}

void UninstallViewController::showSelectListWindiwWith(const QList<AMAppItemList>& allRelaltedFiles,
                                                       const QStringList& running) {
    m_scanningLabel->hide();
    m_scanningLabel->setText("Scanning…");
    if (m_stopRequested) {
        setBusy(false);
        return;
    }
    if (m_makeSure) m_makeSure->deleteLater();
    if (m_session) m_session->deleteLater();
    m_session = new UninstallSession(allRelaltedFiles, this);
    m_session->tickPreTicked();
    m_makeSure = new MakeSureUninstallViewController(m_session, running, this);
    connect(m_makeSure, &MakeSureUninstallViewController::clickedDeleteBtn, this,
            &UninstallViewController::clickedDeleteBtn);
    connect(m_makeSure, &QDialog::rejected, this, [this] { setBusy(false); });
    setBusy(true);
    m_makeSure->open();
}

void UninstallViewController::clickedDeleteBtn() {
    if (!m_session || !m_session->canUninstall()) return;
    m_makeSure->hide();
    QTimer::singleShot(kRemoveDelayMs, this, &UninstallViewController::doRemove);
}

void UninstallViewController::doRemove() {
    if (!m_session) return;
    m_progress = new UninstallProgressViewController(this);
    m_progress->setAttribute(Qt::WA_DeleteOnClose);
    UninstallProgressViewController* progress = m_progress;
    connect(m_session, &UninstallSession::changeLabel, progress, [this, progress](const QString& message) {
        progress->changeLabel(message);
        QStringList failures;
        for (const auto& [item, reason] : m_session->failures())
            failures.append(QString("%1: %2").arg(displayPath(item->path), reason));
        progress->setFailures(failures);
    });
    connect(m_session, &UninstallSession::changeProgressValue, progress,
            &UninstallProgressViewController::changeProgressValue);
    connect(progress, &UninstallProgressViewController::okButtonAction, this, &UninstallViewController::uninstallEnd);
    connect(m_session, &UninstallSession::removalFinished, progress, [this, progress] {
        if (m_stopRequested) progress->okButton()->click();
    }, Qt::QueuedConnection);
    progress->changeProgressValue(0, QString());
    progress->open();
    m_session->doRemove();
}

void UninstallViewController::uninstallEnd() {
    if (m_session) m_session->uninstallEnd();
    if (m_makeSure) {
        m_makeSure->done(QDialog::Accepted);
        m_makeSure->deleteLater();
    }
    completeCleanRelatedFiles();
    setBusy(false);
}

// The records of the request leave the inventory once their files are gone; one that is
// still there (unticked in the confirmation, or not removable) stays listed.
void UninstallViewController::completeCleanRelatedFiles() {
    const AMAppItemList requested = m_oneRemove ? AMAppItemList{m_oneRemoveRecord} : m_ticked[m_appsType];
    AMAppItemList gone;
    for (const AMAppItemPtr& item : requested)
        if (item && !pathExists(item->path)) gone.append(item);
    m_inventory->removeItems(m_appsType, gone);
    if (m_oneRemove)
        m_ticked[m_appsType].removeOne(m_oneRemoveRecord);
    else
        m_ticked[m_appsType].clear();
    m_oneRemoveRecord.reset();
    const QSignalBlocker quiet(m_searchField);
    m_searchField->clear();
    m_model->reloadData(m_inventory->items(m_appsType));
    fitSizeColumn();
    refreshHeader();
    changeSelectAllButtonState();
}

void UninstallViewController::stopJob() {
    if (m_isCanClick) return;  // no job
    m_stopRequested = true;
    if (m_relatedSearch) m_relatedSearch->cancel();
    if (m_makeSure && m_makeSure->isVisible())
        m_makeSure->reject();
    else if (m_progress && m_progress->isEndViewShown())
        m_progress->okButton()->click();
}

// ---- Shared ------------------------------------------------------------------

// From the confirmation until the end message closes, the page and the sidebar are locked.
void UninstallViewController::setBusy(bool busy) {
    m_isCanClick = !busy;
    if (!busy) m_stopRequested = false;
    if (m_superDelegate) m_superDelegate->canChangeType(!busy, this);
    m_searchField->setEnabled(!busy);
    m_sortButton->setEnabled(!busy);
    m_tableView->setEnabled(!busy);
    setScanning(isScan());
}

bool UninstallViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_tableView && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const int row = m_tableView->currentIndex().row();
        if (key == Qt::Key_Space) {
            clickButtonAction(row);
            return true;
        }
        if (key == Qt::Key_Delete) {
            oneAppRemove(row);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace velmora
