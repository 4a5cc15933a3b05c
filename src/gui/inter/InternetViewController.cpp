#include "gui/inter/InternetViewController.h"

#include "engine/inter/BrowserCatalogue.h"
#include "engine/inter/BrowserTicks.h"
#include "engine/inter/FullDiskAccessAuthorizer.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/FileEraserTableDelegate.h"
#include "gui/inter/BrowserTableModel.h"
#include "gui/inter/CategoryTableModel.h"
#include "gui/inter/CleanerInterEndViewController.h"
#include "gui/inter/CloseBrowerViewController.h"
#include "gui/inter/FullDiskAccessViewController.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/ListTable.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/Style.h"
#include "gui/widgets/SvgImageView.h"

#include <QFutureWatcher>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>
#include <QtConcurrent>

namespace velmora {
namespace {

constexpr int kMargin = 26;
constexpr int kBrowserTableWidth = 236;
constexpr int kRescanDelayMs = 1000;  // lets the closed browsers finish writing before the scan

struct CloseResult {
    bool closed = false;
    QString failure;
};

}  // namespace

InternetViewController::InternetViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent),
      m_superDelegate(superDelegate),
      m_catalogue(new BrowserCatalogue(this)),
      m_cleanJob(new BrowserCleanJob(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    // The page grows with the window: the views take the room under the header.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 28, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(createHeader());
    m_views = new QStackedWidget(this);
    layout->addWidget(m_views, 1);
    m_startView = createStartView();
    m_scanningView = createScanningView();
    m_resultView = createResultView();
    m_views->addWidget(m_startView);
    m_views->addWidget(m_scanningView);
    m_views->addWidget(m_resultView);
    m_views->setCurrentWidget(m_startView);

    connect(m_catalogue, &BrowserCatalogue::scanProgress, this,
            [this](const QString& name) { m_scanningLabel->setText(QString("Found %1").arg(displayPath(name))); });
    connect(m_catalogue, &BrowserCatalogue::browserArrReady, this, &InternetViewController::browserArrReady);
    connect(m_cleanJob, &BrowserCleanJob::progress, this,
            [this](int done, int total, const QString& browser, const QString& category) {
                m_noticeLabel->setText(QString("Cleaning %1 of %2: %3, %4")
                                           .arg(done + 1 > total ? total : done + 1)
                                           .arg(total)
                                           .arg(displayPath(browser), category));
                m_noticeLabel->show();
            });
    connect(m_cleanJob, &BrowserCleanJob::finished, this, &InternetViewController::cleanFinished);
}

// The catalogue and the clean job wait for their background work when they go.
InternetViewController::~InternetViewController() = default;

QLayout* InternetViewController::createHeader() {
    QLabel* title = Style::label("Internet Cleaner", 22, false, true);
    QLabel* subtitle =
        Style::label("Remove what browsers keep: history, cookies, caches, downloads and saved form data.", 12, true);
    subtitle->setWordWrap(true);
    m_noticeLabel = Style::label(QString(), 12, true);
    m_noticeLabel->setObjectName("noticeLine");
    m_noticeLabel->setTextFormat(Qt::PlainText);
    m_noticeLabel->setWordWrap(true);
    m_noticeLabel->hide();
    auto* header = new QVBoxLayout;
    header->setContentsMargins(40, 0, 40, 8);
    header->setSpacing(4);
    header->addWidget(title);
    header->addWidget(subtitle);
    header->addWidget(m_noticeLabel);
    return header;
}

QWidget* InternetViewController::createStartView() {
    auto* view = new QWidget(m_views);
    auto* image = new SvgImageView("ic_internet", {96, 96}, view);
    QLabel* text = Style::label("Find the browsers on this computer and the data they keep.", 14);
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    QLabel* hint = Style::label("Running browsers are closed first, only after you agree.", 12, true);
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true);
    m_scanButton = ImageSetButton::primary("Scan", view);
    m_scanButton->setMinimumWidth(150);
    connect(m_scanButton, &QPushButton::clicked, this, &InternetViewController::checkOpenBrower);
    auto* layout = new QVBoxLayout(view);
    layout->setContentsMargins(kMargin, 0, kMargin, 0);
    layout->setSpacing(8);
    layout->addStretch(2);
    layout->addWidget(image, 0, Qt::AlignHCenter);
    layout->addSpacing(16);
    layout->addWidget(text);
    layout->addWidget(hint);
    layout->addSpacing(30);
    layout->addWidget(m_scanButton, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    return view;
}

QWidget* InternetViewController::createScanningView() {
    auto* view = new QWidget(m_views);
    m_scanIndicator = new MLCircularIndicator(view, 120);
    m_scanningLabel = Style::label("Looking for browsers", 13, true);
    m_scanningLabel->setTextFormat(Qt::PlainText);
    m_scanningLabel->setAlignment(Qt::AlignCenter);
    m_scanningLabel->setWordWrap(true);
    auto* layout = new QVBoxLayout(view);
    layout->setContentsMargins(kMargin, 0, kMargin, 0);
    layout->setSpacing(20);
    layout->addStretch(2);
    layout->addWidget(m_scanIndicator, 0, Qt::AlignHCenter);
    layout->addWidget(m_scanningLabel);
    layout->addStretch(3);
    return view;
}

QTableView* InternetViewController::createTable(QAbstractItemModel* model, const QList<int>& columnWidths) {
    auto* table = new QTableView(m_resultView);
    table->setModel(model);
    table->setItemDelegate(new FileEraserTableDelegate(table));
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    applyListTableLook(table, 40, columnWidths);
    table->horizontalHeader()->setStretchLastSection(true);
    // From the keyboard: Tab into a table (a ring shows), Up and Down move, Space ticks.
    table->setFocusPolicy(Qt::TabFocus);
    table->setTabKeyNavigation(false);
    table->setStyleSheet(table->styleSheet() + QString("QTableView:focus { border: 2px solid %1; border-radius: 6px; }")
                                                   .arg(Style::rgba(Style::kAccent)));
    table->installEventFilter(this);
    connect(table, &QTableView::clicked, this, [this, table](const QModelIndex& index) { tableClicked(table, index); });
    return table;
}

QWidget* InternetViewController::createResultView() {
    m_resultView = new QWidget(m_views);
    m_foundLabel = Style::label(QString(), 13, true);
    m_detailLabel = Style::label(QString(), 15, false, true);
    m_detailLabel->setTextFormat(Qt::PlainText);

    m_browserModel = new BrowserTableModel(this);
    m_browserTable = createTable(m_browserModel, {BrowserTableModel::columnWidth(BrowserTableModel::CheckBox),
                                                  BrowserTableModel::columnWidth(BrowserTableModel::Name)});
    m_browserTable->setFixedWidth(kBrowserTableWidth);
    connect(m_browserTable->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid() && current.row() != m_broSelectIndex) highlightBrowser(current.row());
            });
    m_noBrowserLabel = Style::label("No browser found", 13, true);
    m_noBrowserLabel->setAlignment(Qt::AlignCenter);
    m_noBrowserLabel->setContentsMargins(0, 60, 0, 0);
    m_noBrowserLabel->setAttribute(Qt::WA_TransparentForMouseEvents);

    m_categoryModel = new CategoryTableModel(this);
    QList<int> widths;
    for (int column = 0; column < CategoryTableModel::ColumnCount; ++column)
        widths.append(CategoryTableModel::columnWidth(column));
    m_categoryTable = createTable(m_categoryModel, widths);
    // The names take the room a wider window gives; the counts stay beside them at the right.
    m_categoryTable->horizontalHeader()->setStretchLastSection(false);
    m_categoryTable->horizontalHeader()->setSectionResizeMode(CategoryTableModel::Name, QHeaderView::Stretch);

    m_thoroughButton = new ImageToggle("checkbox_no", m_resultView);
    m_thoroughButton->setToolTip("Thorough cleaning");
    m_thoroughButton->setAccessibleName("Thorough cleaning");
    connect(m_thoroughButton, &ImageToggle::clicked, this, [this] {
        m_thoroughButton->setImageName(isThorough() ? "checkbox_no" : "checkbox_yes");
    });
    m_thoroughLabel = Style::label("Thorough: rewrite each cleaned database, so that deleted rows leave no trace "
                                   "in it (slower)",
                                   11, true);
    m_thoroughLabel->setWordWrap(true);
    m_thoroughLabel->installEventFilter(this);

    m_cleanIndicator = new MLCircularIndicator(m_resultView, 30);
    m_cleanIndicator->setIndeterminate(true);
    m_cleanIndicator->hide();
    m_cleanButton = ImageSetButton::primary("Clean", m_resultView);
    m_cleanButton->setMinimumWidth(130);
    connect(m_cleanButton, &QPushButton::clicked, this, &InternetViewController::cleanButtonAction);
    m_backButton = ImageSetButton::secondary("Back", m_resultView);
    m_backButton->setMinimumWidth(100);
    connect(m_backButton, &QPushButton::clicked, this, &InternetViewController::backButtonAction);

    // The browsers at the left, the chosen browser's categories taking the rest.
    auto* layout = new QGridLayout(m_resultView);
    layout->setContentsMargins(kMargin, 6, kMargin, 30);
    layout->setHorizontalSpacing(16);
    layout->setVerticalSpacing(6);
    layout->addWidget(m_foundLabel, 0, 0);
    layout->addWidget(m_detailLabel, 0, 1);
    layout->addWidget(m_browserTable, 1, 0);
    layout->addWidget(m_noBrowserLabel, 1, 0, Qt::AlignTop);
    layout->addWidget(m_categoryTable, 1, 1);
    layout->setRowStretch(1, 1);
    layout->setColumnStretch(1, 1);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(8, 12, 0, 0);
    footer->setSpacing(12);
    footer->addWidget(m_thoroughButton);
    footer->addWidget(m_thoroughLabel, 1);
    footer->addWidget(m_cleanIndicator);
    footer->addWidget(m_backButton);
    footer->addWidget(m_cleanButton);
    layout->addLayout(footer, 2, 0, 1, 2);
    // The order Tab follows: the tables, the option, then the buttons.
    setTabOrder(m_browserTable, m_categoryTable);
    setTabOrder(m_categoryTable, m_thoroughButton);
    setTabOrder(m_thoroughButton, m_backButton);
    setTabOrder(m_backButton, m_cleanButton);
    return m_resultView;
}

