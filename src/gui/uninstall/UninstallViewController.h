#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <QFutureWatcher>
#include <QPointer>
#include <QWidget>

class QButtonGroup;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;
class QToolButton;

namespace velmora {

class ApplicationInventory;
class FileEraserSortVC;
class ImageToggle;
class MainWindowController;
class MakeSureUninstallViewController;
class UninstallProgressViewController;
class UninstallSession;
class UninstallTableModel;

// The "Uninstaller" page: applications, widgets and plug-ins in three tabs, each a table
// with tick boxes, a per-row remove button, version and a size computed when first shown;
// a search field, a sort menu and a refresh button. Removing (the ticked records, or one
// row) gathers each application's related files, asks in a confirmation tree, removes
// the ticked entries with a progress panel and an end message, and drops from the list
// what is gone. The sidebar is locked from the confirmation until the end message closes.
class UninstallViewController : public QWidget {
    Q_OBJECT
public:
    UninstallViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);
    ~UninstallViewController() override;

    void begimScanFile();
    void refButtonAction();
    void segmentSelectWithIndex(int tab);
    void controlTextDidChange(const QString& text);
    void selectSortbyType(int sortType, int sortAD);
    void selectAllButtonAction();
    void clickButtonAction(int row);
    void changeSelectAllButtonState();
    void uninstallAppButtonAction();
    void oneAppRemove(int row);
    void showSelectListWindiwWith(const QList<AMAppItemList>& allRelaltedFiles, const QStringList& running);
    void completeCleanRelatedFiles();
    // Quitting during a job: an open confirmation is cancelled; a removal under way is not
    // cut off halfway (a package manager may be in the middle of a transaction), it ends
    // and its end message is closed; the page then unlocks the window as at any end.
    Q_SLOT void stopJob();

    // The state a user sees, for the page's tests.
    ApplicationInventory* inventory() const { return m_inventory; }
    int appsType() const { return m_appsType; }
    bool isScan() const;
    bool isCanClick() const { return m_isCanClick; }
    const AMAppItemList& showListArr() const;
    const AMAppItemList& uninsatllAppArr() const { return m_ticked[0]; }
    const AMAppItemList& uninsatllWidgtsArr() const { return m_ticked[1]; }
    const AMAppItemList& uninsatllPlugetsArr() const { return m_ticked[2]; }
    const AMAppItemList& tickedList() const { return m_ticked[m_appsType]; }
    int sortType() const { return m_sortType; }
    int sortAD() const { return m_sortAD; }
    QTableView* tableView() const { return m_tableView; }
    UninstallTableModel* tableModel() const { return m_model; }
    QToolButton* tabButton(int tab) const;
    QLineEdit* searchField() const { return m_searchField; }
    ImageToggle* sortButton() const { return m_sortButton; }
    ImageToggle* refreshButton() const { return m_refreshButton; }
    FileEraserSortVC* sortMenu() const;
    QPushButton* selectAllButton() const { return m_selectAllButton; }
    QPushButton* removeButton() const { return m_removeButton; }
    QLabel* counterLabel() const { return m_counterLabel; }
    QLabel* scanningLabel() const { return m_scanningLabel; }
    QString counterText() const;  // the counter without its markup
    QString nameHeaderText() const;
    MakeSureUninstallViewController* makeSurePanel() const;
    UninstallProgressViewController* progressPanel() const;

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createHeader();
    void createTable();
    void createFooter();
    void itemFound(int tab, const AMAppItemPtr& item);
    void scanFinished();
    void setScanning(bool scanning);
    void setBusy(bool busy);
    void rebuildShownList();
    void refreshHeader();
    void collectRelatedFiles(const AMAppItemList& applications);
    void clickedDeleteBtn();
    void doRemove();
    void uninstallEnd();
    void tableClicked(const QModelIndex& index);

    void fitSizeColumn();

    QPointer<MainWindowController> m_superDelegate;
    ApplicationInventory* m_inventory;
    UninstallTableModel* m_model;
    int m_appsType = 0;
    AMAppItemList m_ticked[3];
    int m_sortType = 0;
    int m_sortAD = 0;
    bool m_isCanClick = true;
    bool m_scanned = false;  // the first scan has started
    bool m_oneRemove = false;
    AMAppItemPtr m_oneRemoveRecord;  // the per-row remove's record

    QLabel* m_subtitle = nullptr;
    QButtonGroup* m_tabs = nullptr;
    QLineEdit* m_searchField = nullptr;
    ImageToggle* m_sortButton = nullptr;
    ImageToggle* m_refreshButton = nullptr;
    QLabel* m_scanningLabel = nullptr;
    QTableView* m_tableView = nullptr;
    QLabel* m_emptyLabel = nullptr;
    QPushButton* m_selectAllButton = nullptr;
    QLabel* m_counterLabel = nullptr;
    QPushButton* m_removeButton = nullptr;

    QPointer<FileEraserSortVC> m_sortMenu;
    UninstallSession* m_session = nullptr;
    // The related files of each application, and the applications running.
    using RelatedFiles = QPair<QList<AMAppItemList>, QStringList>;
    QPointer<QFutureWatcher<RelatedFiles>> m_relatedSearch;  // while they are gathered
    QPointer<MakeSureUninstallViewController> m_makeSure;
    QPointer<UninstallProgressViewController> m_progress;
    bool m_stopRequested = false;
};

}  // namespace velmora
