#include "gui/history/HistoryViewController.h"

#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/HistoryReport.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/StandardPaths.h"
#include "gui/history/ExportViewController.h"
#include "gui/history/HistoryConfirmViewController.h"
#include "gui/history/HistoryDeleteTextFieldCell.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"
#include "gui/widgets/SvgImageView.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtConcurrent>
#include <algorithm>
#include <memory>

namespace velmora {
namespace {

enum Column { Name, Type, State };

// Entries (with their rows) the outline takes per event-loop turn from a loaded history.
constexpr qsizetype kEntriesPerTurn = 500;

bool isCaptionRow(const QTreeWidgetItem* row) { return row->parent() && row->text(Name) == "Items"; }

// The row number of an outline row as it is shown, counting every visible row: the
// entries above with their rows when expanded, then the rows above it in its own entry.
int visibleRowNumber(QTreeWidgetItem* row) {
    QTreeWidget* outline = row->treeWidget();
    QTreeWidgetItem* entry = row->parent() ? row->parent() : row;
    const int entryIndex = outline->indexOfTopLevelItem(entry);
    int number = 0;
    for (int index = 0; index < entryIndex; ++index) {
        QTreeWidgetItem* above = outline->topLevelItem(index);
        number += 1 + (above->isExpanded() ? above->childCount() : 0);
    }
    return row->parent() ? number + 1 + entry->indexOfChild(row) : number;
}

}  // namespace

HistoryViewController::HistoryViewController(QWidget* parent)
    : QWidget(parent),
      m_outlineView(new QTreeWidget(this)),
      m_noView(new QWidget(this)),
      m_emptyAllButton(ImageSetButton::secondary("Empty All", this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 28, 40, 24);
    layout->setSpacing(6);

    auto* titleRow = new QHBoxLayout;
    titleRow->addWidget(Style::label("Erasure History", 22, false, true));
    titleRow->addStretch(1);
    m_closeButton = new ImageToggle("ic_close", this, 26);
    auto* close = m_closeButton;
    close->setToolTip("Close");
    connect(close, &ImageToggle::clicked, this, &HistoryViewController::closeButtonAction);
    titleRow->addWidget(close);
    layout->addLayout(titleRow);
    layout->addWidget(Style::label("Select a run to export it as an HTML report or to delete it.", 12, true));
    layout->addSpacing(12);

    m_outlineView->setColumnCount(3);
    m_outlineView->setHeaderHidden(true);
    m_outlineView->setIndentation(18);
    m_outlineView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_outlineView->setFocusPolicy(Qt::StrongFocus);
    m_outlineView->setTextElideMode(Qt::ElideMiddle);
    m_outlineView->setUniformRowHeights(true);
    m_outlineView->setStyleSheet(QString("QTreeView::item { height: 30px; }"
                                         "QTreeView:focus { border: 2px solid %1; border-radius: 6px; }")
                                     .arg(Style::rgba(Style::kAccent)));
    RFOverlayScroller::apply(m_outlineView);
    m_outlineView->header()->setStretchLastSection(false);
    m_outlineView->header()->setSectionResizeMode(Name, QHeaderView::Stretch);
    m_outlineView->header()->setSectionResizeMode(Type, QHeaderView::Fixed);
    m_outlineView->header()->setSectionResizeMode(State, QHeaderView::Fixed);
    // The level names and results are never cut: their columns fit the longest of them.
    const QFontMetrics levelMetrics(Style::regularFont(12));
    int levelWidth = 0;
    for (int level : {1, 2, 3, 7, 35})
        levelWidth = qMax(levelWidth, levelMetrics.horizontalAdvance(EraserLevel::displayName(level)));
    m_outlineView->header()->resizeSection(Type, qMax(230, levelWidth + 16));
    int resultWidth = 70;  // the export and delete buttons of an entry
    for (const char* result : {"Erased", "Failed", "Cancelled", "Result"})
        resultWidth = qMax(resultWidth, QFontMetrics(Style::boldFont(12)).horizontalAdvance(result));
    m_outlineView->header()->resizeSection(State, resultWidth + 20);
    connect(m_outlineView, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current) {
        if (current) selectRow(current);
    });
    layout->addWidget(m_outlineView, 1);