CloseBrowerViewController* InternetViewController::closePanel() const { return m_closePanel; }
FullDiskAccessViewController* InternetViewController::accessPanel() const { return m_accessPanel; }

bool InternetViewController::isThorough() const { return m_thoroughButton->imageName() == "checkbox_yes"; }

// ---- Scan --------------------------------------------------------------------

void InternetViewController::checkOpenBrower() {
    if (!m_isCanClick) return;
    m_isClose = false;
    m_allOpenId.clear();
    m_noticeLabel->hide();
    showScanningView();
    findRunningBrowsers([] { return RunningBrowsers::checkOpenBrower(); }, [this] {
        if (m_allOpenId.isEmpty())
            getBrowserArr();
        else
            showClosePanel();
    });
}

void InternetViewController::getBrowserArr() {
    showScanningView();
    if (!showAccessPanelIfNeeded([this] { scanCatalogue(); })) scanCatalogue();
}

void InternetViewController::showScanningView() {
    setBusy(true);
    m_scanningLabel->setText("Looking for browsers");
    m_scanIndicator->setIndeterminate(true);
    m_views->setCurrentWidget(m_scanningView);
}

// A scan that ends before listing anything (its close question cancelled, or a quit)
// goes back to the start view; a clean run stays on the results.
void InternetViewController::endWithoutScan() {
    if (m_views->currentWidget() == m_scanningView) m_views->setCurrentWidget(m_startView);
    setBusy(false);
}

