#include "gui/volumes/WipeDiskViewController.h"

#include "engine/erase/EraserLevel.h"
#include "engine/erase/PublicUtilities.h"
#include "engine/history/DoDataBase.h"
#include "engine/platform/NotificationCenter.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/VolumeScanner.h"
#include "engine/volumes/WatchMountUnmount.h"
#include "engine/volumes/WholeDriveErase.h"
#include "gui/app/MainWindowController.h"
#include "gui/erase/SetEraserLevelVC.h"
#include "gui/history/HistoryViewController.h"
#include "gui/volumes/MakeSureWipeDiskViewController.h"
#include "gui/volumes/MakeSureWipeFreeSpaceViewController.h"
#include "gui/volumes/NTFSViewController.h"
#include "gui/volumes/SystemEraserViewController.h"
#include "gui/volumes/VolumeTableModel.h"
#include "gui/volumes/VolumeTableView.h"
#include "gui/volumes/WipeDiskProViewController.h"
#include "gui/volumes/WipeFailViewController.h"
#include "gui/volumes/WipeSuccessViewController.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>

namespace velmora {
namespace {

constexpr int kMargin = 26;

ImageToggle* headerButton(const QString& image, const QString& tip, QWidget* parent) {
    auto* button = new ImageToggle(image, parent, 26);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    return button;
}

}  // namespace

WipeDiskViewController::WipeDiskViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent),
      m_superDelegate(superDelegate),
      m_scanner(new VolumeScanner(VolumeScanner::Screen::Erase, this)),
      m_wipe(new FreeSpaceWipe(this)),
      m_erase(new WholeDriveErase(m_wipe, this)),
      m_mountWatcher(new WatchMountUnmount(this)),
      m_model(new VolumeTableModel(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    m_wipe->setVolumeScanner(m_scanner);
    // The page grows with the window: the list takes the height, the name column the width.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, 28, kMargin, 34);
    layout->setSpacing(0);
    layout->addLayout(createHeader());
    layout->addSpacing(14);
    layout->addLayout(createTable(), 1);
    layout->addSpacing(24);
    layout->addLayout(createFooter());
    m_levelPanel = new SlidePanel(this);
    m_historyPanel = new SlidePanel(this);

    connect(m_scanner, &VolumeScanner::scanBegan, this, &WipeDiskViewController::scanBegan);
    connect(m_scanner, &VolumeScanner::scanEnded, this, &WipeDiskViewController::scanEnded);
    connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, this, [this](const QString& name) {
        if (name == "MCVolumeMount" || name == "MCVolumeUnmount") getallVolumes();
    });

    connect(m_wipe, &FreeSpaceWipe::setRemoveProgress, this, [this](const QString& text, float percent) {
        if (m_progressPanel) m_progressPanel->setRemoveProgress(text, percent);
    });
    connect(m_wipe, &FreeSpaceWipe::closeWindow, this, [this] {
        if (m_progressPanel) m_progressPanel->closeWindow();
    });
    connect(m_wipe, &FreeSpaceWipe::eraserEnded, this, &WipeDiskViewController::showEndEraser);
    connect(m_erase, &WholeDriveErase::stageTwoBegan, this, &WipeDiskViewController::stageTwoBegan);

    changeFormatOrFreeSpaceView(1);
    updateHistoryButton();
    selectVolumeButton(-1);
}

// The fill and the disk utility stop with their owners; the scanner waits for its scan.
WipeDiskViewController::~WipeDiskViewController() = default;

QLayout* WipeDiskViewController::createHeader() {
    m_titleLabel = Style::label(QString(), 22, false, true);
    m_subtitleLabel = Style::label(QString(), 12, true);
    m_subtitleLabel->setWordWrap(true);
    auto* texts = new QVBoxLayout;
    texts->setContentsMargins(14, 0, 0, 0);
    texts->setSpacing(4);
    texts->addWidget(m_titleLabel);
    texts->addWidget(m_subtitleLabel);

    auto* settings = headerButton("ic_setting", "Erasure level", this);
    connect(settings, &ImageToggle::clicked, this, &WipeDiskViewController::setButtonAction);
    m_historyButton = headerButton("ic_nohistory", "Erasure history", this);
    connect(m_historyButton, &ImageToggle::clicked, this, &WipeDiskViewController::historyButtonAction);
    auto* header = new QHBoxLayout;
    header->setSpacing(14);
    header->addLayout(texts, 1);
    header->addWidget(settings, 0, Qt::AlignTop);
    header->addWidget(m_historyButton, 0, Qt::AlignTop);
    header->addSpacing(12);
    return header;
}

