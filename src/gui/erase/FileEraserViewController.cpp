#include "gui/erase/FileEraserViewController.h"

#include "engine/erase/EraseList.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/erase/RemoveFileAndFolder.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"
#include "engine/platform/SteadyWiperBase.h"
#include "engine/platform/UserDefaults.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/AddFilesPanel.h"
#include "gui/erase/DragOneFileView.h"
#include "gui/erase/DragView.h"
#include "gui/erase/FileEraserFailViewController.h"
#include "gui/erase/FileEraserProgressViewController.h"
#include "gui/erase/FileEraserSortVC.h"
#include "gui/erase/FileEraserSuccessViewController.h"
#include "gui/erase/FileEraserTableDelegate.h"
#include "gui/erase/FileEraserTableModel.h"
#include "gui/erase/MakeSureFileEraserViewControoler.h"
#include "gui/erase/NoticeViewController.h"
#include "gui/erase/ReadOnlyVolume.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/DesktopOpen.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/ListTable.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"
#include "gui/widgets/SvgImageView.h"

#include <QAction>
#include <QDir>
#include <QFutureWatcher>
#include <QHash>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPropertyAnimation>
#include <QSet>
#include <QTableView>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QtConcurrent>
#include <algorithm>
#include <sys/stat.h>

namespace velmora {
namespace {

constexpr int kContentTop = 100;
// Set when a run added to the history, cleared when the history panel is opened.
const QString kUnseenHistoryKey = "FileHistoryUnseen";
constexpr int kSlideMs = 500;
constexpr int kProgressRefreshMs = 50;

ImageToggle* headerButton(const QString& image, const QString& tip, QWidget* parent) {
    auto* button = new ImageToggle(image, parent, 26);
    button->setToolTip(tip);
    return button;
}

}  // namespace

FileEraserViewController::FileEraserViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent),
      m_superDelegate(superDelegate),
      m_eraserTimer(new QTimer(this)),
      m_progressRefresh(new QTimer(this)),
      m_model(new FileEraserTableModel(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    createHeader();
    createAddView();
    createListView();
    addShortcuts();
    m_levelPanel = new SlidePanel(this);
    m_historyPanel = new SlidePanel(this);
    m_eraserTimer->setInterval(1000);
    connect(m_eraserTimer, &QTimer::timeout, this, &FileEraserViewController::eraserTimeAction);
    m_progressRefresh->setSingleShot(true);
    m_progressRefresh->setInterval(kProgressRefreshMs);
    connect(m_progressRefresh, &QTimer::timeout, this, &FileEraserViewController::showPendingProgress);
    updateHistoryButton();
    showMainView();
    returnSelectAllState();
}

void FileEraserViewController::createHeader() {
    m_titleLabel = Style::label("Erase Files", 22, false, true);
    m_titleLabel->setParent(this);
    m_subtitleLabel = Style::label("Overwrite files and folders so that no tool can bring them back.", 12, true);
    m_subtitleLabel->setParent(this);

    m_sortButton = headerButton("ic_sort", "Sort", this);
    connect(m_sortButton, &ImageToggle::clicked, this, &FileEraserViewController::sortButtonAction);
    m_settingsButton = headerButton("ic_setting", "Erasure level", this);
    connect(m_settingsButton, &ImageToggle::clicked, this, &FileEraserViewController::setButtonAction);
    m_historyButton = headerButton("ic_nohistory", "Erasure history", this);
    connect(m_historyButton, &ImageToggle::clicked, this, &FileEraserViewController::historyButtonAction);
}

void FileEraserViewController::addShortcuts() {
    auto* addFiles = new QAction("Add Files…", this);
    addFiles->setShortcut(QKeySequence::Open);
    addFiles->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(addFiles, &QAction::triggered, this, [this] {
        if (isVisible() && !m_levelPanel->isShown() && !m_historyPanel->isShown()) selectFileButtonAction();
    });
    addAction(addFiles);

    // Space ticks the current row, Delete takes the selected rows off the list.
    m_tableView->installEventFilter(this);
    m_tableView->viewport()->installEventFilter(this);
}

bool FileEraserViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_tableView->viewport() && event->type() == QEvent::Resize) fitColumns();
    if (watched == m_tableView && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Space && m_tableView->currentIndex().isValid()) {
            selectListButton(m_tableView->currentIndex().row());
            return true;
        }
        if (key->matches(QKeySequence::Delete) || key->key() == Qt::Key_Backspace) {
            removeSelectedRows();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FileEraserViewController::removeSelectedRows() {
    QList<int> rows;
    for (const QModelIndex& index : m_tableView->selectionModel()->selectedRows()) rows.append(index.row());
    if (rows.isEmpty()) return;
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    for (int row : std::as_const(rows))
        if (row < m_valueArr.size()) m_valueArr.removeAt(row);
    ++m_listRevision;
    if (m_valueArr.isEmpty()) {
        emptyListButtonAction();
        return;
    }
    reloadData();
    returnSelectAllState();
    const int next = qMin(rows.last(), int(m_valueArr.size()) - 1);
    m_tableView->setCurrentIndex(m_model->index(next, FileEraserTableModel::Name));
}

// The page is laid out from its own rect, so it grows with the window.
void FileEraserViewController::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int right = width() - 24;
    m_titleLabel->setGeometry(40, 28, right - 40 - 130, 34);
    m_subtitleLabel->setGeometry(40, 62, right - 40, 20);
    m_historyButton->move(right - m_historyButton->width() - 14, 36);
    m_settingsButton->move(m_historyButton->x() - 40, 36);
    m_sortButton->move(m_settingsButton->x() - 40, 36);

    m_addView->setGeometry(0, kContentTop, width(), height() - kContentTop);
    // The drop area grows with the page up to a comfortable size and stays centred.
    const QSize drop(qBound(560, width() - 224, 860), qBound(280, m_addView->height() - 220, 440));
    const int dropTop = qMax(50, (m_addView->height() - drop.height() - 40) / 2);
    m_dragView->setGeometry((width() - drop.width()) / 2, dropTop, drop.width(), drop.height());
    m_hintLabel->setGeometry(0, m_dragView->geometry().bottom() + 20, width(), 20);

    const bool listShown = m_listView->isVisible() && m_listView->x() == 0;
    m_listView->setGeometry(listShown ? 0 : listHiddenX(), kContentTop - 4, width(), height() - kContentTop + 4);
}