void InternetViewController::scanCatalogue() {
    m_browserArr.clear();
    m_catalogue->getBrowserArr();
}

void InternetViewController::browserArrReady(const BrowserArr& browserArr) {
    m_scanIndicator->setIndeterminate(false);
    m_browserArr = browserArr;
    m_browserModel->reloadData(m_browserArr);
    m_foundLabel->setText(m_browserArr.size() == 1 ? QString("1 browser")
                                                   : QString("%1 browsers").arg(m_browserArr.size()));
    m_noBrowserLabel->setVisible(m_browserArr.isEmpty());
    m_broSelectIndex = -1;
    highlightBrowser(m_browserArr.isEmpty() ? -1 : 0);
    m_views->setCurrentWidget(m_resultView);
    setBusy(false);
}

// Shows the access panel when browser folders cannot be read; `then` runs
// once it is closed. Answers whether the panel was shown.
bool InternetViewController::showAccessPanelIfNeeded(const std::function<void()>& then) {
    FullDiskAccessAuthorizer& authorizer = FullDiskAccessAuthorizer::sharedInstance();
    if (!authorizer.needsPanel()) return false;
    m_accessPanel = new FullDiskAccessViewController(authorizer.unreadableFolder(), authorizer.unreadableReason(), this);
    connect(m_accessPanel, &QDialog::finished, this, [then] { then(); });
    m_accessPanel->open();
    return true;
}

