#pragma once

#include "engine/erase/FileObj.h"

#include <QPointer>
#include <QSet>
#include <QWidget>

class QLabel;
class QPushButton;
class QTableView;
class QTimer;

namespace velmora {

class DragOneFileView;
class DragView;
class FileEraserFailViewController;
class FileEraserProgressViewController;
class FileEraserSortVC;
class FileEraserSuccessViewController;
class FileEraserTableModel;
class ImageToggle;
class MainWindowController;
class MakeSureFileEraserViewControoler;
class RemoveFileAndFolder;
class SlidePanel;

// The "Erase Files" page. The user collects files and folders into a list (add
// panel or drop), ticks the ones to destroy, confirms, watches the progress and
// reads the outcome. Every run is written to the erasure history; ticked items
// leave the list whatever their result, unticked ones stay.
class FileEraserViewController : public QWidget {
    Q_OBJECT
public:
    FileEraserViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);

    const FileObjList& valueArr() const { return m_valueArr; }
    const FileObjList& deleteErrorArr() const { return m_deleteErrorArr; }

    // Adding.
    void selectFileButtonAction();
    void viewDragAction(const QStringList& paths);
    void addSelectedPaths(const QStringList& paths);
    // Whether a large batch of chosen paths is being checked on a worker.
    bool isAddingPaths() const { return m_addingPaths; }
    void emptyListButtonAction();

    // Selection.
    void setAllSelectOrNoSelect();
    void selectListButton(int row);
    // 0 none ticked, 1 some, 2 all; also refreshes the summary, the select-all
    // checkbox and the erase button.
    int returnSelectAllState();

    // Sorting: key 0 name, 1 and 2 size, -1 not sorted; sortAD 0 ascending, 1 descending.
    void sortButtonAction();
    void selectSortbyType(int sortType, int sortAD);
    static FileObjList sortedRecords(FileObjList records, int sortType, int sortAD);

    // The context menu and the open button of a row.
    void listRightMouseDown(const QPoint& viewportPosition);
    void openFileButton(int row);
    void revealInFolder(int row);

    // Side panels.
    void setButtonAction();
    void historyButtonAction();
    void closeHistoryView();

    // A run.
    void eraserNowButtonAction();
    void makeSureToEraserSelectFiles();
    void doEraserSelectFiles();
    void cancelEraserButtonAction();
    void cancelShred();
    void removeProgress(float progress, const QString& path, int index);
    void haveFailEraser();
    void removeObjEnd(const velmora::FileObjList& results);

    // The folder among those erased earlier in the run that held `path`, if any.
    static QString erasedFolderHolding(const QString& path, const QStringList& erasedFolders);

    // "H:MM:SS" of the elapsed-seconds counter.
    static QString elapsedTimeText(int seconds);

    // Stops a running erase as its Cancel button does (quitting during a run).
    Q_SLOT void stopJob();

    // The parts a user sees, for the page's tests.
    QLabel* summaryLabel() const { return m_summaryLabel; }
    ImageToggle* selectAllButton() const { return m_selectAllButton; }
    QPushButton* eraserFileButton() const { return m_eraserFileButton; }
    ImageToggle* historyButton() const { return m_historyButton; }
    QWidget* addView() const;
    DragView* dragView() const { return m_dragView; }
    QWidget* listView() const;
    QTableView* tableView() const { return m_tableView; }
    SlidePanel* historyPanel() const { return m_historyPanel; }
    SlidePanel* levelPanel() const { return m_levelPanel; }
    MakeSureFileEraserViewControoler* makeSurePanel() const;
    FileEraserProgressViewController* progressPanel() const;
    FileEraserSuccessViewController* successPanel() const;
    FileEraserFailViewController* failPanel() const;
    FileEraserSortVC* sortMenu() const;

    // Takes the selected rows off the list (Delete); nothing on disk is touched.
    void removeSelectedRows();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static constexpr int kListPeek = 54;  // how far the hidden list keeps out of the page
    // Batches up to this size are checked on the window's thread.
    static constexpr qsizetype kPathsCheckedInline = 1000;

    // The records a batch of chosen paths adds, as checked against the list
    // of `revision`.
    struct CheckedPaths {
        FileObjList records;
        int revision = 0;
        bool refused = false;        // some lay on a volume that cannot be erased here
        bool stoppedAtRoot = false;  // "/" ended the batch
    };
    static CheckedPaths checkPaths(const QStringList& paths, QSet<QString> listed, int revision);
    // One record of the list, selected (no duplicate check of its own).
    static FileObj record(const QString& path, bool isDir, quint64 size);
    QSet<QString> listedPaths() const;
    void addCheckedPaths(const CheckedPaths& checked);

    void createHeader();
    void addShortcuts();
    void fitColumns();
    int listHiddenX() const;
    void createAddView();
    void createListView();
    void reloadData();
    void updateHistoryButton();
    void showListView();
    void showMainView();
    void showNTFSWindow();
    void showNotice(const QString& title, const QString& message);
    void startSorting();
    void eraserTimeAction();
    void showLatestProgress();
    void showPendingProgress();
    // The end view of a run, once the run is in the history; `remaining` becomes the list.
    void showRunOutcome(const FileObjList& remaining);
    void panelDidChangeToDirectory(QWidget* panel, const QString& folder);
    QString startFolder() const;

    QPointer<MainWindowController> m_superDelegate;
    FileObjList m_valueArr;
    FileObjList m_deleteErrorArr;
    // Bumped on every change of the list, so that a sort finishing late does
    // not bring back a list the user has changed meanwhile.
    int m_listRevision = 0;
    int m_sortType = -1;  // the order items were added in, until the user sorts
    int m_sortAD = 0;
    bool m_isCancel = false;
    bool m_isFailedEraser = false;
    struct Progress {
        float progress = 0;
        QString path;
        int index = 0;
    } m_latestProgress;
    bool m_progressPending = false;  // a report came after the last one shown
    int m_eraserTimeR = 0;
    QString m_newPathStr;
    bool m_reopenPending = false;
    bool m_addingPaths = false;
    QList<QStringList> m_pendingPaths;  // batches chosen while one is checked

    RemoveFileAndFolder* m_engine = nullptr;
    QTimer* m_eraserTimer;
    QTimer* m_progressRefresh;  // spaces the progress reports shown
    FileEraserTableModel* m_model;

    QLabel* m_titleLabel = nullptr;
    QLabel* m_subtitleLabel = nullptr;
    QLabel* m_hintLabel = nullptr;
    ImageToggle* m_settingsButton = nullptr;
    ImageToggle* m_sortButton = nullptr;
    ImageToggle* m_historyButton = nullptr;
    QWidget* m_addView = nullptr;
    DragView* m_dragView = nullptr;
    DragOneFileView* m_listView = nullptr;
    QTableView* m_tableView = nullptr;
    ImageToggle* m_selectAllButton = nullptr;
    QLabel* m_summaryLabel = nullptr;
    QPushButton* m_eraserFileButton = nullptr;
    SlidePanel* m_levelPanel;
    SlidePanel* m_historyPanel;

    QPointer<MakeSureFileEraserViewControoler> m_makeSurePanel;
    QPointer<FileEraserProgressViewController> m_progressPanel;
    QPointer<FileEraserSuccessViewController> m_successPanel;
    QPointer<FileEraserFailViewController> m_failPanel;
    QPointer<FileEraserSortVC> m_sortMenu;
};

}  // namespace velmora