int FileEraserViewController::listHiddenX() const { return width() - kListPeek; }

// Fixed columns keep their widths (the size column fits its widest text); the name and
// path columns share what the table has beyond them.
void FileEraserViewController::fitColumns() {
    QHeaderView* header = m_tableView->horizontalHeader();
    const int sizeWidth = qMax(FileEraserTableModel::columnWidth(FileEraserTableModel::Size),
                               QFontMetrics(Style::regularFont(13)).horizontalAdvance("999.99 byte") + 16);
    header->resizeSection(FileEraserTableModel::Size, sizeWidth);
    int fixed = sizeWidth;
    for (int column : {int(FileEraserTableModel::CheckBox), int(FileEraserTableModel::Type),
                       int(FileEraserTableModel::Search)})
        fixed += FileEraserTableModel::columnWidth(column);
    const int shared = qMax(0, m_tableView->viewport()->width() - fixed);
    const int name = qMax(FileEraserTableModel::columnWidth(FileEraserTableModel::Name), shared * 2 / 5);
    header->resizeSection(FileEraserTableModel::Name, name);
    header->resizeSection(FileEraserTableModel::Path, qMax(80, shared - name));
}

void FileEraserViewController::createAddView() {
    m_addView = new QWidget(this);
    m_dragView = new DragView(m_addView);
    connect(m_dragView, &DragView::viewDragAction, this, &FileEraserViewController::viewDragAction);

    auto* layout = new QVBoxLayout(m_dragView);
    layout->setSpacing(10);
    layout->addStretch(1);
    auto* icon = new SvgImageView("ic_add", {56, 56}, m_dragView);
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addSpacing(6);
    layout->addWidget(Style::label("Drop files and folders here", 16), 0, Qt::AlignHCenter);
    layout->addWidget(Style::label("or", 12, true), 0, Qt::AlignHCenter);
    auto* add = ImageSetButton::primary("Add Files", m_dragView);
    add->setFixedWidth(140);
    connect(add, &QPushButton::clicked, this, &FileEraserViewController::selectFileButtonAction);
    layout->addWidget(add, 0, Qt::AlignHCenter);
    layout->addStretch(1);

    m_hintLabel = Style::label("Nothing is erased before you confirm. Erased data cannot be recovered.", 11, true);
    m_hintLabel->setParent(m_addView);
    m_hintLabel->setAlignment(Qt::AlignCenter);
}

