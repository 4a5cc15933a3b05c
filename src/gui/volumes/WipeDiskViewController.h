#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QLayout;
class QPushButton;
class QTableView;

namespace velmora {

class FreeSpaceWipe;
class GuideNotice;
class ImageToggle;
class MainWindowController;
class MLCircularIndicator;
class MakeSureWipeDiskViewController;
class MakeSureWipeFreeSpaceViewController;
class SlidePanel;
class VolumeScanner;
class VolumeTableModel;
class WatchMountUnmount;
class WholeDriveErase;
class WipeFailViewController;
class WipeFreeSpaceProViewController;
class WipeSuccessViewController;

// The page behind "Erase Hard Drive" (selectEraserType 2) and "Erase Free
// Space" (selectEraserType 1): the mounted volumes in a table, one of them
// chosen with its radio button, and "Erase Now" that confirms and runs the
// whole-drive erase or the free-space wipe with a progress view and an end
// view. The list is rescanned when volumes are mounted or unmounted and after
// every run; the choice follows its volume (device node and UUID) through a
// rescan and never moves while a confirmation is open or a run goes on; the
// sidebar is locked while a run goes on.
class WipeDiskViewController : public QWidget {
    Q_OBJECT
public:
    WipeDiskViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);
    ~WipeDiskViewController() override;

    int selectEraserType() const;
    int selectIndex() const { return m_selectIndex; }
    const VolumeList& allVolumeArr() const;
    const VolumeObj& selectVolumeObj() const;
    FreeSpaceWipe* freeSpaceWipe() const { return m_wipe; }

    // Row clicked, or -1 to re-apply the stored selection.
    void selectVolumeButton(int clickedRow);
    void wipeButtonAction();
    void setButtonAction();
    void historyButtonAction();
    void closeHistoryView();

    // The parts a user sees, for the page's tests.
    QLabel* titleLabel() const { return m_titleLabel; }
    QLabel* selectedLabel() const { return m_selectedLabel; }
    QPushButton* wipeButton() const { return m_wipeButton; }
    ImageToggle* historyButton() const { return m_historyButton; }
    QTableView* tableView() const { return m_tableView; }
    VolumeTableModel* tableModel() const { return m_model; }
    MLCircularIndicator* busyIndicator() const { return m_busyIndicator; }
    SlidePanel* levelPanel() const { return m_levelPanel; }
    SlidePanel* historyPanel() const { return m_historyPanel; }
    MakeSureWipeFreeSpaceViewController* makeSureFreeSpacePanel() const;
    MakeSureWipeDiskViewController* makeSureDiskPanel() const;
    WipeFreeSpaceProViewController* progressPanel() const;
    WipeSuccessViewController* successPanel() const;
    WipeFailViewController* failPanel() const;
    GuideNotice* noticePanel() const;

public slots:
    // Hooks the main window calls by name.
    void getallVolumes();
    // 1 "Erase Hard Drive", 2 "Erase Free Space" (the sidebar's tags).
    void changeFormatOrFreeSpaceView(int tag);
    void endAppRemoveFolder();
    // Quitting during a run: cancels it as the progress view's Cancel does; the run ends
    // cancelled, is recorded so, and the page unlocks the window.
    void stopJob();

protected:
    // Up and Down in the focused volume list choose the volume above or below.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLayout* createHeader();
    QLayout* createTable();
    QLayout* createFooter();
    void reloadData();
    bool confirmationOpen() const;
    int rowOfSelectedVolume() const;
    void updateHistoryButton();
    void scanBegan();
    void scanEnded();
    void doFreeAction();
    void doEraserPartiltion();
    void makeSureToWipeFreeSpaceSelectVolume();
    void confirmationCancelled();
    void makeSureToWipeSelectVolume();
    void stageTwoBegan();
    QString endTitle(bool succeeded, bool cancelled) const;
    void openProgressPanel(WipeFreeSpaceProViewController* panel);
    void showEndEraser(bool succeeded, const QString& endText, bool cancelled);
    void showNotice(GuideNotice* notice);
    void lockSidebar(bool locked);

    QPointer<MainWindowController> m_superDelegate;
    VolumeScanner* m_scanner;
    FreeSpaceWipe* m_wipe;
    WholeDriveErase* m_erase;
    WatchMountUnmount* m_mountWatcher;
    VolumeTableModel* m_model;
    int m_selectIndex = -1;
    bool m_runActive = false;  // from the confirmed start to the end view

    QLabel* m_titleLabel = nullptr;
    QLabel* m_subtitleLabel = nullptr;
    ImageToggle* m_historyButton = nullptr;
    QTableView* m_tableView = nullptr;
    MLCircularIndicator* m_busyIndicator = nullptr;
    QLabel* m_selectedLabel = nullptr;
    QPushButton* m_wipeButton = nullptr;
    SlidePanel* m_levelPanel;
    SlidePanel* m_historyPanel;

    QPointer<MakeSureWipeFreeSpaceViewController> m_makeSureFreeSpacePanel;
    QPointer<MakeSureWipeDiskViewController> m_makeSureDiskPanel;
    QPointer<WipeFreeSpaceProViewController> m_progressPanel;
    QPointer<WipeSuccessViewController> m_successPanel;
    QPointer<WipeFailViewController> m_failPanel;
    QPointer<GuideNotice> m_noticePanel;
};

}  // namespace velmora