    auto* noLayout = new QVBoxLayout(m_noView);
    noLayout->addStretch(1);
    auto* picture = new SvgImageView("img_nohistory", {150, 120}, m_noView);
    noLayout->addWidget(picture, 0, Qt::AlignHCenter);
    noLayout->addSpacing(12);
    noLayout->addWidget(Style::label("No erasure history", 16, false, true), 0, Qt::AlignHCenter);
    noLayout->addWidget(Style::label("Every finished erasure is listed here with its items and results.", 12, true),
                        0, Qt::AlignHCenter);
    noLayout->addStretch(2);
    layout->addWidget(m_noView, 1);

    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    bottom->addWidget(m_emptyAllButton);
    layout->addSpacing(10);
    layout->addLayout(bottom);
    connect(m_emptyAllButton, &QPushButton::clicked, this, [this] {
        askBeforeDeleting("Delete all erasure history?",
                          "Every entry of the history is deleted, those of the drive and free-space erasures too.",
                          [this] { emptyAllButtonAction(); });
    });
}

ExportViewController* HistoryViewController::exportPanel() const { return m_exportPanel; }
HistoryConfirmViewController* HistoryViewController::confirmPanel() const { return m_confirmPanel; }

HistoryViewController* HistoryViewController::showIn(SlidePanel* container) {
    auto* history = new HistoryViewController;
    container->setContent(history);
    history->loadEraserHistory();
    container->setCancelButton(history->m_closeButton);
    container->slideIn();
    return history;
}

// The outline's rows, made apart from the outline (on the reading thread when the
// history is loaded); rows never handed to the outline are deleted with this.
struct HistoryViewController::OutlineRows {
    HistoryDic history;
    QStringList newestFirst;
    QList<QTreeWidgetItem*> entries;
    qsizetype handedOver = 0;  // entries before this one belong to the outline
    ~OutlineRows() { qDeleteAll(entries.begin() + handedOver, entries.end()); }
};

std::shared_ptr<HistoryViewController::OutlineRows> HistoryViewController::makeOutlineRows(HistoryDic history) {
    auto rows = std::make_shared<OutlineRows>();
    rows->history = std::move(history);
    rows->newestFirst = rows->history.keys();
    // Keys are timestamps of one fixed format: descending order is newest first.
    std::sort(rows->newestFirst.begin(), rows->newestFirst.end(),
              [](const QString& a, const QString& b) { return b.compare(a) < 0; });
    const QFont entryFont = Style::boldFont(13);
    const QFont captionFont = Style::boldFont(11);
    const QFont rowFont = Style::regularFont(12);
    rows->entries.reserve(rows->newestFirst.size());
    for (const QString& key : std::as_const(rows->newestFirst)) {
        auto* entry = new QTreeWidgetItem(QStringList{key, QString(), QString()});
        entry->setFont(Name, entryFont);
        entry->setForeground(Name, Style::kText);
        for (const HistoryRow& values : rows->history.value(key)) {
            auto* row = new QTreeWidgetItem(entry, {values.value("Items"), values.value("Erasure Standard"),
                                                    values.value("Result")});
            row->setToolTip(Name, values.value("Items"));
            // A leaf: the outline's layout then skips looking up whether the row is expanded.
            row->setFlags(row->flags() | Qt::ItemNeverHasChildren);
            const bool caption = row->text(Name) == "Items";
            for (int column = Name; column <= State; ++column) {
                row->setFont(column, caption ? captionFont : rowFont);
                row->setForeground(column, caption ? Style::kAccent : Style::kSecondaryText);
            }
        }
        rows->entries.append(entry);
    }
    return rows;
}

void HistoryViewController::getEraserHistory() {
    ++m_loadNumber;
    m_loading = false;
    showHistory(*makeOutlineRows(DoDataBase::returnDoDataBase()->getAllData()));
}