void FileEraserViewController::createListView() {
    m_listView = new DragOneFileView(this);
    connect(m_listView, &DragOneFileView::viewDragAction, this, &FileEraserViewController::viewDragAction);

    m_tableView = new QTableView(m_listView);
    m_tableView->setModel(m_model);
    m_tableView->setItemDelegate(new FileEraserTableDelegate(m_tableView));
    m_tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tableView->setContextMenuPolicy(Qt::CustomContextMenu);
    QList<int> columnWidths;
    for (int column = 0; column < FileEraserTableModel::ColumnCount; ++column)
        columnWidths.append(FileEraserTableModel::columnWidth(column));
    applyListTableLook(m_tableView, 36, columnWidths);
    makeListTableFocusable(m_tableView);
    // Tab leaves the list (the arrow keys move in it); the tick-all box in its header is a stop of its own.
    m_tableView->setTabKeyNavigation(false);
    m_tableView->horizontalHeader()->setTabKeyNavigation(false);
    QHeaderView* header = m_tableView->horizontalHeader();
    connect(m_tableView, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == FileEraserTableModel::CheckBox) selectListButton(index.row());
        if (index.column() == FileEraserTableModel::Search) openFileButton(index.row());
    });
    connect(m_tableView, &QWidget::customContextMenuRequested, this, &FileEraserViewController::listRightMouseDown);

    m_selectAllButton = new ImageToggle("checkbox_no", header->viewport());
    m_selectAllButton->setToolTip("Tick all");
    m_selectAllButton->move((FileEraserTableModel::columnWidth(0) - m_selectAllButton->width()) / 2,
                            (header->height() - m_selectAllButton->height()) / 2);
    connect(m_selectAllButton, &ImageToggle::clicked, this, &FileEraserViewController::setAllSelectOrNoSelect);

    auto* addMore = ImageSetButton::secondary("Add", m_listView);
    connect(addMore, &QPushButton::clicked, this, &FileEraserViewController::selectFileButtonAction);
    auto* emptyList = ImageSetButton::secondary("Empty List", m_listView);
    connect(emptyList, &QPushButton::clicked, this, &FileEraserViewController::emptyListButtonAction);
    m_summaryLabel = Style::label(QString(), 12, true);
    m_summaryLabel->setTextFormat(Qt::RichText);
    m_summaryLabel->setAlignment(Qt::AlignCenter);
    m_eraserFileButton = ImageSetButton::primary("Erase Now", m_listView);
    m_eraserFileButton->setFixedWidth(130);
    connect(m_eraserFileButton, &QPushButton::clicked, this, &FileEraserViewController::eraserNowButtonAction);

    auto* layout = new QVBoxLayout(m_listView);
    layout->setContentsMargins(26, 4, 26, 22);
    layout->setSpacing(14);
    layout->addWidget(m_tableView, 1);
    auto* bottom = new QGridLayout;
    auto* leftButtons = new QHBoxLayout;
    leftButtons->setSpacing(10);
    leftButtons->addWidget(addMore);
    leftButtons->addWidget(emptyList);
    bottom->addLayout(leftButtons, 0, 0, Qt::AlignLeft);
    bottom->addWidget(m_summaryLabel, 0, 1, Qt::AlignCenter);
    bottom->addWidget(m_eraserFileButton, 0, 2, Qt::AlignRight);
    for (int column = 0; column < 3; ++column) bottom->setColumnStretch(column, 1);
    layout->addLayout(bottom);
    setTabOrder(m_selectAllButton, m_tableView);
}

QWidget* FileEraserViewController::addView() const { return m_addView; }
QWidget* FileEraserViewController::listView() const { return m_listView; }
MakeSureFileEraserViewControoler* FileEraserViewController::makeSurePanel() const { return m_makeSurePanel; }
FileEraserProgressViewController* FileEraserViewController::progressPanel() const { return m_progressPanel; }
FileEraserSuccessViewController* FileEraserViewController::successPanel() const { return m_successPanel; }
FileEraserFailViewController* FileEraserViewController::failPanel() const { return m_failPanel; }
FileEraserSortVC* FileEraserViewController::sortMenu() const { return m_sortMenu; }

// ---- Adding ----------------------------------------------------------------

