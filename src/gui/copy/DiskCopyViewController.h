#pragma once

#include "engine/copy/CopyResult.h"
#include "engine/copy/DiskCopyLogic.h"
#include "engine/volumes/VolumeObj.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QLabel;
class QLayout;
class QPushButton;
class QTimer;

namespace velmora {

class CopyFailViewController;
class CopyMakeSureVC;
class CopyProgreViewController;
class CopySuccessViewController;
class FileManagerVolumeScan;
class ImageToggle;
class LComboBox;
class MainWindowController;
class SelectCopyFilesViewController;
class SelectDiskViewController;

// The drive-copy page, in a container of its own over the tool pages: the source and the
// destination chosen from the file manager's volumes, "Copy All Files" or "Copy Some
// Files" (picked in a tree), "Verify after copying", and "Copy Now", which confirms and
// copies into a dated folder with a progress view and an end view that says what was not
// copied. The decisions are DiskCopyLogic's; the sidebar and the page's close button are
// locked while a copy runs. A click on a sidebar entry leaves the page.
class DiskCopyViewController : public QWidget {
    Q_OBJECT
public:
    DiskCopyViewController(MainWindowController* superDelegate, QWidget* parent = nullptr);
    ~DiskCopyViewController() override;

    // Shows the page over the current tool page, with a fresh list of volumes.
    void showPage();
    // Leaves the page, unless a copy runs.
    void closePage();
    void getallVolumes();
    void doSelectDiskWithVolume(const VolumeObj& volume, bool asSource);
    // 0 "Copy All Files", 1 "Copy Some Files" (which opens the picking tree).
    void changeSelectCopyType(int index);
    void cloneButtonAction();
    bool isCopying() const { return m_copying; }
    // Quitting during a copy: stops it as the progress view's Cancel does; the page ends
    // the run (its fail view) and unlocks the window.
    Q_SLOT void stopJob();

    DiskCopyLogic& logic() { return m_logic; }
    // The parts a user sees, for the page's tests.
    SelectDiskViewController* sourcePicker() const { return m_sourcePicker; }
    SelectDiskViewController* destinationPicker() const { return m_destinationPicker; }
    LComboBox* copyTypeBox() const { return m_copyTypeBox; }
    QCheckBox* verifyBox() const { return m_verifyBox; }
    QLabel* destinationLabel() const { return m_destinationLabel; }
    QLabel* pickedLabel() const { return m_pickedLabel; }
    QLabel* errorLabel() const { return m_errorLabel; }
    QPushButton* copyButton() const { return m_copyButton; }
    QPushButton* changePickButton() const { return m_changePickButton; }
    ImageToggle* closeButton() const { return m_closeButton; }
    SelectCopyFilesViewController* pickPanel() const;
    CopyMakeSureVC* makeSurePanel() const;
    CopyProgreViewController* copyProgressVC() const;
    CopySuccessViewController* successPanel() const;
    CopyFailViewController* failPanel() const;

signals:
    void pageClosed();

private:
    QLayout* createHeader();
    QLayout* createPickers();
    QLayout* createFooter();
    void refreshState();
    void reloadPickers();
    void openPickPanel();
    void pickPanelCancelled();
    void filesChosen();
    void showConfirmation();
    void beginToCopyFiles();
    void copyEnded(const CopyResult& result);
    void lockNavigation(bool locked);
    void slideTo(int y, bool hideAtEnd);

    QPointer<MainWindowController> m_superDelegate;
    DiskCopyLogic m_logic;
    FileManagerVolumeScan* m_scan;
    QString m_treeSource;  // the source the picking tree was listed from
    bool m_copying = false;

    ImageToggle* m_closeButton = nullptr;
    SelectDiskViewController* m_sourcePicker = nullptr;
    SelectDiskViewController* m_destinationPicker = nullptr;
    LComboBox* m_copyTypeBox = nullptr;
    QPushButton* m_changePickButton = nullptr;
    QLabel* m_pickedLabel = nullptr;
    QCheckBox* m_verifyBox = nullptr;
    QLabel* m_destinationLabel = nullptr;
    QLabel* m_errorLabel = nullptr;
    QPushButton* m_copyButton = nullptr;
    QTimer* m_bytesTimer;

    QPointer<SelectCopyFilesViewController> m_pickPanel;
    QPointer<CopyMakeSureVC> m_makeSurePanel;
    QPointer<CopyProgreViewController> m_copyProgressVC;
    QPointer<CopySuccessViewController> m_successPanel;
    QPointer<CopyFailViewController> m_failPanel;
};

}  // namespace velmora
