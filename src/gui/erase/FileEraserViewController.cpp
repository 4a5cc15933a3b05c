#include "gui/erase/FileEraserViewController.h"

#include "engine/erase/EraseList.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/erase/RemoveFileAndFolder.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"
#include "engine/platform/StandardPaths.h"
#include "engine/platform/SteadyWiperBase.h"
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
#include "gui/widgets/SvgImageView.h"
#include "gui/history/HistoryViewController.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/ListTable.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QDesktopServices>
#include <QDir>
#include <QFutureWatcher>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProcess>
#include <QPropertyAnimation>
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
constexpr int kListHiddenX = 730;
constexpr int kSlideMs = 500;

// The size of the item itself: a link counts as the link, not its target.
quint64 itemSize(const QString& path) {
    struct stat info;
    return statWithoutFollowing(nativePath(path), &info) == 0 ? quint64(info.st_size) : 0;
}

// Whether the item itself (a link is the link) is a folder.
bool isFolder(const QString& path) {
    struct stat info;
    return statWithoutFollowing(nativePath(path), &info) == 0 && S_ISDIR(info.st_mode);
}

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
      m_model(new FileEraserTableModel(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    createHeader();
    createAddView();
    createListView();
    m_levelPanel = new SlidePanel(this);
    m_historyPanel = new SlidePanel(this);
    m_eraserTimer->setInterval(1000);
    connect(m_eraserTimer, &QTimer::timeout, this, &FileEraserViewController::eraserTimeAction);
    updateHistoryButton();
    showMainView();
    returnSelectAllState();
}

void FileEraserViewController::createHeader() {
    QLabel* title = Style::label("Erase Files", 22, false, true);
    title->setParent(this);
    title->setGeometry(40, 28, 400, 34);
    QLabel* subtitle = Style::label("Overwrite files and folders so that no tool can bring them back.", 12, true);
    subtitle->setParent(this);
    subtitle->setGeometry(40, 62, 520, 20);

    m_sortButton = headerButton("ic_sort", "Sort", this);
    m_sortButton->move(640, 36);
    connect(m_sortButton, &ImageToggle::clicked, this, &FileEraserViewController::sortButtonAction);
    auto* settings = headerButton("ic_setting", "Erasure level", this);
    settings->move(680, 36);
    connect(settings, &ImageToggle::clicked, this, &FileEraserViewController::setButtonAction);
    m_historyButton = headerButton("ic_nohistory", "Erasure history", this);
    m_historyButton->move(720, 36);
    connect(m_historyButton, &ImageToggle::clicked, this, &FileEraserViewController::historyButtonAction);
}

void FileEraserViewController::createAddView() {
    m_addView = new QWidget(this);
    m_addView->setGeometry(0, kContentTop, width(), height() - kContentTop);
    m_dragView = new DragView(m_addView);
    m_dragView->setGeometry(112, 50, 560, 280);
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

    QLabel* hint = Style::label("Nothing is erased before you confirm. Erased data cannot be recovered.", 11, true);
    hint->setParent(m_addView);
    hint->setAlignment(Qt::AlignCenter);
    hint->setGeometry(0, 350, width(), 20);
}

void FileEraserViewController::createListView() {
    m_listView = new DragOneFileView(this);
    m_listView->setGeometry(0, kContentTop - 4, width(), height() - kContentTop + 4);
    connect(m_listView, &DragOneFileView::viewDragAction, this, &FileEraserViewController::viewDragAction);

    m_tableView = new QTableView(m_listView);
    m_tableView->setModel(m_model);
    m_tableView->setItemDelegate(new FileEraserTableDelegate(m_tableView));
    m_tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tableView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tableView->setContextMenuPolicy(Qt::CustomContextMenu);
    QList<int> columnWidths;
    for (int column = 0; column < FileEraserTableModel::ColumnCount; ++column)
        columnWidths.append(FileEraserTableModel::columnWidth(column));
    applyListTableLook(m_tableView, 36, columnWidths);
    QHeaderView* header = m_tableView->horizontalHeader();
    connect(m_tableView, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == FileEraserTableModel::CheckBox) selectListButton(index.row());
        if (index.column() == FileEraserTableModel::Search) openFileButton(index.row());
    });
    connect(m_tableView, &QWidget::customContextMenuRequested, this, &FileEraserViewController::listRightMouseDown);

    m_selectAllButton = new ImageToggle("checkbox_no", header->viewport());
    m_selectAllButton->setToolTip("Select all");
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
    qInfo("userName====:%s", qUtf8Printable(userName));
    qInfo("userSelectSavePath====:%s", qUtf8Printable(folder));
    panel->close();
    m_newPathStr = AddFilesPanel::userFolderForAdministratorFolder(folder, userName);
    qInfo("lastSavePath====:%s", qUtf8Printable(m_newPathStr));
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
    for (const QString& chosen : paths) {
        // cleanPath edits the text only, so the bytes of every name stay as they are.
        const QString path = QDir::cleanPath(chosen);
        // The whole system is never a candidate: the add ends here, silently.
        if (path == "/") return;
        const bool listed = std::any_of(m_valueArr.cbegin(), m_valueArr.cend(),
                                        [&path](const FileObj& record) { return record.url == path; });
        if (listed) continue;
        addFileToArr(path, isFolder(path));
    }
    if (m_valueArr.isEmpty()) return;
    reloadData();
    updateHistoryButton();
    showListView();
    returnSelectAllState();
}