QString FileEraserViewController::startFolder() const {
    return m_newPathStr.size() >= 2 ? m_newPathStr : AddFilesPanel::defaultStartFolder();
}

void FileEraserViewController::selectFileButtonAction() {
    auto* panel = new AddFilesPanel(startFolder(), this);
    connect(panel, &AddFilesPanel::pathsChosen, this, &FileEraserViewController::addSelectedPaths);
    connect(panel, &QFileDialog::directoryEntered, this,
            [this, panel](const QString& folder) { panelDidChangeToDirectory(panel, folder); });
    panel->open();
}

// An application running with administrator rights opens its panels in the
// administrator's home. The panel is taken back to the user's own folder.
void FileEraserViewController::panelDidChangeToDirectory(QWidget* panel, const QString& folder) {
    if (m_reopenPending || !AddFilesPanel::isInAdministratorHome(folder)) return;
    const QString userName = SteadyWiperBase::stringValue("USERNAME");
    qCInfo(lcErase, "userName====:%s", qUtf8Printable(userName));
    qCInfo(lcErase, "userSelectSavePath====:%s", qUtf8Printable(folder));
    panel->close();
    m_newPathStr = AddFilesPanel::userFolderForAdministratorFolder(folder, userName);
    qCInfo(lcErase, "lastSavePath====:%s", qUtf8Printable(m_newPathStr));
    m_reopenPending = true;
    QTimer::singleShot(300, this, &FileEraserViewController::selectFileButtonAction);
    QTimer::singleShot(1500, this, [this] { m_reopenPending = false; });
}

void FileEraserViewController::viewDragAction(const QStringList& paths) { addSelectedPaths(paths); }

void FileEraserViewController::addSelectedPaths(const QStringList& paths) {
    if (paths.isEmpty()) return;
    // Only the first item's volume is looked at: a batch comes from one place.
    if (ReadOnlyVolume::contains(paths.first())) {
        showNTFSWindow();
        return;
    }
    // Batches are added in the order they came.
    if (m_addingPaths) {
        m_pendingPaths.append(paths);
        return;
    }
    if (paths.size() <= kPathsCheckedInline) {
        addCheckedPaths(checkPaths(paths, listedPaths(), m_listRevision));
        return;
    }
    // Each path is looked at on the disk: many are checked on a worker.
    m_addingPaths = true;
    setCursor(Qt::BusyCursor);
    auto* watcher = new QFutureWatcher<CheckedPaths>(this);
    connect(watcher, &QFutureWatcher<CheckedPaths>::finished, this, [this, watcher] {
        watcher->deleteLater();
        m_addingPaths = false;
        unsetCursor();
        addCheckedPaths(watcher->result());
        while (!m_addingPaths && !m_pendingPaths.isEmpty()) addSelectedPaths(m_pendingPaths.takeFirst());
    });
    watcher->setFuture(QtConcurrent::run(&FileEraserViewController::checkPaths, paths, listedPaths(), m_listRevision));
}

QSet<QString> FileEraserViewController::listedPaths() const {
    QSet<QString> listed;
    listed.reserve(m_valueArr.size());
    for (const FileObj& record : m_valueArr) listed.insert(record.url);
    return listed;
}

FileEraserViewController::CheckedPaths FileEraserViewController::checkPaths(const QStringList& paths,
                                                                            QSet<QString> listed, int revision) {
    CheckedPaths checked;
    checked.revision = revision;
    // Items on one device share its file system: each device's volume is asked once.
    QHash<dev_t, bool> refusedDevice;
    for (const QString& chosen : paths) {
        // cleanPath edits the text only, so the bytes of every name stay as they are.
        const QString path = QDir::cleanPath(chosen);
        // The whole system is never a candidate: the add ends here, silently.
        if (path == "/") {
            checked.stoppedAtRoot = true;
            break;
        }
        if (listed.contains(path)) continue;
        // The item itself: a link counts as the link, not its target.
        struct stat info;
        const bool exists = statWithoutFollowing(nativePath(path), &info) == 0;
        if (exists) {
            auto device = refusedDevice.constFind(info.st_dev);
            if (device == refusedDevice.constEnd()) device = refusedDevice.insert(info.st_dev, ReadOnlyVolume::contains(path));
            if (device.value()) {
                checked.refused = true;
                continue;
            }
        }
        listed.insert(path);
        checked.records.append(record(path, exists && S_ISDIR(info.st_mode), exists ? quint64(info.st_size) : 0));
    }
    return checked;
}

