#pragma once

#include "engine/history/DoDataBase.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace velmora {

class ExportViewController;
class ImageToggle;
class HistoryConfirmViewController;
class SlidePanel;

// The history side panel: every erasure run, newest first, as an outline of
// entries and their rows. The selected entry can be exported as an HTML
// report or deleted; "Empty All" deletes every entry. Deleting asks first.
class HistoryViewController : public QWidget {
    Q_OBJECT
public:
    explicit HistoryViewController(QWidget* parent = nullptr);
    // Opens a fresh, loaded panel in the page's history container and slides it in;
    // the page connects closeHistoryView to slide it out again.
    static HistoryViewController* showIn(SlidePanel* container);

    // (Re)loads every entry and redraws.
    void getEraserHistory();
    // The same, with the history read on a worker thread; the outline fills when it is read.
    void loadEraserHistory();
    bool isLoading() const { return m_loading; }
    void selectRow(QTreeWidgetItem* row);
    // Delete and export act on the selected entry (`keyClickStr`).
    void clickDeleteWithDate(const QString& date);
    void clickExportWithDate(const QString& date);
    void emptyAllButtonAction();
    void closeButtonAction();
    // The save panel; its choice goes to exportToChosenPath.
    void getHistorySavePath();
    // Writes the report to the chosen path with ".html" appended (on a worker thread) and confirms.
    void exportToChosenPath(const QString& chosenPath);

    const HistoryDic& historyDic() const { return m_historyDic; }
    const QStringList& historyAllArr() const { return m_historyAllArr; }
    QString keyClickStr() const { return m_keyClickStr; }
    int selectCellIndex() const { return m_selectCellIndex; }
    QTreeWidget* outlineView() const { return m_outlineView; }
    QWidget* noView() const { return m_noView; }
    QPushButton* emptyAllButton() const { return m_emptyAllButton; }
    ExportViewController* exportPanel() const;
    HistoryConfirmViewController* confirmPanel() const;

signals:
    void closeHistoryView();

private:
    struct OutlineRows;
    static std::shared_ptr<OutlineRows> makeOutlineRows(HistoryDic history);
    void showHistory(OutlineRows& rows);
    void startShowing(OutlineRows& rows);
    void handOverInTurns(const std::shared_ptr<OutlineRows>& rows, int load);
    void handOver(OutlineRows& rows, qsizetype count);
    void finishShowing();
    void refreshSelection();
    void colourRow(QTreeWidgetItem* row, bool selected);
    void askBeforeDeleting(const QString& title, const QString& message, const std::function<void()>& action);
    void deleteSelectedEntry();
    void clearHistoryFlagsWhenEmpty();

    HistoryDic m_historyDic;
    QStringList m_historyAllArr;
    QString m_keyClickStr;
    int m_selectCellIndex = -1;
    bool m_loading = false;
    int m_loadNumber = 0;  // a read that arrives after a newer one started is dropped
    // The entry that carries the export and delete buttons, and the row drawn as selected.
    QTreeWidgetItem* m_buttonsEntry = nullptr;
    QTreeWidgetItem* m_colouredRow = nullptr;
    QTreeWidget* m_outlineView;
    QWidget* m_noView;
    QPushButton* m_emptyAllButton;
    ImageToggle* m_closeButton = nullptr;
    QPointer<ExportViewController> m_exportPanel;
    QPointer<HistoryConfirmViewController> m_confirmPanel;
};

}  // namespace velmora
