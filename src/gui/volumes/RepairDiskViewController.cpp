#include "gui/volumes/RepairDiskViewController.h"

#include "engine/platform/NotificationCenter.h"
#include "engine/volumes/FormatChoices.h"
#include "engine/volumes/VolumeScanner.h"
#include "engine/volumes/WatchMountUnmount.h"
#include "gui/app/MainWindowController.h"
#include "gui/volumes/EidtNameViewcontroller.h"
#include "gui/volumes/FormatEndViewController.h"
#include "gui/volumes/MakeSureFormatViewController.h"
#include "gui/volumes/VolumeTableModel.h"
#include "gui/volumes/VolumeTableView.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace velmora {
namespace {

constexpr int kMargin = 26;
constexpr int kButtonWidth = 130;
constexpr int kButtonGap = 12;
constexpr int kEndViewDelayMs = 1000;

QString actionTitle(DiskTool::Action action, bool succeeded) {
    switch (action) {
    case DiskTool::Action::Format: return succeeded ? "Format completed" : "Format failed";
    case DiskTool::Action::Rename: return succeeded ? "Volume renamed" : "Rename failed";
    case DiskTool::Action::Eject: return succeeded ? "Disk ejected" : "Eject failed";
    }
    return {};
}

}  // namespace

RepairDiskViewController::RepairDiskViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent),
      m_superDelegate(superDelegate),
      m_scanner(new VolumeScanner(VolumeScanner::Screen::DiskTool, this)),
      m_diskTool(new DiskTool(this)),
      m_mountWatcher(new WatchMountUnmount(this)),
      m_model(new VolumeTableModel(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    // The page grows with the window: the list takes the height, the name column the width.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, 28, kMargin, 34);
    layout->setSpacing(0);
    layout->addLayout(createHeader());
    layout->addSpacing(14);
    layout->addLayout(createTable(), 1);
    layout->addSpacing(24);
    layout->addLayout(createFooter());
    setButtonState();

    connect(m_scanner, &VolumeScanner::scanBegan, this, &RepairDiskViewController::scanBegan);
    connect(m_scanner, &VolumeScanner::scanEnded, this, &RepairDiskViewController::scanEnded);
    connect(NotificationCenter::defaultCenter(), &NotificationCenter::posted, this, [this](const QString& name) {
        if (name == "MCVolumeMount" || name == "MCVolumeUnmount") getallVolumes();
    });
    connect(m_diskTool, &DiskTool::started, this, &RepairDiskViewController::actionStarted);
    connect(m_diskTool, &DiskTool::finished, this,
            [this](DiskTool::Action action, bool succeeded, const QString& message, const QString&) {
                actionFinished(action, succeeded, message);
            });

    showMode();
    selectVolumeButton(-1);
}

// The disk tool waits for an action under way, the scanner for its scan.
RepairDiskViewController::~RepairDiskViewController() = default;

QLayout* RepairDiskViewController::createHeader() {
    m_titleLabel = Style::label(QString(), 22, false, true);
    m_subtitleLabel = Style::label(QString(), 12, true);
    m_subtitleLabel->setWordWrap(true);
    auto* texts = new QVBoxLayout;
    texts->setContentsMargins(14, 0, 0, 0);
    texts->setSpacing(4);
    texts->addWidget(m_titleLabel);
    texts->addWidget(m_subtitleLabel);
    // People copy a drive before they format or erase it: the drive copy opens from here.
    QPushButton* copyDrive = ImageSetButton::secondary("Copy Drive", this);
    copyDrive->setMinimumWidth(kButtonWidth);
    connect(copyDrive, &QPushButton::clicked, this, [this] {
        if (m_superDelegate) m_superDelegate->showDiskCopyView();
    });
    auto* header = new QHBoxLayout;
    header->setSpacing(14);
    header->addLayout(texts, 1);
    header->addWidget(copyDrive, 0, Qt::AlignTop);
    return header;
}

QLayout* RepairDiskViewController::createTable() {
    m_tableView = createVolumeTable(m_model, this);
    connect(m_tableView, &QTableView::clicked, this,
            [this](const QModelIndex& index) { selectVolumeButton(index.row()); });
    m_tableView->installEventFilter(this);

    return volumeTableArea(m_tableView, m_busyIndicator, this);
}

// "Eject" stands left of the mode's main button ("Rename" or "Format") at the right edge.
QLayout* RepairDiskViewController::createFooter() {
    m_selectedLabel = Style::label(QString(), 13, true);
    m_selectedLabel->setTextFormat(Qt::PlainText);
    m_selectedLabel->setWordWrap(true);
    m_ejectButton = ImageSetButton::secondary(QString(), this);
    m_renameButton = ImageSetButton::primary(QString(), this);
    m_formatButton = ImageSetButton::primary(QString(), this);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(6, 0, 0, 0);
    footer->setSpacing(kButtonGap);
    footer->addWidget(m_selectedLabel, 1);
    for (QPushButton* button : {m_ejectButton, m_renameButton, m_formatButton}) {
        button->setMinimumSize(kButtonWidth, 36);
        footer->addWidget(button);
    }
    setTabOrder(m_tableView, m_ejectButton);
    setTabOrder(m_ejectButton, m_renameButton);
    setTabOrder(m_renameButton, m_formatButton);
    connect(m_formatButton, &QPushButton::clicked, this, &RepairDiskViewController::formatButtonAction);
    connect(m_renameButton, &QPushButton::clicked, this, &RepairDiskViewController::renameButtonAction);
    connect(m_ejectButton, &QPushButton::clicked, this, &RepairDiskViewController::ejectButtonAction);
    return footer;
}

void RepairDiskViewController::setButtonState() {
    m_renameButton->setText("Rename");
    m_ejectButton->setText("Eject");
    m_formatButton->setText("Format");
    for (QPushButton* button : {m_renameButton, m_ejectButton, m_formatButton}) button->setFont(Style::regularFont(16));
}

bool RepairDiskViewController::isScanV() const { return m_scanner->isScanV() || m_diskTool->isRunning(); }
const VolumeList& RepairDiskViewController::allVolumeArr() const { return m_scanner->allVolumeArr(); }
EidtNameViewcontroller* RepairDiskViewController::editNamePanel() const { return m_editNamePanel; }
MakeSureFormatViewController* RepairDiskViewController::makeSureFormatPanel() const { return m_makeSureFormatPanel; }
FormatEndViewController* RepairDiskViewController::formatEndPanel() const { return m_formatEndPanel; }

// ---- Mode and list ---------------------------------------------------------

void RepairDiskViewController::setIsFormatOrRename(int isFormat) {
    m_isFormat = isFormat != 0;
    showMode();
    getallVolumes();
}

void RepairDiskViewController::showMode() {
    m_titleLabel->setText(m_isFormat ? "Disk Format" : "Disk Tool");
    m_subtitleLabel->setText(m_isFormat ? "Give a volume a new, empty file system and a new name."
                                        : "Rename a volume, or eject the disk that holds it.");
    changeButtonPoint();
}

void RepairDiskViewController::getallVolumes() {
    if (m_scanner->isScanV()) {
        m_rescanWhenScanEnds = true;
        return;
    }
    m_scanner->getallVolumes();
}

void RepairDiskViewController::scanBegan() {
    m_busyIndicator->show();
    m_busyIndicator->raise();
    if (!m_diskTool->isRunning()) m_selectedLabel->clear();  // a format keeps saying what it does
    reloadData();
    changeButtonPoint();
}

void RepairDiskViewController::scanEnded() {
    if (m_rescanWhenScanEnds) {
        m_rescanWhenScanEnds = false;
        m_scanner->getallVolumes();
        return;
    }
    if (!m_diskTool->isRunning()) m_busyIndicator->hide();
    selectVolumeButton(-1);
    if (m_endViewDue) {
        m_endViewDue = false;
        QTimer::singleShot(kEndViewDelayMs, this, &RepairDiskViewController::showFormatEndWindow);
    }
}

void RepairDiskViewController::reloadData() {
    const bool listed = m_selectIndex >= 0 && m_selectIndex < allVolumeArr().size();
    m_model->reloadData(allVolumeArr(), listed ? m_selectVolume.volumePath : QString());
    fitVolumeColumns(m_tableView);
}

// The row of the chosen volume in the current list, by its device node and UUID:
// after a rescan a row index or a name may belong to another volume.
int RepairDiskViewController::rowOfSelectedVolume() const {
    if (m_selectVolume.volRootDir.isEmpty()) return -1;
    for (int row = 0; row < allVolumeArr().size(); ++row) {
        const VolumeObj& listed = allVolumeArr().at(row);
        if (listed.volRootDir == m_selectVolume.volRootDir && listed.diskUUID == m_selectVolume.diskUUID) return row;
    }
    return -1;
}

void RepairDiskViewController::selectVolumeButton(int clickedRow) {
    if (m_diskTool->isRunning()) return;  // the action keeps the volume it was given
    const int row = clickedRow >= 0 ? clickedRow : rowOfSelectedVolume();
    if (row < 0 || row >= allVolumeArr().size()) {
        m_selectIndex = -1;
        m_selectVolume = VolumeObj();
        m_selectedLabel->clear();
    } else {
        m_selectIndex = row;
        m_selectVolume = allVolumeArr().at(row);
        m_selectedLabel->setText(QString("You have selected: %1").arg(m_selectVolume.volumeName));
    }
    reloadData();
    changeButtonPoint();
}

void RepairDiskViewController::changeButtonPoint() {
    const bool chosen = m_selectIndex >= 0;
    const bool idle = !isScanV();
    m_formatButton->setVisible(m_isFormat && m_selectVolume.volumeMountPoint != "/");
    m_renameButton->setVisible(!m_isFormat);
    m_ejectButton->setVisible(!m_isFormat && chosen && m_selectVolume.bCanEject);
    m_formatButton->setEnabled(chosen && idle);
    m_renameButton->setEnabled(chosen && idle);
    m_ejectButton->setEnabled(chosen && idle);
}

bool RepairDiskViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_tableView || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down) return false;
    const int rows = int(allVolumeArr().size());
    const int chosen = rowOfSelectedVolume();
    const int row = chosen < 0 ? (key == Qt::Key_Down ? 0 : rows - 1) : chosen + (key == Qt::Key_Down ? 1 : -1);
    if (row >= 0 && row < rows) selectVolumeButton(row);
    return true;
}