void FileEraserViewController::addCheckedPaths(const CheckedPaths& checked) {
    if (m_valueArr.isEmpty()) {
        m_valueArr = checked.records;
        ++m_listRevision;
    } else {
        // The list may have changed while the paths were checked.
        const QSet<QString> listed = checked.revision == m_listRevision ? QSet<QString>() : listedPaths();
        m_valueArr.reserve(m_valueArr.size() + checked.records.size());
        for (const FileObj& added : checked.records) {
            if (listed.contains(added.url)) continue;
            m_valueArr.append(added);
            ++m_listRevision;
        }
    }
    // Stopped at "/": what came before it is listed, without a refresh.
    if (checked.stoppedAtRoot) return;
    if (checked.refused) showNTFSWindow();
    if (m_valueArr.isEmpty()) return;
    reloadData();
    // A sorted list stays sorted, so that the sort menu's tick stays true.
    if (m_sortType >= 0) startSorting();
    updateHistoryButton();
    showListView();
    returnSelectAllState();
}

FileObj FileEraserViewController::record(const QString& path, bool isDir, quint64 size) {
    FileObj record;
    record.name = path.mid(path.lastIndexOf('/') + 1);
    record.url = path;
    record.isSelect = true;
    record.isDir = isDir;
    if (isDir) {
        record.type = "Folder";
    } else {
        record.size = size;
        const qsizetype dot = record.name.lastIndexOf('.');
        record.type = dot < 0 ? QString() : record.name.mid(dot + 1);
    }
    return record;
}

void FileEraserViewController::emptyListButtonAction() {
    m_valueArr.clear();
    ++m_listRevision;
    reloadData();
    returnSelectAllState();
    m_addView->show();
    m_sortButton->hide();
    auto* slide = new QPropertyAnimation(m_listView, "pos", m_listView);
    slide->setDuration(kSlideMs);
    slide->setEndValue(QPoint(listHiddenX(), m_listView->y()));
    connect(slide, &QPropertyAnimation::finished, m_listView, [this] {
        // Something may have been added while the list slid away.
        if (m_valueArr.isEmpty()) m_listView->hide();
    });
    slide->start(QAbstractAnimation::DeleteWhenStopped);
}

void FileEraserViewController::showNTFSWindow() {
    showNotice("This volume is read-only",
               "Items on NTFS volumes cannot be erased here: the file eraser cannot write to them. Nothing was "
               "added.");
}

void FileEraserViewController::showNotice(const QString& title, const QString& message) {
    (new NoticeViewController(title, message, this))->open();
}

// ---- Views -----------------------------------------------------------------

void FileEraserViewController::reloadData() { m_model->reloadData(m_valueArr); }

// The dot of "ic_history" marks runs the user has not looked at yet; once the
// history was opened the button shows the same clock without it.
void FileEraserViewController::updateHistoryButton() {
    const bool hasHistory = PublicUtilities::getUpDataHistoryStr(DoDataBase::kWipeFileHistory).toInt() != 0;
    const bool unseen = UserDefaults::integerForKey(kUnseenHistoryKey) != 0;
    m_historyButton->setImageName(!hasHistory ? "ic_nohistory" : unseen ? "ic_history" : "ic_history_seen");
}

void FileEraserViewController::showListView() {
    m_addView->hide();
    m_sortButton->show();
    if (m_listView->isVisible() && m_listView->x() == 0) return;
    m_listView->move(listHiddenX(), m_listView->y());
    m_listView->show();
    auto* slide = new QPropertyAnimation(m_listView, "pos", m_listView);
    slide->setDuration(kSlideMs);
    slide->setEasingCurve(QEasingCurve::OutCubic);
    slide->setEndValue(QPoint(0, m_listView->y()));
    slide->start(QAbstractAnimation::DeleteWhenStopped);
}

void FileEraserViewController::showMainView() {
    const bool hasItems = !m_valueArr.isEmpty();
    m_addView->setVisible(!hasItems);
    m_sortButton->setVisible(hasItems);
    m_listView->move(hasItems ? 0 : listHiddenX(), m_listView->y());
    m_listView->setVisible(hasItems);
}

// ---- Selection -------------------------------------------------------------