QLayout* WipeDiskViewController::createTable() {
    m_tableView = createVolumeTable(m_model, this);
    // A click anywhere on a row chooses its volume; from the keyboard Up and Down
    // choose, as in a group of radio buttons.
    connect(m_tableView, &QTableView::clicked, this,
            [this](const QModelIndex& index) { selectVolumeButton(index.row()); });
    m_tableView->installEventFilter(this);

    return volumeTableArea(m_tableView, m_busyIndicator, this);
}

QLayout* WipeDiskViewController::createFooter() {
    m_selectedLabel = Style::label(QString(), 13, true);
    m_selectedLabel->setTextFormat(Qt::PlainText);
    m_selectedLabel->setWordWrap(true);
    m_wipeButton = ImageSetButton::primary("Erase Now", this);
    m_wipeButton->setMinimumWidth(130);
    m_wipeButton->setEnabled(false);
    connect(m_wipeButton, &QPushButton::clicked, this, &WipeDiskViewController::wipeButtonAction);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(6, 0, 0, 0);
    footer->setSpacing(16);
    footer->addWidget(m_selectedLabel, 1);
    footer->addWidget(m_wipeButton);
    return footer;
}

int WipeDiskViewController::selectEraserType() const { return m_wipe->selectEraserType; }
const VolumeList& WipeDiskViewController::allVolumeArr() const { return m_scanner->allVolumeArr(); }
const VolumeObj& WipeDiskViewController::selectVolumeObj() const { return m_wipe->selectVolumeObj; }
MakeSureWipeFreeSpaceViewController* WipeDiskViewController::makeSureFreeSpacePanel() const { return m_makeSureFreeSpacePanel; }
MakeSureWipeDiskViewController* WipeDiskViewController::makeSureDiskPanel() const { return m_makeSureDiskPanel; }
WipeFreeSpaceProViewController* WipeDiskViewController::progressPanel() const { return m_progressPanel; }
WipeSuccessViewController* WipeDiskViewController::successPanel() const { return m_successPanel; }
WipeFailViewController* WipeDiskViewController::failPanel() const { return m_failPanel; }
GuideNotice* WipeDiskViewController::noticePanel() const { return m_noticePanel; }

// ---- Volume list -----------------------------------------------------------

void WipeDiskViewController::getallVolumes() { m_scanner->getallVolumes(); }

void WipeDiskViewController::scanBegan() {
    m_busyIndicator->show();
    m_busyIndicator->raise();
    m_selectedLabel->clear();
    m_wipeButton->setEnabled(false);
    reloadData();
}

// While a confirmation is open or a run goes on, the chosen volume stays as it
// was chosen, whatever the new list holds: the run acts on it or fails.
void WipeDiskViewController::scanEnded() {
    m_busyIndicator->hide();
    reloadData();
    if (!m_wipe->isBegin() && !m_runActive && !confirmationOpen()) selectVolumeButton(-1);
}

bool WipeDiskViewController::confirmationOpen() const {
    return (m_makeSureFreeSpacePanel && m_makeSureFreeSpacePanel->isVisible()) ||
           (m_makeSureDiskPanel && m_makeSureDiskPanel->isVisible());
}

// The row of the chosen volume in the current list, found by its device node and
// UUID: a row index or a name may belong to another volume after a rescan.
bool WipeDiskViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_tableView || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down) return false;
    const int rows = int(allVolumeArr().size());
    const int chosen = rowOfSelectedVolume();
    const int row = chosen < 0 ? (key == Qt::Key_Down ? 0 : rows - 1) : chosen + (key == Qt::Key_Down ? 1 : -1);
    if (row >= 0 && row < rows) selectVolumeButton(row);
    return true;
}

int WipeDiskViewController::rowOfSelectedVolume() const {
    if (m_selectIndex < 0) return -1;
    const VolumeObj& chosen = m_wipe->selectVolumeObj;
    for (int row = 0; row < allVolumeArr().size(); ++row) {
        const VolumeObj& listed = allVolumeArr().at(row);
        if (listed.volRootDir == chosen.volRootDir && listed.diskUUID == chosen.diskUUID) return row;
    }
    return -1;
}