// ---- Actions ---------------------------------------------------------------

void RepairDiskViewController::renameButtonAction() {
    if (m_selectIndex < 0 || isScanV()) return;
    m_actionVolume = m_selectVolume;
    m_editNamePanel = new EidtNameViewcontroller(m_actionVolume.volumeName, m_actionVolume.diskType, this);
    connect(m_editNamePanel, &EidtNameViewcontroller::eidtNameSaveActionWithName, this,
            &RepairDiskViewController::eidtNameSaveActionWithName);
    m_editNamePanel->open();
}

void RepairDiskViewController::eidtNameSaveActionWithName(const QString& name) {
    if (name.isEmpty() || name == " " || m_actionVolume.volRootDir.isEmpty()) return;
    m_diskTool->renameVolume(m_actionVolume, name);
}

void RepairDiskViewController::ejectButtonAction() {
    if (m_selectIndex < 0 || isScanV() || m_selectVolume.diskUUID.isEmpty()) return;
    m_actionVolume = m_selectVolume;
    m_diskTool->ejectVolume(m_actionVolume);
}

void RepairDiskViewController::formatButtonAction() {
    if (m_selectIndex < 0 || isScanV() || m_selectVolume.volumeMountPoint == "/") return;
    m_actionVolume = m_selectVolume;
    m_makeSureFormatPanel = new MakeSureFormatViewController(formatChoices(), this);
    m_makeSureFormatPanel->setName(m_actionVolume.volumeName, m_actionVolume.diskType);
    connect(m_makeSureFormatPanel, &MakeSureFormatViewController::makeSureToFormatSelectVolumeWithName, this,
            &RepairDiskViewController::makeSureToFormatSelectVolumeWithName);
    m_makeSureFormatPanel->open();
}