void FileEraserViewController::selectListButton(int row) {
    if (row < 0 || row >= m_valueArr.size()) return;
    m_valueArr[row].isSelect = !m_valueArr[row].isSelect;
    ++m_listRevision;
    reloadData();
    returnSelectAllState();
}

void FileEraserViewController::setAllSelectOrNoSelect() {
    const bool tickAll = returnSelectAllState() != 2;
    for (FileObj& record : m_valueArr) record.isSelect = tickAll;
    ++m_listRevision;
    reloadData();
    returnSelectAllState();
}

int FileEraserViewController::returnSelectAllState() {
    const int total = int(m_valueArr.size());
    const int ticked = int(std::count_if(m_valueArr.cbegin(), m_valueArr.cend(),
                                         [](const FileObj& record) { return record.isSelect; }));
    int state = 0;
    if (ticked > 0) {
        state = ticked == total ? 2 : 1;
        m_summaryLabel->setText(QString("Selected: <span style=\"font-size:14pt; font-weight:bold; color:white\">%1</span>"
                                        "/%2 Items")
                                    .arg(ticked)
                                    .arg(total));
    } else {
        m_summaryLabel->setText(QString(total < 2 ? "Total: %1 Item" : "Total: %1 Items").arg(total));
    }
    static const char* const kImages[] = {"checkbox_no", "checkbox_election", "checkbox_yes"};
    m_selectAllButton->setImageName(kImages[state]);
    m_eraserFileButton->setEnabled(state != 0);
    return state;
}

// ---- Sorting ---------------------------------------------------------------

void FileEraserViewController::sortButtonAction() {
    if (m_sortMenu) m_sortMenu->close();
    m_sortMenu = new FileEraserSortVC(m_sortType, m_sortAD, this);
    connect(m_sortMenu, &FileEraserSortVC::selectSortbyType, this, &FileEraserViewController::selectSortbyType);
    m_sortMenu->popUpBelow(m_sortButton->mapToGlobal(QPoint(m_sortButton->width(), m_sortButton->height() + 6)));
}

void FileEraserViewController::selectSortbyType(int sortType, int sortAD) {
    if (m_sortMenu) m_sortMenu->close();
    m_sortType = sortType;
    m_sortAD = sortAD;
    startSorting();
}

FileObjList FileEraserViewController::sortedRecords(FileObjList records, int sortType, int sortAD) {
    const bool ascending = sortAD == 0;
    if (sortType < 0) return records;
    if (sortType == 0) {
        std::stable_sort(records.begin(), records.end(), [ascending](const FileObj& a, const FileObj& b) {
            return ascending ? a.name < b.name : b.name < a.name;
        });
    } else {
        std::stable_sort(records.begin(), records.end(), [ascending](const FileObj& a, const FileObj& b) {
            return ascending ? a.size < b.size : b.size < a.size;
        });
    }
    return records;
}

void FileEraserViewController::startSorting() {
    const int revision = m_listRevision;
    auto* watcher = new QFutureWatcher<FileObjList>(this);
    connect(watcher, &QFutureWatcher<FileObjList>::finished, this, [this, watcher, revision] {
        watcher->deleteLater();
        // The list changed while it was sorted: sort the list as it is now.
        if (revision != m_listRevision) {
            startSorting();
            return;
        }
        m_valueArr = watcher->result();
        ++m_listRevision;
        reloadData();
    });
    watcher->setFuture(QtConcurrent::run(&FileEraserViewController::sortedRecords, m_valueArr, m_sortType, m_sortAD));
}

// ---- Context menu ----------------------------------------------------------

void FileEraserViewController::listRightMouseDown(const QPoint& viewportPosition) {
    const int row = m_tableView->indexAt(viewportPosition).row();
    if (row < 0) return;
    m_tableView->selectRow(row);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("Open", this, [this, row] { openFileButton(row); });
    menu->addAction("Reveal in Folder", this, [this, row] { revealInFolder(row); });
    menu->popup(m_tableView->viewport()->mapToGlobal(viewportPosition));
}

void FileEraserViewController::openFileButton(int row) {
    if (row < 0 || row >= m_valueArr.size()) return;
    const QString path = m_valueArr.at(row).url;
    DesktopOpen::openUrl(this, fileUrl(path), [this, path] {
        showNotice("Cannot open file", "No application answered for " + displayPath(path));
    });
}

