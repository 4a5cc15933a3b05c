#pragma once

#include "engine/duplicate/DuplicateRemover.h"
#include "engine/duplicate/DuplicateResults.h"

#include <QPointer>
#include <QWidget>
#include <atomic>
#include <memory>

class QLabel;
class QPushButton;
class QStackedWidget;
class QTimer;

namespace velmora {

class DeleteAllCopiesSheet;
class DuplicateEmptyView;
class DuplicateFilesOpt;
class DuplicateOutlineModel;
class DuplicateOutlineView;
class DuplicateResults;
class DuplicateSearchingView;
class DuplicateStartView;
class DuplicateTabBar;
class DuplicationDetFailViewController;
class DuplicationDetProgressViewController;
class DuplicationDetSuccessViewController;
class ImageToggle;
class MainWindowController;
class MarkSureDeleteVC;
class ThreadWorker;

// The "Duplicate Finder" page. The user chooses or drops a folder; the
// search runs on a worker thread while a timer shows its progress; the
// duplicate groups are shown in an outline under seven tabs (All and six
// categories) with every copy but the last of each group ticked; the ticked
// copies are removed permanently after a confirmation, one by one on a
// worker thread, and the outline loses each copy as it goes.
class SameFileDeleteViewController : public QWidget {
    Q_OBJECT
public:
    SameFileDeleteViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);
    ~SameFileDeleteViewController() override;

    // Choosing a folder and searching.
    void chooseFolderButtonClicked();
    void searchPathChosen(const QString& path);  // from the panel or a drop: remembered, then searched
    void searchBtnClicked();
    void stopScanBtnClicked();

    // Tabs: segmentSelect() shows a tab as if clicked; loadValueForSegment()
    // puts that tab's tree into the outline.
    void segmentSelect(int tab);
    void loadValueForSegment(int tab);

    // Ticks: a copy or a group row's checkbox, the select-all checkbox, the
    // answer of the sheet asked before a group's last copy is ticked.
    void setSelectState(const QModelIndex& index);
    void alertEnded(int code, DuplicateResults::Copy copy);
    void setAllSelectOrNoSelect();
    void outlineViewDidClickTableColumn(int column);

    // The context menu of a row.
    void outlineRightMouseDown(const QPoint& viewportPosition);
    void openFile(const QModelIndex& index);
    void revealInFolder(const QModelIndex& index);

    // Removal: the copies ticked in the shown tab, in the selection's order.
    QList<DuplicateResults::Copy> shownSelection() const;
    void removeBtnClicked();
    void delDuplicateItems();
    void stopRemoveBtnClicked();
    // Quitting during a search or a removal: stops it as its Stop button does; the page
    // ends the run as usual (the fail view says what was removed) and unlocks the window.
    Q_SLOT void stopJob();

    // The state a user sees, for the page's tests.
    QString searchPath() const { return m_searchPath; }
    bool bSearchFinished() const { return m_bSearchFinished; }
    bool isCanClick() const { return m_isCanClick; }
    int remberWitchSelect() const { return m_remberWitchSelect; }
    DuplicateResults* results() const { return m_results.get(); }
    // The groups the outline shows, in their rows.
    const std::vector<DuplicateResults::Group>& shownGroups() const;
    const QList<DuplicateResults::Copy>& delNodesArr() const { return m_delNodesArr; }
    QLabel* titleLabel() const { return m_titleLabel; }
    QLabel* unreadableLabel() const { return m_unreadableLabel; }
    ImageToggle* selectAllButton() const { return m_selectAllButton; }
    QPushButton* removeButton() const { return m_removeButton; }
    DuplicateTabBar* tabBar() const { return m_tabBar; }
    DuplicateOutlineView* outlineView() const { return m_outlineView; }
    DuplicateOutlineModel* outlineModel() const { return m_model; }
    QStackedWidget* views() const { return m_views; }
    DuplicateStartView* startView() const { return m_startView; }
    DuplicateSearchingView* searchingView() const { return m_searchingView; }
    QWidget* resultView() const { return m_resultView; }
    DuplicateEmptyView* emptyView() const { return m_emptyView; }
    DeleteAllCopiesSheet* deleteAllCopiesSheet() const;
    MarkSureDeleteVC* markSurePanel() const;
    DuplicationDetProgressViewController* progressPanel() const;
    DuplicationDetSuccessViewController* successPanel() const;
    DuplicationDetFailViewController* failPanel() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void createHeader();
    QWidget* createStartPage();
    void setTabOrder();
    void fitColumns();
    QWidget* createResultView();
    void setBusy(bool busy);
    bool hasFocusInside() const;
    void updateTitle();
    void updateSelectAllButton();
    void updateRemoveButton();
    void refreshSelection();
    QString selectAllImage() const;
    bool everyGroupSelected() const;
    QString pathOfRow(const QModelIndex& index) const;
    void showFailView(const QString& title, const QString& message);