void FileEraserViewController::addFileToArr(const QString& path, bool isDir) {
    if (ReadOnlyVolume::contains(path)) {
        showNTFSWindow();
        return;
    }
    FileObj record;
    record.name = path.mid(path.lastIndexOf('/') + 1);
    record.url = path;
    record.isSelect = true;
    record.isDir = isDir;
    if (isDir) {
        record.type = "Folder";
    } else {
        record.size = itemSize(path);
        const qsizetype dot = record.name.lastIndexOf('.');
        record.type = dot < 0 ? QString() : record.name.mid(dot + 1);
    }
    m_valueArr.append(record);
    ++m_listRevision;
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
    slide->setEndValue(QPoint(kListHiddenX, m_listView->y()));
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

void FileEraserViewController::updateHistoryButton() {
    const bool hasHistory = PublicUtilities::getUpDataHistoryStr(DoDataBase::kWipeFileHistory).toInt() != 0;
    m_historyButton->setImageName(hasHistory ? "ic_history" : "ic_nohistory");
}

void FileEraserViewController::showListView() {
    m_addView->hide();
    m_sortButton->show();
    if (m_listView->isVisible() && m_listView->x() == 0) return;
    m_listView->move(kListHiddenX, m_listView->y());
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
    m_listView->move(hasItems ? 0 : kListHiddenX, m_listView->y());
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
    if (!QDesktopServices::openUrl(fileUrl(path))) showNotice("Cannot open file", displayPath(path));
}

void FileEraserViewController::revealInFolder(int row) {
    if (row < 0 || row >= m_valueArr.size()) return;
    const QString path = m_valueArr.at(row).url;
    bool shown = false;
    const QString folder = path.left(qMax<qsizetype>(path.lastIndexOf('/'), 1));
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS && itemExists("/usr/bin/open"))
        shown = QProcess::startDetached("/usr/bin/open", {"-R", path});
    else
        shown = itemExists(folder) && QDesktopServices::openUrl(fileUrl(folder));
    if (!shown) showNotice("Cannot open Folder", displayPath(path));
}

// ---- Side panels -----------------------------------------------------------

void FileEraserViewController::setButtonAction() { SetEraserLevelVC::showIn(m_levelPanel); }

void FileEraserViewController::historyButtonAction() {
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
    if (m_superDelegate) m_superDelegate->canChangeType(false);
    m_eraserTimeR = 0;
    m_eraserTimer->start();
    eraserTimeAction();
    m_engine->benginToTraskWithArr(eraseList);
    // Progress counts every item the run touches, folder contents included.
    m_eraseCount = m_engine->itemCount();
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

void FileEraserViewController::removeProgress(float progress, const QString& path, int index) {
    if (!m_progressPanel) return;
    m_progressPanel->setRemoveProgress(qMax(double(progress), 2.0), displayPath(path),
                                       QString::asprintf("%d of %d items", index, m_eraseCount));
}

void FileEraserViewController::haveFailEraser() { m_isFailedEraser = true; }

void FileEraserViewController::cancelEraserButtonAction() { cancelShred(); }

void FileEraserViewController::cancelShred() {
    m_isCancel = true;
    if (m_engine) m_engine->isCancel();
}

void FileEraserViewController::removeObjEnd(const FileObjList& results) {
    if (m_progressPanel) m_progressPanel->close();
    m_eraserTimer->stop();
    if (m_superDelegate) m_superDelegate->canChangeType(true);

    // Erased only when the engine erased the item (the tool succeeded) and nothing is
    // left at its path. The results follow the ticked records in order; records the
    // run did not reach (cancelled) have none.
    FileObjList remaining;
    qsizetype next = 0;
    for (FileObj record : std::as_const(m_valueArr)) {
        if (!record.isSelect) {
            remaining.append(record);
            continue;
        }
        const FileObj* outcome = next < results.size() ? &results.at(next) : nullptr;
        ++next;
        const bool erased = outcome && outcome->failStr == "Success" && !itemExists(record.url);
        record.failStr = erased ? "Erased" : "Failed";
        if (!erased)
            record.failReason = outcome && !outcome->failReason.isEmpty() ? outcome->failReason
                                : outcome ? "it is still there" : "the erase did not reach it";
        if (!erased) m_isFailedEraser = true;
        m_deleteErrorArr.append(record);
    }

    if (m_isFailedEraser || m_isCancel) {
        m_failPanel = new FileEraserFailViewController(m_deleteErrorArr, m_isCancel, this);
        m_failPanel->open();
    } else {
        m_successPanel = new FileEraserSuccessViewController(m_deleteErrorArr, this);
        m_successPanel->open();
    }

    DoDataBase::returnDoDataBase()->writePlistForHistoryWithArr(m_deleteErrorArr);
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeFileHistory, "1");
    updateHistoryButton();
    m_valueArr = remaining;
    ++m_listRevision;
    reloadData();
    showMainView();
    returnSelectAllState();
}

}  // namespace velmora