void FileEraserViewController::revealInFolder(int row) {
    if (row < 0 || row >= m_valueArr.size()) return;
    const QString path = m_valueArr.at(row).url;
    const QString folder = path.left(qMax<qsizetype>(path.lastIndexOf('/'), 1));
    const auto notShown = [this, path] {
        showNotice("Cannot open Folder", "No file manager answered for " + displayPath(path));
    };
    if (!itemExists(folder)) {
        notShown();
        return;
    }
    DesktopOpen::reveal(this, path, fileUrl(folder), notShown);
}

// ---- Side panels -----------------------------------------------------------

void FileEraserViewController::setButtonAction() { SetEraserLevelVC::showIn(m_levelPanel); }

void FileEraserViewController::historyButtonAction() {
    UserDefaults::setInteger(kUnseenHistoryKey, 0);
    updateHistoryButton();
    HistoryViewController* history = HistoryViewController::showIn(m_historyPanel);
    connect(history, &HistoryViewController::closeHistoryView, this, &FileEraserViewController::closeHistoryView);
}

void FileEraserViewController::closeHistoryView() {
    m_historyPanel->slideOut();
    updateHistoryButton();
}

// ---- A run -----------------------------------------------------------------

void FileEraserViewController::eraserNowButtonAction() {
    if (returnSelectAllState() == 0) return;
    m_makeSurePanel = new MakeSureFileEraserViewControoler(this);
    connect(m_makeSurePanel, &MakeSureFileEraserViewControoler::makeSureToEraserSelectFiles, this,
            &FileEraserViewController::makeSureToEraserSelectFiles);
    m_makeSurePanel->open();
}

void FileEraserViewController::makeSureToEraserSelectFiles() {
    m_progressPanel = new FileEraserProgressViewController(PublicUtilities::getEraserTimes(), this);
    connect(m_progressPanel, &FileEraserProgressViewController::cancelEraserButtonAction, this,
            &FileEraserViewController::cancelEraserButtonAction);
    doEraserSelectFiles();
    // The first item starts once the chosen folders are counted.
    if (m_engine->isCounting()) m_progressPanel->setRemoveProgress(2.0, "Counting items…", QString());
    m_progressPanel->open();
}

void FileEraserViewController::doEraserSelectFiles() {
    m_isCancel = false;
    m_isFailedEraser = false;
    m_deleteErrorArr.clear();
    delete m_engine;
    m_engine = new RemoveFileAndFolder(this);
    // Progress and the end are taken on the page's own turn of the event loop.
    connect(m_engine, &RemoveFileAndFolder::removeProgress, this, &FileEraserViewController::removeProgress,
            Qt::QueuedConnection);
    connect(m_engine, &RemoveFileAndFolder::haveFailEraser, this, &FileEraserViewController::haveFailEraser);
    connect(m_engine, &RemoveFileAndFolder::removeObjEnd, this, &FileEraserViewController::removeObjEnd,
            Qt::QueuedConnection);

    const FileObjList eraseList = EraseList::build(m_valueArr);
    if (m_superDelegate) m_superDelegate->canChangeType(false, this);
    m_eraserTimeR = 0;
    m_eraserTimer->start();
    eraserTimeAction();
    m_engine->benginToTraskWithArr(eraseList);
}

void FileEraserViewController::eraserTimeAction() {
    ++m_eraserTimeR;
    if (m_progressPanel) m_progressPanel->setElapsedTime(elapsedTimeText(m_eraserTimeR));
}

QString FileEraserViewController::elapsedTimeText(int seconds) {
    auto twoDigits = [](int value) {
        return QString::asprintf(value <= 9 ? "0%.0f" : "%.0f", double(value));
    };
    return QString::asprintf("%.0f:", double(seconds / 3600)) + twoDigits((seconds / 60) % 60) + ":" +
           twoDigits(seconds % 60);
}

// The tool reports every item it removed, thousands a second in a large folder: the
// view shows a report at once, then the latest one at most every 50 ms.
void FileEraserViewController::removeProgress(float progress, const QString& path, int index) {
    m_latestProgress = {progress, path, index};
    m_progressPending = true;
    if (!m_progressRefresh->isActive()) showPendingProgress();
}

void FileEraserViewController::showPendingProgress() {
    if (!m_progressPending) return;
    m_progressPending = false;
    showLatestProgress();
    m_progressRefresh->start();
}