void WipeDiskViewController::reloadData() {
    // The radio marks the chosen volume only while it is listed.
    const bool listed = m_selectIndex >= 0 && m_selectIndex < allVolumeArr().size();
    m_model->reloadData(allVolumeArr(), listed ? m_wipe->selectVolumeObj.volumePath : QString());
    fitVolumeColumns(m_tableView);
}

void WipeDiskViewController::selectVolumeButton(int clickedRow) {
    const int row = clickedRow >= 0 ? clickedRow : rowOfSelectedVolume();
    if (row < 0 || row >= allVolumeArr().size()) {
        m_selectIndex = -1;
        m_wipeButton->setEnabled(false);
        m_selectedLabel->clear();
        reloadData();
        return;
    }
    m_selectIndex = row;
    m_wipe->selectVolumeObj = allVolumeArr().at(row);
    m_wipeButton->setEnabled(true);
    m_selectedLabel->setText(QString("You have selected: %1").arg(m_wipe->selectVolumeObj.volumeName));
    reloadData();
}

void WipeDiskViewController::changeFormatOrFreeSpaceView(int tag) {
    const bool wholeDrive = tag == 1;
    m_wipe->selectEraserType = wholeDrive ? 2 : 1;
    m_titleLabel->setText(wholeDrive ? "Erase Hard Drive" : "Erase Free Space");
    m_subtitleLabel->setText(wholeDrive ? "Remove every file on a volume and overwrite all of its space."
                                        : "Overwrite the free space of a volume so deleted files cannot come back.");
}

// ---- Side panels -----------------------------------------------------------

void WipeDiskViewController::updateHistoryButton() {
    const bool hasHistory = PublicUtilities::getUpDataHistoryStr(DoDataBase::kWipeVolumeHistory).toInt() != 0;
    m_historyButton->setImageName(hasHistory ? "ic_history" : "ic_nohistory");
}

void WipeDiskViewController::setButtonAction() { SetEraserLevelVC::showIn(m_levelPanel); }

void WipeDiskViewController::historyButtonAction() {
    HistoryViewController* history = HistoryViewController::showIn(m_historyPanel);
    connect(history, &HistoryViewController::closeHistoryView, this, &WipeDiskViewController::closeHistoryView);
}

void WipeDiskViewController::closeHistoryView() {
    m_historyPanel->slideOut();
    updateHistoryButton();
}

// ---- A run -----------------------------------------------------------------

void WipeDiskViewController::wipeButtonAction() {
    if (m_selectIndex < 0 || m_selectIndex >= allVolumeArr().size()) return;
    switch (m_wipe->wipeButtonAction()) {
    case FreeSpaceWipe::WipeStart::DoFreeAction: doFreeAction(); break;
    case FreeSpaceWipe::WipeStart::ShowNTFSWindow: showNotice(new NTFSViewController(this)); break;
    case FreeSpaceWipe::WipeStart::DoEraserPartiltion: doEraserPartiltion(); break;
    case FreeSpaceWipe::WipeStart::ShowSystemEraser: showNotice(new SystemEraserViewController(this)); break;
    case FreeSpaceWipe::WipeStart::NoSelectType: break;
    }
}

void WipeDiskViewController::showNotice(GuideNotice* notice) {
    m_noticePanel = notice;
    m_noticePanel->open();
}

void WipeDiskViewController::doFreeAction() {
    // The elapsed time counts from here, before the user confirms.
    m_wipe->setEraserTime();
    m_makeSureFreeSpacePanel = new MakeSureWipeFreeSpaceViewController(m_wipe->selectVolumeObj.volumeName, this);
    connect(m_makeSureFreeSpacePanel, &MakeSureWipeFreeSpaceViewController::makeSureToWipeFreeSpaceSelectVolume, this,
            &WipeDiskViewController::makeSureToWipeFreeSpaceSelectVolume);
    connect(m_makeSureFreeSpacePanel, &QDialog::rejected, this, &WipeDiskViewController::confirmationCancelled);
    m_makeSureFreeSpacePanel->open();
}