void RepairDiskViewController::makeSureToFormatSelectVolumeWithName(const QString& name, const QString& typeText) {
    if (m_actionVolume.volRootDir.isEmpty()) return;
    m_diskTool->formatVolume(m_actionVolume, name, typeText);
}

void RepairDiskViewController::actionStarted(DiskTool::Action action) {
    if (action == DiskTool::Action::Format) {
        lockSidebar(true);
        m_selectedLabel->setText(QString("Formatting \"%1\"…").arg(m_actionVolume.volumeName));
    }
    m_busyIndicator->show();
    m_busyIndicator->raise();
    changeButtonPoint();
}

// Whatever happened, the list is read again. A format always ends in the end view,
// a rename or eject only when it failed: done, it shows in the list.
void RepairDiskViewController::actionFinished(DiskTool::Action action, bool succeeded, const QString& message) {
    m_endReport = {actionTitle(action, succeeded), succeeded, message};
    m_endViewDue = action == DiskTool::Action::Format || !succeeded;
    if (action != DiskTool::Action::Format) lockSidebar(false);
    getallVolumes();
}

void RepairDiskViewController::showFormatEndWindow() {
    lockSidebar(false);
    m_formatEndPanel = new FormatEndViewController(m_endReport.title, m_endReport.succeeded, m_endReport.message, this);
    m_formatEndPanel->open();
}

void RepairDiskViewController::stopJob() {
    if (m_formatRunning)
        m_selectedLabel->setText(
            QString("Formatting \"%1\"… the window closes when the format has finished.").arg(m_actionVolume.volumeName));
}

void RepairDiskViewController::lockSidebar(bool locked) {
    m_formatRunning = locked;
    if (m_superDelegate) m_superDelegate->canChangeType(!locked, this);
}

}  // namespace velmora
