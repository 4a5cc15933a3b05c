#pragma once

#include "engine/volumes/DiskTool.h"
#include "engine/volumes/VolumeObj.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QLayout;
class QPushButton;
class QTableView;

namespace velmora {

class EidtNameViewcontroller;
class FormatEndViewController;
class MainWindowController;
class MakeSureFormatViewController;
class MLCircularIndicator;
class VolumeScanner;
class VolumeTableModel;
class WatchMountUnmount;

// The page behind "Disk Format" (format mode) and "Disk Tool" (rename and eject
// mode): the mounted volumes in a table, one chosen with its radio button, and the
// mode's buttons. "Format" confirms the name and file system and formats the
// volume with the sidebar locked; "Rename" asks for a name; "Eject" ejects the
// volume's disk. Every action is read for its outcome and followed by a rescan;
// a format ends with the end view 1.0 s after the rescan, a failed rename or eject
// with the same view saying why. The choice follows its volume (device node and
// UUID) through a rescan.
class RepairDiskViewController : public QWidget {
    Q_OBJECT
public:
    RepairDiskViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);
    ~RepairDiskViewController() override;

    bool isFormat() const { return m_isFormat; }
    // A scan or an action runs.
    bool isScanV() const;
    int selectIndex() const { return m_selectIndex; }
    const VolumeList& allVolumeArr() const;
    const VolumeObj& selectVolume() const { return m_selectVolume; }

    // Row clicked, or -1 to re-apply the stored selection.
    void selectVolumeButton(int clickedRow);
    // The buttons' texts and fonts.
    void setButtonState();
    // Which buttons the mode and the chosen volume allow, and where they stand.
    void changeButtonPoint();
    void renameButtonAction();
    void ejectButtonAction();
    void formatButtonAction();
    void eidtNameSaveActionWithName(const QString& name);
    void makeSureToFormatSelectVolumeWithName(const QString& name, const QString& typeText);
    void showFormatEndWindow();

    // The parts a user sees, for the page's tests.
    QLabel* titleLabel() const { return m_titleLabel; }
    QLabel* selectedLabel() const { return m_selectedLabel; }
    QPushButton* formatButton() const { return m_formatButton; }
    QPushButton* renameButton() const { return m_renameButton; }
    QPushButton* ejectButton() const { return m_ejectButton; }
    QTableView* tableView() const { return m_tableView; }
    VolumeTableModel* tableModel() const { return m_model; }
    MLCircularIndicator* busyIndicator() const { return m_busyIndicator; }
    EidtNameViewcontroller* editNamePanel() const;
    MakeSureFormatViewController* makeSureFormatPanel() const;
    FormatEndViewController* formatEndPanel() const;
    DiskTool* diskTool() const { return m_diskTool; }

public slots:
    // Hooks the main window calls by name.
    void getallVolumes();
    // 1 "Disk Format", 0 "Disk Tool"; rescans the list.
    void setIsFormatOrRename(int isFormat);
    // Quitting during a format: a format is never cut off halfway (that would leave the
    // volume unreadable); the page says so, and unlocks the window when the format ends.
    void stopJob();

protected:
    // Up and Down in the focused volume list choose the volume above or below.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct EndReport {
        QString title;
        bool succeeded = false;
        QString message;
    };

    QLayout* createHeader();
    QLayout* createTable();
    QLayout* createFooter();
    void showMode();
    void reloadData();
    int rowOfSelectedVolume() const;
    void scanBegan();
    void scanEnded();
    void actionStarted(DiskTool::Action action);
    void actionFinished(DiskTool::Action action, bool succeeded, const QString& message);
    void lockSidebar(bool locked);

    QPointer<MainWindowController> m_superDelegate;
    VolumeScanner* m_scanner;
    DiskTool* m_diskTool;
    WatchMountUnmount* m_mountWatcher;
    VolumeTableModel* m_model;
    bool m_isFormat = true;
    VolumeObj m_selectVolume;
    int m_selectIndex = -1;
    // The volume a sheet was opened for: a rescan meanwhile may drop the choice, but the
    // confirmed action still goes to this volume, which the engine pins or refuses.
    VolumeObj m_actionVolume;
    bool m_rescanWhenScanEnds = false;  // a scan that began before the action ended is stale
    bool m_endViewDue = false;
    bool m_formatRunning = false;  // from the start of a format to its end view (the sidebar locked)
    EndReport m_endReport;

    QLabel* m_titleLabel = nullptr;
    QLabel* m_subtitleLabel = nullptr;
    QTableView* m_tableView = nullptr;
    MLCircularIndicator* m_busyIndicator = nullptr;
    QLabel* m_selectedLabel = nullptr;
    QPushButton* m_formatButton = nullptr;
    QPushButton* m_renameButton = nullptr;
    QPushButton* m_ejectButton = nullptr;

    QPointer<EidtNameViewcontroller> m_editNamePanel;
    QPointer<MakeSureFormatViewController> m_makeSureFormatPanel;
    QPointer<FormatEndViewController> m_formatEndPanel;
};

}  // namespace velmora