void HistoryViewController::loadEraserHistory() {
    m_loading = true;
    // Until the history is read the panel claims neither entries nor their absence.
    m_noView->hide();
    m_emptyAllButton->setEnabled(false);
    const int load = ++m_loadNumber;
    using Rows = std::shared_ptr<OutlineRows>;
    auto* reader = new QFutureWatcher<Rows>(this);
    connect(reader, &QFutureWatcher<Rows>::finished, this, [this, reader, load] {
        reader->deleteLater();
        if (load != m_loadNumber) return;
        const Rows rows = reader->result();
        startShowing(*rows);
        handOverInTurns(rows, load);
    });
    reader->setFuture(QtConcurrent::run([] { return makeOutlineRows(DoDataBase::returnDoDataBase()->getAllData()); }));
}

void HistoryViewController::showHistory(OutlineRows& rows) {
    startShowing(rows);
    handOver(rows, rows.entries.size());
    finishShowing();
}

void HistoryViewController::startShowing(OutlineRows& rows) {
    m_historyDic = rows.history;
    m_historyAllArr = rows.newestFirst;
    m_keyClickStr.clear();
    m_selectCellIndex = -1;
    const QSignalBlocker quiet(m_outlineView);
    m_outlineView->clear();
    m_buttonsEntry = nullptr;
    m_colouredRow = nullptr;
}

// The outline lays out every row it holds after each insertion: a long history goes
// over in parts, one per event-loop turn, so that the window keeps answering meanwhile.
void HistoryViewController::handOverInTurns(const std::shared_ptr<OutlineRows>& rows, int load) {
    if (load != m_loadNumber) return;
    handOver(*rows, kEntriesPerTurn);
    if (rows->handedOver < rows->entries.size()) {
        QTimer::singleShot(0, this, [this, rows, load] { handOverInTurns(rows, load); });
        return;
    }
    m_loading = false;
    finishShowing();
}

// Entries are added expanded: while the outline's layout is pending, expanding only notes it.
void HistoryViewController::handOver(OutlineRows& rows, qsizetype count) {
    const QList<QTreeWidgetItem*> part = rows.entries.mid(rows.handedOver, count);
    rows.handedOver += part.size();
    const QSignalBlocker quiet(m_outlineView);
    m_outlineView->addTopLevelItems(part);
    for (QTreeWidgetItem* entry : part) entry->setExpanded(true);
}

// Only the selected entry gets its buttons (refreshSelection).
void HistoryViewController::finishShowing() {
    refreshSelection();
    // An outline that took the focus while it was still empty makes its first entry
    // current now, as taking the focus does.
    if (m_outlineView->hasFocus() && m_outlineView->topLevelItemCount() > 0)
        m_outlineView->setCurrentItem(m_outlineView->topLevelItem(0));
    const bool empty = m_historyAllArr.isEmpty();
    m_outlineView->setVisible(!empty);
    m_noView->setVisible(empty);
    m_emptyAllButton->setEnabled(!empty);
}

void HistoryViewController::selectRow(QTreeWidgetItem* row) {
    qCInfo(lcHistory, "-select---%s", qUtf8Printable(row->text(Name)));
    m_selectCellIndex = visibleRowNumber(row);
    if (!row->parent()) m_keyClickStr = row->text(Name);
    refreshSelection();
}

// Only the selected entry shows its buttons; the row drawn on the selection takes the
// selection's text colour. Only the rows that change are touched, whatever the length.
void HistoryViewController::refreshSelection() {
    QTreeWidgetItem* selected = m_outlineView->currentItem();
    QTreeWidgetItem* entry = selected && !selected->parent() ? selected : nullptr;
    if (entry != m_buttonsEntry) {
        if (m_buttonsEntry) m_outlineView->removeItemWidget(m_buttonsEntry, State);
        m_buttonsEntry = entry;
        if (entry) {
            auto* buttons = new HistoryDeleteTextFieldCell(entry->text(Name));
            connect(buttons, &HistoryDeleteTextFieldCell::clickExportWithDate, this,
                    &HistoryViewController::clickExportWithDate);
            connect(buttons, &HistoryDeleteTextFieldCell::clickDeleteWithDate, this, [this](const QString& date) {
                askBeforeDeleting("Delete this entry?",
                                  QString("The record of the erasure of %1 is removed from the history.").arg(date),
                                  [this, date] { clickDeleteWithDate(date); });
            });
            m_outlineView->setItemWidget(entry, State, buttons);
        }
    }
    if (m_colouredRow != selected) {
        if (m_colouredRow) colourRow(m_colouredRow, false);
        if (selected) colourRow(selected, true);
        m_colouredRow = selected;
    }
}