void WipeDiskViewController::doEraserPartiltion() {
    m_makeSureDiskPanel = new MakeSureWipeDiskViewController(m_wipe->selectVolumeObj.volumeName, this);
    connect(m_makeSureDiskPanel, &MakeSureWipeDiskViewController::makeSureToWipeSelectVolume, this,
            &WipeDiskViewController::makeSureToWipeSelectVolume);
    connect(m_makeSureDiskPanel, &QDialog::rejected, this, &WipeDiskViewController::confirmationCancelled);
    m_makeSureDiskPanel->open();
}

// A list rescanned while the confirmation was open gets its choice back.
void WipeDiskViewController::confirmationCancelled() {
    if (!m_scanner->isScanV()) selectVolumeButton(-1);
}

void WipeDiskViewController::makeSureToWipeFreeSpaceSelectVolume() {
    if (!m_wipe->pinSelectedVolume()) return;
    m_runActive = true;
    lockSidebar(true);
    auto* panel = new WipeFreeSpaceProViewController(EraserLevel::displayName(FreeSpaceWipe::getEraserTimes()), this);
    connect(panel, &WipeFreeSpaceProViewController::cancelWipeButtonAction, m_wipe,
            &FreeSpaceWipe::cancelWipeSpaceButtonAction);
    m_progressPanel = panel;
    m_wipe->doFreeSpaceAction();
    m_progressPanel->open();
}

void WipeDiskViewController::makeSureToWipeSelectVolume() {
    m_runActive = true;
    lockSidebar(true);
    auto* panel = new WipeDiskProViewController(EraserLevel::displayName(FreeSpaceWipe::getEraserTimes()), this);
    connect(panel, &WipeFreeSpaceProViewController::cancelWipeButtonAction, m_wipe,
            &FreeSpaceWipe::cancelWipeDiskButtonAction);
    m_progressPanel = panel;
    const QString name = m_wipe->selectVolumeObj.volumeName;
    m_progressPanel->setRemoveProgress("Reformatting the volume…", 0);
    m_progressPanel->setStage(QString("Step 1 of 2: reformatting \"%1\"").arg(name), true);
    m_erase->makeSureToWipeSelectVolume();
    m_progressPanel->open();
}

void WipeDiskViewController::stageTwoBegan() {
    if (!m_progressPanel) return;
    m_progressPanel->setRemoveProgress("Removing what the reformat left…", 0);
    m_progressPanel->setStage(
        QString("Step 2 of 2: overwriting all the space of \"%1\"").arg(m_wipe->selectVolumeObj.volumeName), true);
}

// The end view's title names the volume and says what happened to it.
QString WipeDiskViewController::endTitle(bool succeeded, bool cancelled) const {
    const QString name = m_wipe->selectVolumeObj.volumeName;
    if (m_wipe->selectEraserType == 2) {
        if (succeeded) return QString("\"%1\" has been erased").arg(name);
        return cancelled ? QString("Erasing \"%1\" was cancelled").arg(name) : QString("\"%1\" was not erased").arg(name);
    }
    if (succeeded) return QString("The free space of \"%1\" has been erased").arg(name);
    return cancelled ? QString("Erasing the free space of \"%1\" was cancelled").arg(name)
                     : QString("The free space of \"%1\" was not erased").arg(name);
}

void WipeDiskViewController::showEndEraser(bool succeeded, const QString& endText, bool cancelled) {
    m_runActive = false;
    lockSidebar(false);
    if (m_progressPanel) m_progressPanel->closeWindow();
    if (succeeded) {
        m_successPanel = new WipeSuccessViewController(endTitle(true, false), endText, this);
        m_successPanel->open();
    } else {
        m_failPanel = new WipeFailViewController(endTitle(false, cancelled), endText, m_wipe->failureDetail(), cancelled,
                                                 this);
        m_failPanel->open();
    }
    updateHistoryButton();
}

void WipeDiskViewController::lockSidebar(bool locked) {
    if (m_superDelegate) m_superDelegate->canChangeType(!locked, this);
}

void WipeDiskViewController::stopJob() {
    if (m_runActive && m_progressPanel && m_progressPanel->cancelButton()->isEnabled())
        m_progressPanel->cancelButton()->click();
}

void WipeDiskViewController::endAppRemoveFolder() { m_wipe->endAppRemoveFolder(); }

}  // namespace velmora
