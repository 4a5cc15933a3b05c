#pragma once

#include "engine/inter/BrowerObj.h"
#include "engine/inter/BrowserCleanJob.h"
#include "engine/inter/RunningBrowsers.h"

#include <QPointer>
#include <functional>
#include <QWidget>

class QAbstractItemModel;
class QLabel;
class QLayout;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace velmora {

class BrowserCatalogue;
class BrowserTableModel;
class CategoryTableModel;
class CleanerInterEndViewController;
class CloseBrowerViewController;
class FullDiskAccessViewController;
class ImageToggle;
class MainWindowController;
class MLCircularIndicator;

// The "Internet Cleaner" page. "Scan" first asks to close running browsers,
// then lists the installed browsers (left) and the categories of the
// highlighted one with their counts or sizes (right), each with a tick box.
// "Clean" asks again to close the ticked browsers that run, then cleans the
// ticked categories in the background and ends with a dialog that names what
// could not be cleaned. The sidebar and the page's controls are locked while
// a scan or a clean run goes on.
class InternetViewController : public QWidget {
    Q_OBJECT
public:
    InternetViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);
    ~InternetViewController() override;

    void checkOpenBrower();  // "Scan"
    void getBrowserArr();
    void highlightBrowser(int row);
    void selectBrower(BrowerObj* entry);  // a click on a tick box
    void changeCleanButtonState();
    void cleanButtonAction();
    void backButtonAction();
    // Quitting during a job: a clean run stops after the category it is cleaning (the
    // rest keep their ticks), an open question is cancelled, a scan is let finish; the
    // page then unlocks the window as at any end.
    Q_SLOT void stopJob();

    // The state a user sees, for the page's tests.
    const BrowserArr& browserArr() const { return m_browserArr; }
    int broSelectIndex() const { return m_broSelectIndex; }
    const QList<RunningBrowser>& allOpenId() const { return m_allOpenId; }
    bool isClose() const { return m_isClose; }
    bool isCanClick() const { return m_isCanClick; }
    bool isThorough() const;
    QStackedWidget* views() const { return m_views; }
    QWidget* startView() const { return m_startView; }
    QWidget* scanningView() const { return m_scanningView; }
    QWidget* resultView() const { return m_resultView; }
    QPushButton* scanButton() const { return m_scanButton; }
    QPushButton* cleanButton() const { return m_cleanButton; }
    QPushButton* backButton() const { return m_backButton; }
    ImageToggle* thoroughButton() const { return m_thoroughButton; }
    QTableView* browserTable() const { return m_browserTable; }
    QTableView* categoryTable() const { return m_categoryTable; }
    BrowserTableModel* browserModel() const { return m_browserModel; }
    CategoryTableModel* categoryModel() const { return m_categoryModel; }
    QLabel* detailLabel() const { return m_detailLabel; }
    QLabel* noticeLabel() const { return m_noticeLabel; }
    CloseBrowerViewController* closePanel() const;
    FullDiskAccessViewController* accessPanel() const;
    CleanerInterEndViewController* endPanel() const { return m_endPanel; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLayout* createHeader();
    QWidget* createStartView();
    QWidget* createScanningView();
    QWidget* createResultView();
    QTableView* createTable(QAbstractItemModel* model, const QList<int>& columnWidths);
    void setBusy(bool busy);
    void browserArrReady(const BrowserArr& browserArr);
    void showScanningView();
    void endWithoutScan();
    void findRunningBrowsers(const std::function<QList<RunningBrowser>()>& find, const std::function<void()>& then);
    void showClosePanel();
    void closePanelEnded(int code);
    void closeRunningBrowsers();
    void scanCatalogue();
    void cleanBrowerFiles();
    void startCleanJob();
    void cleanFinished(const QList<CleanOutcome>& outcomes);
    bool showAccessPanelIfNeeded(const std::function<void()>& then);
    void redrawTables();
    void tableClicked(QTableView* table, const QModelIndex& index);

    QPointer<MainWindowController> m_superDelegate;
    BrowserCatalogue* m_catalogue;
    BrowserCleanJob* m_cleanJob;

    BrowserArr m_browserArr;
    int m_broSelectIndex = -1;
    QList<RunningBrowser> m_allOpenId;
    bool m_isClose = false;
    bool m_isCanClick = true;
    bool m_stopRequested = false;

    QStackedWidget* m_views = nullptr;
    QWidget* m_startView = nullptr;
    QWidget* m_scanningView = nullptr;
    QWidget* m_resultView = nullptr;
    QLabel* m_noticeLabel = nullptr;
    QLabel* m_scanningLabel = nullptr;
    QLabel* m_foundLabel = nullptr;
    MLCircularIndicator* m_scanIndicator = nullptr;
    MLCircularIndicator* m_cleanIndicator = nullptr;
    QPushButton* m_scanButton = nullptr;
    QTableView* m_browserTable = nullptr;
    QTableView* m_categoryTable = nullptr;
    BrowserTableModel* m_browserModel = nullptr;
    CategoryTableModel* m_categoryModel = nullptr;
    QLabel* m_noBrowserLabel = nullptr;
    QLabel* m_detailLabel = nullptr;
    ImageToggle* m_thoroughButton = nullptr;
    QLabel* m_thoroughLabel = nullptr;
    QPushButton* m_backButton = nullptr;
    QPushButton* m_cleanButton = nullptr;

    QPointer<CloseBrowerViewController> m_closePanel;
    QPointer<FullDiskAccessViewController> m_accessPanel;
    CleanerInterEndViewController* m_endPanel = nullptr;  // created once and kept
};

}  // namespace velmora