void HistoryViewController::colourRow(QTreeWidgetItem* row, bool selected) {
    if (!row->parent()) return;  // an entry keeps its colour
    const QColor colour = selected ? Style::kText : isCaptionRow(row) ? Style::kAccent : Style::kSecondaryText;
    for (int column = Name; column <= State; ++column) row->setForeground(column, colour);
}

void HistoryViewController::askBeforeDeleting(const QString& title, const QString& message,
                                              const std::function<void()>& action) {
    m_confirmPanel = new HistoryConfirmViewController(title, message, this);
    connect(m_confirmPanel, &HistoryConfirmViewController::confirmed, this, action);
    m_confirmPanel->open();
}

void HistoryViewController::clickDeleteWithDate(const QString&) {
    DoDataBase::returnDoDataBase()->deleteDataWithKey(m_keyClickStr);
    getEraserHistory();
    clearHistoryFlagsWhenEmpty();
}

void HistoryViewController::emptyAllButtonAction() {
    for (const QString& key : m_historyDic.keys()) DoDataBase::returnDoDataBase()->deleteDataWithKey(key);
    getEraserHistory();
    clearHistoryFlagsWhenEmpty();
    m_emptyAllButton->setEnabled(false);
    closeButtonAction();
}

// With the last entry gone, the tool pages show their no-history image again.
void HistoryViewController::clearHistoryFlagsWhenEmpty() {
    if (!m_historyDic.isEmpty()) return;
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeFileHistory, "0");
    PublicUtilities::writeUpDataHistoryStr(DoDataBase::kWipeVolumeHistory, "0");
}

void HistoryViewController::closeButtonAction() { emit closeHistoryView(); }

void HistoryViewController::clickExportWithDate(const QString&) { getHistorySavePath(); }

void HistoryViewController::getHistorySavePath() {
    auto* panel = new QFileDialog(this, "Export History");
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setFileMode(QFileDialog::AnyFile);
    const QString desktop = StandardPaths::desktopDir();
    panel->setDirectory(QFileInfo(desktop).isDir() ? desktop : StandardPaths::homeDir());
    // The report is HTML: the panel proposes the name with its ".html" and lists HTML files.
    panel->setNameFilter("HTML Report (*.html)");
    panel->setDefaultSuffix("html");
    panel->selectFile(HistoryReport::proposedFileName() + ".html");
    panel->setWindowModality(Qt::WindowModal);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    // The ".html" the panel shows is the one the export appends: the chosen name is the
    // panel's without it, so that the report is saved under the name the panel showed.
    connect(panel, &QFileDialog::fileSelected, this, [this](const QString& selected) {
        QString chosen = selected;
        if (chosen.endsWith(".html", Qt::CaseInsensitive)) chosen.chop(5);
        exportToChosenPath(chosen);
    });
    panel->open();
}

void HistoryViewController::exportToChosenPath(const QString& chosenPath) {
    const QString path = HistoryReport::exportPath(chosenPath);
    // The report is written on a worker thread; the panel says whether it was, a failed
    // write is never shown as saved.
    auto* writer = new QFutureWatcher<bool>(this);
    connect(writer, &QFutureWatcher<bool>::finished, this, [this, writer, path] {
        writer->deleteLater();
        m_exportPanel = new ExportViewController(path, writer->result(), this);
        m_exportPanel->open();
    });
    writer->setFuture(
        QtConcurrent::run(&HistoryReport::writeHTML, path, m_keyClickStr, m_historyDic.value(m_keyClickStr)));
}

}  // namespace velmora
