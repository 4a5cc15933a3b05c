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
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace velmora {
namespace {

enum Column { Name, Type, State };

bool isCaptionRow(const QTreeWidgetItem* row) { return row->parent() && row->text(Name) == "Items"; }

// The row number of an outline row as it is shown, counting every visible row.
int visibleRowNumber(QTreeWidgetItem* row) {
    int number = 0;
    for (QTreeWidgetItem* above = row->treeWidget()->itemAbove(row); above; above = row->treeWidget()->itemAbove(above))
        ++number;
    return number;
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
    history->getEraserHistory();
    container->setCancelButton(history->m_closeButton);
    container->slideIn();
    return history;
}

void HistoryViewController::getEraserHistory() {
    m_historyDic = DoDataBase::returnDoDataBase()->getAllData();
    m_historyAllArr = m_historyDic.keys();
    // Keys are timestamps of one fixed format: descending order is newest first.
    std::sort(m_historyAllArr.begin(), m_historyAllArr.end(),
              [](const QString& a, const QString& b) { return b.compare(a) < 0; });
    m_keyClickStr.clear();
    m_selectCellIndex = -1;
    reloadOutline();
    const bool empty = m_historyAllArr.isEmpty();
    m_outlineView->setVisible(!empty);
    m_noView->setVisible(empty);
    m_emptyAllButton->setEnabled(!empty);
}

void HistoryViewController::reloadOutline() {
    const QSignalBlocker quiet(m_outlineView);
    m_outlineView->clear();
    for (const QString& key : std::as_const(m_historyAllArr)) {
        auto* entry = new QTreeWidgetItem(m_outlineView, {key, QString(), QString()});
        entry->setFont(Name, Style::boldFont(13));
        auto* buttons = new HistoryDeleteTextFieldCell(key);
        connect(buttons, &HistoryDeleteTextFieldCell::clickExportWithDate, this,
                &HistoryViewController::clickExportWithDate);
        connect(buttons, &HistoryDeleteTextFieldCell::clickDeleteWithDate, this, [this](const QString& date) {
            askBeforeDeleting("Delete this entry?",
                              QString("The record of the erasure of %1 is removed from the history.").arg(date),
                              [this, date] { clickDeleteWithDate(date); });
        });
        m_outlineView->setItemWidget(entry, State, buttons);
        for (const HistoryRow& values : m_historyDic.value(key)) {
            auto* row = new QTreeWidgetItem(entry, {values.value("Items"), values.value("Erasure Standard"),
                                                    values.value("Result")});
            row->setToolTip(Name, values.value("Items"));
            const QFont font = isCaptionRow(row) ? Style::boldFont(11) : Style::regularFont(12);
            for (int column = Name; column <= State; ++column) row->setFont(column, font);
        }
    }
    m_outlineView->expandAll();
    refreshSelection();
}

void HistoryViewController::selectRow(QTreeWidgetItem* row) {
    qCInfo(lcHistory, "-select---%s", qUtf8Printable(row->text(Name)));
    m_selectCellIndex = visibleRowNumber(row);
    if (!row->parent()) m_keyClickStr = row->text(Name);
    refreshSelection();
}

// Only the selected entry shows its buttons; rows drawn on the selection take
// the selection's text colour.
void HistoryViewController::refreshSelection() {
    QTreeWidgetItem* selected = m_outlineView->currentItem();
    for (int index = 0; index < m_outlineView->topLevelItemCount(); ++index) {
        QTreeWidgetItem* entry = m_outlineView->topLevelItem(index);
        static_cast<HistoryDeleteTextFieldCell*>(m_outlineView->itemWidget(entry, State))
            ->setButtonsVisible(entry == selected);
        entry->setForeground(Name, Style::kText);
        for (int child = 0; child < entry->childCount(); ++child) {
            QTreeWidgetItem* row = entry->child(child);
            const QColor colour = row == selected ? Style::kText
                                  : isCaptionRow(row) ? Style::kAccent
                                                      : Style::kSecondaryText;
            for (int column = Name; column <= State; ++column) row->setForeground(column, colour);
        }
    }
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
    // The panel says whether the report was written; a failed write is never shown as saved.
    m_exportPanel = new ExportViewController(path, writeHTML(path), this);
    m_exportPanel->open();
}

bool HistoryViewController::writeHTML(const QString& path) {
    return HistoryReport::writeHTML(path, m_keyClickStr, m_historyDic.value(m_keyClickStr));
}

}  // namespace velmora