// ---- Tables ------------------------------------------------------------------

void InternetViewController::highlightBrowser(int row) {
    if (row >= m_browserArr.size()) return;
    m_broSelectIndex = row;
    const BrowerObjPtr browser = row >= 0 ? m_browserArr.at(row) : nullptr;
    m_categoryModel->showBrowser(browser);
    m_categoryTable->clearSelection();
    m_detailLabel->setText(browser ? displayPath(browser->name) : QString());
    if (row >= 0 && m_browserTable->currentIndex().row() != row)
        m_browserTable->setCurrentIndex(m_browserModel->index(row, BrowserTableModel::Name));
    if (row < 0) m_browserTable->clearSelection();
    changeCleanButtonState();
}

void InternetViewController::tableClicked(QTableView* table, const QModelIndex& index) {
    if (!m_isCanClick || !index.isValid()) return;
    if (table == m_browserTable) {
        if (index.column() == BrowserTableModel::CheckBox) selectBrower(m_browserModel->browserAt(index.row()));
    } else if (index.column() == CategoryTableModel::CheckBox) {
        selectBrower(m_categoryModel->categoryAt(index.row()));
    }
}

void InternetViewController::selectBrower(BrowerObj* entry) {
    if (!m_isCanClick || !entry) return;
    BrowserTicks::selectBrower(*entry);
    redrawTables();
    changeCleanButtonState();
}

void InternetViewController::redrawTables() {
    m_browserModel->redraw();
    m_categoryModel->redraw();
}

void InternetViewController::changeCleanButtonState() {
    m_cleanButton->setEnabled(m_isCanClick && BrowserTicks::canClean(m_browserArr));
}