    QVariant searchDuplicateFiles(DuplicateFilesOpt* opt, const QString& path);
    void searchFinished(bool succeeded);
    void getPrograss();
    QVariant deleteDupFiles(ThreadWorker* worker);
    void setRemoveProgress(int progress, const QString& path);
    void refreshOutlineView(const QList<int>& removed);
    void deleteFinished(const QVariant& leftReasons);

    QPointer<MainWindowController> m_superDelegate;
    QString m_searchPath;
    std::unique_ptr<DuplicateFilesOpt> m_opt;
    std::unique_ptr<DuplicateResults> m_results;
    std::unique_ptr<DuplicateResults> m_foundResults;  // built by the search worker, taken over at its end
    std::vector<DuplicateResults::Group> m_sortedGroups;  // written by the sorting worker, shown at its end
    int m_remberWitchSelect = 0;
    QList<DuplicateResults::Copy> m_removalLeaves;  // the copies being removed, in the selection's order
    QList<DuplicateResults::Copy> m_delNodesArr;    // those removed so far
    QList<DuplicateRemover::Removal> m_removals;     // one per copy being removed, read by the removal worker
    int m_sortColumn = -1;
    bool m_sortDescending = false;

    bool m_bSearchFinished = false;
    bool m_isCanClick = true;
    bool m_isClickStopRemove = false;
    std::atomic<bool> m_isStopScan{false};   // read by the search worker
    std::atomic<bool> m_bStopDelTask{false};  // read by the removal worker
    QPointer<ThreadWorker> m_worker;
    QTimer* m_progressTimer;

    QStackedWidget* m_views = nullptr;
    DuplicateStartView* m_startView = nullptr;
    DuplicateSearchingView* m_searchingView = nullptr;
    QWidget* m_resultView = nullptr;
    DuplicateEmptyView* m_emptyView = nullptr;
    DuplicateTabBar* m_tabBar = nullptr;
    QLabel* m_pageTitle = nullptr;
    QLabel* m_subtitle = nullptr;
    QLabel* m_titleLabel = nullptr;
    QLabel* m_unreadableLabel = nullptr;  // how many files and folders the last search could not read
    DuplicateOutlineView* m_outlineView = nullptr;
    DuplicateOutlineModel* m_model = nullptr;
    QLabel* m_noGroupsLabel = nullptr;
    ImageToggle* m_selectAllButton = nullptr;
    QPushButton* m_chooseButton = nullptr;
    QPushButton* m_searchAgainButton = nullptr;
    QPushButton* m_removeButton = nullptr;

    QPointer<DeleteAllCopiesSheet> m_deleteAllCopiesSheet;
    QPointer<MarkSureDeleteVC> m_markSurePanel;
    QPointer<DuplicationDetProgressViewController> m_progressPanel;
    QPointer<DuplicationDetSuccessViewController> m_successPanel;
    QPointer<DuplicationDetFailViewController> m_failPanel;
};

}  // namespace velmora