void FileEraserViewController::showLatestProgress() {
    if (!m_progressPanel || !m_engine) return;
    // Progress counts every item the run touches, folder contents included.
    const QString round = QString::asprintf("%d of %d items", m_latestProgress.index, m_engine->itemCount());
    m_progressPanel->setRemoveProgress(qMax(double(m_latestProgress.progress), 2.0), displayPath(m_latestProgress.path),
                                       round);
}

void FileEraserViewController::haveFailEraser() { m_isFailedEraser = true; }

void FileEraserViewController::cancelEraserButtonAction() { cancelShred(); }

void FileEraserViewController::cancelShred() {
    m_isCancel = true;
    if (m_engine) m_engine->isCancel();
}

void FileEraserViewController::removeObjEnd(const FileObjList& results) {
    m_progressRefresh->stop();
    m_progressPending = false;
    m_eraserTimer->stop();

    // Erased only when the engine erased the item (the tool succeeded) and nothing is
    // left at its path. The results follow the ticked records in order; records the
    // run did not reach (cancelled) have none.
    FileObjList remaining;
    QStringList erasedFolders;
    qsizetype next = 0;
    for (FileObj record : std::as_const(m_valueArr)) {
        if (!record.isSelect) {
            remaining.append(record);
            continue;
        }
        const FileObj* outcome = next < results.size() ? &results.at(next) : nullptr;
        ++next;
        record.failReason.clear();
        const QString folder = erasedFolderHolding(record.url, erasedFolders);
        if (outcome && outcome->failStr == "Success" && !itemExists(record.url)) {
            record.failStr = "Erased";
            if (record.isDir) erasedFolders.append(record.url);
        } else if (!folder.isEmpty() && !itemExists(record.url)) {
            // An earlier item of this run, its folder, took it along.
            record.failStr = "Erased";
            record.failReason = "erased with its folder " + displayPath(folder);
        } else if (m_isCancel && (!outcome || itemExists(record.url))) {
            // Not reached, or stopped while the tool was at it: still there, still listed.
            record.failStr = "Cancelled";
            record.failReason = outcome ? "stopped before it was done; parts of it may already be overwritten"
                                        : "the erase was cancelled before it reached it";
            remaining.append(record);
        } else {
            record.failStr = "Failed";
            record.failReason = outcome && !outcome->failReason.isEmpty() ? outcome->failReason
                                : outcome ? "it is still there" : "the erase did not reach it";
        }
        m_deleteErrorArr.append(record);
    }
    // The rows decide the headline, not the forecasts the engine made on the way.
    m_isFailedEraser = std::any_of(m_deleteErrorArr.cbegin(), m_deleteErrorArr.cend(),
                                   [](const FileObj& record) { return record.failStr != "Erased"; });

    // The history is written on a worker thread (the database waits for the disk); the
    // outcome shows once it is recorded.
    auto* recording = new QFutureWatcher<void>(this);
    connect(recording, &QFutureWatcher<void>::finished, this, [this, recording, remaining] {
        recording->deleteLater();
        showRunOutcome(remaining);
    });
    recording->setFuture(QtConcurrent::run([rows = m_deleteErrorArr] {
        DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr(rows);
    }));
}

void FileEraserViewController::showRunOutcome(const FileObjList& remaining) {
    if (m_progressPanel) m_progressPanel->close();
    if (m_isFailedEraser) {
        m_failPanel = new FileEraserFailViewController(m_deleteErrorArr, m_isCancel, this);
        m_failPanel->open();
    } else {
        m_successPanel = new FileEraserSuccessViewController(m_deleteErrorArr, this);
        m_successPanel->open();
    }
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeFileHistory, "1");
    UserDefaults::setInteger(kUnseenHistoryKey, 1);
    updateHistoryButton();
    m_valueArr = remaining;
    ++m_listRevision;
    reloadData();
    showMainView();
    returnSelectAllState();
    // Last, so that a quit waiting for the end of the run finds everything recorded.
    if (m_superDelegate) m_superDelegate->canChangeType(true, this);
}

QString FileEraserViewController::erasedFolderHolding(const QString& path, const QStringList& erasedFolders) {
    for (const QString& folder : erasedFolders)
        if (path.startsWith(folder.endsWith('/') ? folder : folder + '/')) return folder;
    return {};
}

void FileEraserViewController::stopJob() {
    if (m_engine && m_eraserTimer->isActive()) cancelShred();
}

}  // namespace velmora