bool InternetViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_thoroughLabel && event->type() == QEvent::MouseButtonRelease) {
        if (m_thoroughButton->isEnabled()) m_thoroughButton->click();
        return true;
    }
    if ((watched == m_browserTable || watched == m_categoryTable) && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
        const int row = static_cast<QTableView*>(watched)->currentIndex().row();
        selectBrower(watched == m_browserTable ? m_browserModel->browserAt(row) : m_categoryModel->categoryAt(row));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void InternetViewController::backButtonAction() {
    if (m_isCanClick) m_views->setCurrentWidget(m_startView);
}

// ---- Running browsers --------------------------------------------------------

// Reading every process and matching it against the catalogue's programs takes long on
// a busy machine: it runs on the background queue while the page stays locked. The
// entries it reads do not change meanwhile (the page is locked). A quit asked for
// meanwhile ends the request there.
void InternetViewController::findRunningBrowsers(const std::function<QList<RunningBrowser>()>& find,
                                                 const std::function<void()>& then) {
    auto* watcher = new QFutureWatcher<QList<RunningBrowser>>(this);
    connect(watcher, &QFutureWatcher<QList<RunningBrowser>>::finished, this, [this, watcher, then] {
        watcher->deleteLater();
        m_allOpenId = watcher->result();
        if (m_stopRequested)
            endWithoutScan();
        else
            then();
    });
    watcher->setFuture(QtConcurrent::run(find));
}

void InternetViewController::showClosePanel() {
    m_closePanel = new CloseBrowerViewController(RunningBrowsers::joinedNames(m_allOpenId), this);
    connect(m_closePanel, &QDialog::finished, this, &InternetViewController::closePanelEnded);
    m_closePanel->open();
}

// "Close" ends the browsers and rebuilds the list a second later: nothing is
// cleaned in this pass, the user presses Clean again. "Cancel" ends here.
void InternetViewController::closePanelEnded(int code) {
    if (code != QDialog::Accepted) {
        endWithoutScan();
        return;
    }
    m_isClose = true;
    closeRunningBrowsers();
}

void InternetViewController::closeRunningBrowsers() {
    auto* watcher = new QFutureWatcher<CloseResult>(this);
    connect(watcher, &QFutureWatcher<CloseResult>::finished, this, [this, watcher] {
        const CloseResult result = watcher->result();
        watcher->deleteLater();
        if (!result.closed) {
            m_noticeLabel->setText(result.failure);
            m_noticeLabel->show();
        }
        QTimer::singleShot(kRescanDelayMs, this, &InternetViewController::getBrowserArr);
    });
    // Waiting for the processes to end takes up to seconds: not on the page's thread.
    watcher->setFuture(QtConcurrent::run([running = m_allOpenId] {
        CloseResult result;
        result.closed = RunningBrowsers::closeBrowsers(running, &result.failure);
        return result;
    }));
}

// ---- Clean -------------------------------------------------------------------

void InternetViewController::cleanButtonAction() {
    if (!m_isCanClick || !BrowserTicks::canClean(m_browserArr)) return;
    m_noticeLabel->hide();
    setBusy(true);
    m_isClose = false;
    m_allOpenId.clear();
    findRunningBrowsers([browserArr = m_browserArr] { return RunningBrowsers::checkOpenBrower(browserArr); }, [this] {
        if (m_allOpenId.isEmpty())
            cleanBrowerFiles();
        else
            showClosePanel();
    });
}

// Safari's data (and on Linux any browser folder) may be unreadable: the
// access panel is shown first, and the run goes on after it regardless.
void InternetViewController::cleanBrowerFiles() {
    bool asksAccess = StandardPaths::layout() == StandardPaths::Layout::Linux;
    for (const BrowerObjPtr& browser : std::as_const(m_browserArr))
        asksAccess = asksAccess || (browser->isSelect != 0 && browser->rules == BrowserRules::Safari);
    if (!asksAccess || !showAccessPanelIfNeeded([this] { startCleanJob(); })) startCleanJob();
}

void InternetViewController::startCleanJob() {
    if (m_stopRequested) {
        setBusy(false);
        return;
    }
    m_cleanIndicator->show();
    CleanOptions options;
    options.thorough = isThorough();
    m_cleanJob->cleanBrowerFiles(m_browserArr, options);
}

void InternetViewController::cleanFinished(const QList<CleanOutcome>& outcomes) {
    m_cleanIndicator->hide();
    m_noticeLabel->hide();
    int cleaned = 0;
    int skipped = 0;
    QStringList failures;
    for (const CleanOutcome& outcome : outcomes) {
        if (outcome.status == CleanOutcome::Status::Cleaned) ++cleaned;
        if (outcome.status == CleanOutcome::Status::Skipped) ++skipped;
        if (outcome.status == CleanOutcome::Status::Failed)
            failures.append(QString("%1 / %2: %3").arg(displayPath(outcome.browserName), outcome.categoryName,
                                                       displayPath(outcome.reason)));
    }
    setBusy(false);
    m_cleanButton->setEnabled(false);
    redrawTables();
    if (!m_endPanel) m_endPanel = new CleanerInterEndViewController(this);
    m_endPanel->setResult(cleaned, skipped, failures);
    m_endPanel->open();
}

void InternetViewController::stopJob() {
    if (m_isCanClick) return;  // no job
    m_stopRequested = true;
    if (m_cleanJob->isRunning())
        m_cleanJob->stop();
    else if (m_closePanel && m_closePanel->isVisible())
        m_closePanel->reject();
    else if (m_accessPanel && m_accessPanel->isVisible())
        m_accessPanel->reject();
}

// ---- Shared ------------------------------------------------------------------

// A scan, the close dialog and a clean run lock the sidebar and the page.
void InternetViewController::setBusy(bool busy) {
    m_isCanClick = !busy;
    if (!busy) m_stopRequested = false;
    if (m_superDelegate) m_superDelegate->canChangeType(!busy, this);
    m_scanButton->setEnabled(!busy);
    m_backButton->setEnabled(!busy);
    m_thoroughButton->setEnabled(!busy);
    m_browserTable->setEnabled(!busy);
    m_categoryTable->setEnabled(!busy);
    changeCleanButtonState();
}

}  // namespace velmora
