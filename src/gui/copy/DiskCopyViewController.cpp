#include "gui/copy/DiskCopyViewController.h"

#include "engine/platform/NativePath.h"
#include "engine/volumes/FileManagerVolumeScan.h"
#include "gui/app/MainWindowController.h"
#include "gui/copy/CheckBoxLook.h"
#include "gui/copy/CopyFailViewController.h"
#include "gui/copy/CopyMakeSureVC.h"
#include "gui/copy/CopyProgreViewController.h"
#include "gui/copy/CopySuccessViewController.h"
#include "gui/copy/DiskListViewController.h"
#include "gui/copy/SelectCopyFilesViewController.h"
#include "gui/copy/SelectDiskViewController.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/LComboBox.h"
#include "gui/widgets/SidebarButton.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPropertyAnimation>
#include <QTimer>
#include <QVBoxLayout>

namespace velmora {
namespace {

constexpr int kMargin = 26;
constexpr int kPickerHeight = 300;
constexpr int kSlideMs = 350;

}  // namespace

DiskCopyViewController::DiskCopyViewController(MainWindowController* superDelegate, QWidget* parent)
    : QWidget(parent),
      m_superDelegate(superDelegate),
      m_scan(new FileManagerVolumeScan(this)),
      m_bytesTimer(new QTimer(this)) {
    resize(MainWindowController::kPageWidth, MainWindowController::kPageHeight);
    setAutoFillBackground(true);
    // The page grows with the window: the two pickers take the height, half the width each.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, 28, kMargin, 34);
    layout->setSpacing(0);
    layout->addLayout(createHeader());
    layout->addSpacing(14);
    layout->addLayout(createPickers(), 1);
    layout->addSpacing(14);
    layout->addLayout(createFooter());

    connect(&m_logic, &DiskCopyLogic::stateChanged, this, &DiskCopyViewController::refreshState);
    connect(&m_logic, &DiskCopyLogic::showError, this, [this](const QString& text) { m_errorLabel->setText(text); });
    connect(&m_logic, &DiskCopyLogic::showConfirmation, this, &DiskCopyViewController::showConfirmation);
    connect(&m_logic, &DiskCopyLogic::topCopyProgress, this, [this](float percent) {
        if (m_copyProgressVC) m_copyProgressVC->topCopyProgress(percent);
    });
    connect(&m_logic, &DiskCopyLogic::topCopyFilePath, this, [this](const QString& path) {
        if (m_copyProgressVC) m_copyProgressVC->topCopyFilePath(path);
    });
    connect(&m_logic, &DiskCopyLogic::copyEnded, this, &DiskCopyViewController::copyEnded);
    connect(m_bytesTimer, &QTimer::timeout, this, [this] {
        if (m_copyProgressVC && m_logic.doCopy())
            m_copyProgressVC->setCopiedBytes(m_logic.doCopy()->copiedBytes(), m_logic.neededSize());
    });
    connect(m_scan, &FileManagerVolumeScan::volumesChanged, this, &DiskCopyViewController::reloadPickers);
    if (m_superDelegate)
        for (SidebarButton* button : m_superDelegate->allTypeButArr())
            connect(button, &SidebarButton::clickedWithTag, this, &DiskCopyViewController::closePage);
    refreshState();
}

// The copy stops with its engine, which waits for its tasks.
DiskCopyViewController::~DiskCopyViewController() = default;

QLayout* DiskCopyViewController::createHeader() {
    QLabel* title = Style::label("Copy Drive", 22, false, true);
    QLabel* subtitle = Style::label("Copy the files of a drive into a new dated folder on another drive.", 12, true);
    subtitle->setWordWrap(true);
    m_closeButton = new ImageToggle("ic_close", this, 24);
    m_closeButton->setToolTip("Close");
    m_closeButton->setAccessibleName("Close the drive copy");
    m_closeButton->setFocusPolicy(Qt::TabFocus);
    connect(m_closeButton, &ImageToggle::clicked, this, &DiskCopyViewController::closePage);
    auto* texts = new QVBoxLayout;
    texts->setContentsMargins(14, 0, 0, 0);
    texts->setSpacing(4);
    texts->addWidget(title);
    texts->addWidget(subtitle);
    auto* header = new QHBoxLayout;
    header->addLayout(texts, 1);
    header->addWidget(m_closeButton, 0, Qt::AlignTop);
    header->addSpacing(6);
    return header;
}

QLayout* DiskCopyViewController::createPickers() {
    m_sourcePicker = new SelectDiskViewController("Source drive", this);
    m_sourcePicker->setMinimumHeight(kPickerHeight);
    m_destinationPicker = new SelectDiskViewController("Destination drive", this);
    m_destinationPicker->setMinimumHeight(kPickerHeight);
    connect(m_sourcePicker, &SelectDiskViewController::doSelectDiskWithVolume, this,
            [this](const VolumeObj& volume) { doSelectDiskWithVolume(volume, true); });
    connect(m_destinationPicker, &SelectDiskViewController::doSelectDiskWithVolume, this,
            [this](const VolumeObj& volume) { doSelectDiskWithVolume(volume, false); });
    auto* pickers = new QHBoxLayout;
    pickers->setSpacing(kMargin);
    pickers->addWidget(m_sourcePicker, 1);
    pickers->addWidget(m_destinationPicker, 1);
    return pickers;
}

QLayout* DiskCopyViewController::createFooter() {
    m_copyTypeBox = new LComboBox(this);
    m_copyTypeBox->addItems(DiskCopyLogic::copyTypeTitles());
    m_copyTypeBox->setMinimumSize(196, 32);
    m_copyTypeBox->setFocusPolicy(Qt::TabFocus);
    connect(m_copyTypeBox, &QComboBox::activated, this, &DiskCopyViewController::changeSelectCopyType);
    m_changePickButton = ImageSetButton::secondary("Change…", this);
    m_changePickButton->setMinimumSize(110, 32);
    connect(m_changePickButton, &QPushButton::clicked, this, &DiskCopyViewController::openPickPanel);
    m_pickedLabel = Style::label(QString(), 12, true);
    m_pickedLabel->setWordWrap(true);

    m_destinationLabel = Style::label(QString(), 12, true);
    m_destinationLabel->setTextFormat(Qt::PlainText);
    m_destinationLabel->setWordWrap(true);

    m_verifyBox = new QCheckBox("Verify after copying", this);
    m_verifyBox->setToolTip("Compare every copied file with its source byte for byte when the copy ends.");
    m_verifyBox->setFocusPolicy(Qt::TabFocus);
    m_verifyBox->setStyleSheet(checkBoxStyleSheet("QCheckBox") +
                               QString("QCheckBox { color: white; spacing: 8px; padding: 2px 4px; }"
                                       "QCheckBox:focus { border: 2px solid %1; border-radius: 5px; }")
                                   .arg(Style::rgba(Style::kAccent)));

    m_errorLabel = Style::label(QString(), 12);
    m_errorLabel->setWordWrap(true);
    m_errorLabel->setStyleSheet("color: #E8A93A; background: transparent;");

    m_copyButton = ImageSetButton::primary("Copy Now", this);
    m_copyButton->setMinimumWidth(130);
    connect(m_copyButton, &QPushButton::clicked, this, &DiskCopyViewController::cloneButtonAction);

    // Under the source: the copy mode and what it picked; under the destination: where the copy goes.
    auto* mode = new QHBoxLayout;
    mode->setSpacing(10);
    mode->addWidget(m_copyTypeBox);
    mode->addWidget(m_changePickButton);
    mode->addStretch(1);
    auto* options = new QGridLayout;
    options->setHorizontalSpacing(kMargin);
    options->setVerticalSpacing(6);
    options->addLayout(mode, 0, 0);
    options->addWidget(m_destinationLabel, 0, 1);
    options->addWidget(m_pickedLabel, 1, 0);
    options->addWidget(m_verifyBox, 2, 0, Qt::AlignLeft);
    options->setColumnStretch(0, 1);
    options->setColumnStretch(1, 1);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(6, 0, 0, 0);
    footer->setSpacing(16);
    footer->addWidget(m_errorLabel, 1);
    footer->addWidget(m_copyButton, 0, Qt::AlignBottom);
    auto* all = new QVBoxLayout;
    all->setSpacing(12);
    all->addLayout(options);
    all->addLayout(footer);
    return all;
}

SelectCopyFilesViewController* DiskCopyViewController::pickPanel() const { return m_pickPanel; }
CopyMakeSureVC* DiskCopyViewController::makeSurePanel() const { return m_makeSurePanel; }
CopyProgreViewController* DiskCopyViewController::copyProgressVC() const { return m_copyProgressVC; }
CopySuccessViewController* DiskCopyViewController::successPanel() const { return m_successPanel; }
CopyFailViewController* DiskCopyViewController::failPanel() const { return m_failPanel; }

// ---- Showing the page ------------------------------------------------------

void DiskCopyViewController::showPage() {
    getallVolumes();
    if (isVisible() && y() == 0) return;
    move(0, height());  // slides in from below the page area
    show();
    raise();
    slideTo(0, false);
}

void DiskCopyViewController::closePage() {
    if (m_copying || isHidden()) return;
    slideTo(height(), true);
    emit pageClosed();
}

void DiskCopyViewController::slideTo(int top, bool hideAtEnd) {
    auto* slide = new QPropertyAnimation(this, "pos", this);
    slide->setDuration(kSlideMs);
    slide->setEndValue(QPoint(0, top));
    if (hideAtEnd) connect(slide, &QPropertyAnimation::finished, this, [this] {
        if (pos().y() != 0) hide();
    });
    slide->start(QAbstractAnimation::DeleteWhenStopped);
}

// ---- Volumes ---------------------------------------------------------------

void DiskCopyViewController::getallVolumes() {
    m_scan->doGetAllVolume();
    m_scan->getDiskCallBack();
    reloadPickers();
}

void DiskCopyViewController::reloadPickers() {
    m_sourcePicker->setVolumes(m_scan->allVolumeArr());
    m_destinationPicker->setVolumes(m_scan->allVolumeArr());
    // Tab goes as the page reads, from the header through the drive rows (made anew here)
    // to the footer.
    QList<QWidget*> order{m_closeButton};
    for (DiskListViewController* row : m_sourcePicker->rows()) order.append(row);
    for (DiskListViewController* row : m_destinationPicker->rows()) order.append(row);
    order << m_copyTypeBox << m_changePickButton << m_verifyBox << m_copyButton;
    for (qsizetype i = 1; i < order.size(); ++i) setTabOrder(order.at(i - 1), order.at(i));
    refreshState();
}

void DiskCopyViewController::doSelectDiskWithVolume(const VolumeObj& volume, bool asSource) {
    if (m_copying) return;
    if (asSource && m_logic.fromeVolume() && m_logic.fromeVolume()->volumePath != volume.volumePath) m_treeSource.clear();
    m_logic.doSelectDiskWithVolume(volume, asSource);
}

void DiskCopyViewController::refreshState() {
    const auto& from = m_logic.fromeVolume();
    const auto& to = m_logic.toVolume();
    m_sourcePicker->setChosenPath(from ? from->volumePath : QString());
    m_destinationPicker->setChosenPath(to ? to->volumePath : QString());
    m_destinationLabel->setText(to ? QString("To \"%1\": %2 free").arg(to->volumeName, to->volumeFreeSize) : QString());
    m_errorLabel->setText(m_logic.errorText());
    m_copyButton->setEnabled(m_logic.copyButtonEnabled() && !m_copying);

    const bool some = m_logic.copyType() == DiskCopyLogic::CopyType::CopySomeFiles;
    m_copyTypeBox->setCurrentIndex(some ? 1 : 0);
    m_copyTypeBox->setEnabled(from.has_value() && !m_copying);
    m_changePickButton->setVisible(some);
    const quint64 picked = m_logic.selectFilesSize();
    m_pickedLabel->setText(some && picked != DiskCopyLogic::kUnknownSize ? QString("Picked: %1").arg(byteToSizeWithByte(picked))
                                                                          : QString());
    m_pickedLabel->setVisible(!m_pickedLabel->text().isEmpty());  // no empty line under the mode
}

// ---- Copy mode and the picking tree ----------------------------------------

void DiskCopyViewController::changeSelectCopyType(int index) {
    if (index == 1) {
        openPickPanel();
        return;
    }
    m_logic.setCopyType(DiskCopyLogic::CopyType::CopyAllFiles);
}

void DiskCopyViewController::openPickPanel() {
    const auto& from = m_logic.fromeVolume();
    if (!from || m_copying) {
        refreshState();
        return;
    }
    Controller& controller = m_logic.controller();
    if (m_treeSource != from->volumePath) {
        controller.eumeAllRootFileNodeWithRootArr(from->volumePath, false, true);
        m_treeSource = from->volumePath;
    }
    m_pickPanel = new SelectCopyFilesViewController(controller, from->volumeName, controller.eumeRoot().isScanning(), this);
    connect(m_pickPanel, &SelectCopyFilesViewController::filesChosen, this, &DiskCopyViewController::filesChosen);
    connect(m_pickPanel, &QDialog::rejected, this, &DiskCopyViewController::pickPanelCancelled);
    m_pickPanel->open();
}

void DiskCopyViewController::pickPanelCancelled() {
    Controller& controller = m_logic.controller();
    // A tree whose listing was cut short is listed again next time.
    if (controller.eumeRoot().isScanning()) {
        controller.stopScan();
        m_treeSource.clear();
    }
    if (m_logic.selectFilesSize() == DiskCopyLogic::kUnknownSize)
        m_logic.setCopyType(DiskCopyLogic::CopyType::CopyAllFiles);
    else
        refreshState();
}

void DiskCopyViewController::filesChosen() {
    Controller& controller = m_logic.controller();
    m_logic.setCopyType(DiskCopyLogic::CopyType::CopySomeFiles);
    m_logic.setPickedFiles(controller.rootArr(), controller.selectedSize());
}

// ---- A copy ----------------------------------------------------------------

void DiskCopyViewController::cloneButtonAction() {
    if (m_copying || !m_copyButton->isEnabled()) return;
    // "Copy All Files" lists the source afresh into the controller: the picking tree goes.
    if (m_logic.copyType() == DiskCopyLogic::CopyType::CopyAllFiles) m_treeSource.clear();
    m_copyButton->setEnabled(false);
    m_logic.cloneButtonAction();
    if (!m_makeSurePanel) refreshState();
}

void DiskCopyViewController::showConfirmation() {
    const bool all = m_logic.copyType() == DiskCopyLogic::CopyType::CopyAllFiles;
    const quint64 needed = m_logic.neededSize();
    m_makeSurePanel = new CopyMakeSureVC(m_logic.fromeVolume()->volumeName, m_logic.toVolume()->volumeName, all,
                                         needed == DiskCopyLogic::kUnknownSize ? QString() : byteToSizeWithByte(needed),
                                         this);
    connect(m_makeSurePanel, &CopyMakeSureVC::beginToCopyFiles, this, &DiskCopyViewController::beginToCopyFiles);
    connect(m_makeSurePanel, &QDialog::rejected, this, &DiskCopyViewController::refreshState);
    m_makeSurePanel->open();
}

void DiskCopyViewController::beginToCopyFiles() {
    if (!m_logic.beginToCopyFiles(QDateTime::currentDateTime(), m_verifyBox->isChecked())) {
        refreshState();
        return;
    }
    m_copying = true;
    lockNavigation(true);
    refreshState();
    m_copyProgressVC = new CopyProgreViewController(m_logic.copyFolder(), this);
    connect(m_copyProgressVC, &CopyProgreViewController::cancelCopy, &m_logic, &DiskCopyLogic::cancelCopy);
    m_copyProgressVC->setCopiedBytes(0, m_logic.neededSize());
    m_bytesTimer->start(200);
    m_copyProgressVC->open();
}

void DiskCopyViewController::stopJob() {
    if (m_copying && m_copyProgressVC && m_copyProgressVC->cancelButton()->isEnabled())
        m_copyProgressVC->cancelButton()->click();
}

void DiskCopyViewController::copyEnded(const CopyResult& result) {
    m_copying = false;
    m_bytesTimer->stop();
    lockNavigation(false);
    if (m_copyProgressVC) m_copyProgressVC->closeWindow();
    if (result.complete()) {
        m_successPanel = new CopySuccessViewController(result, this);
        m_successPanel->open();
    } else {
        m_failPanel = new CopyFailViewController(result, result.cancelled ? DiskCopyLogic::kStoppedText : m_logic.errorText(),
                                                 this);
        m_failPanel->open();
    }
    // The destination has less room now: its space is read again.
    m_scan->doGetAllVolume();
    reloadPickers();
    if (const auto& to = m_logic.toVolume()) {
        for (const VolumeObj& volume : m_scan->allVolumeArr())
            if (volume.volumePath == to->volumePath) m_logic.doSelectDiskWithVolume(volume, false);
    }
    refreshState();
}

void DiskCopyViewController::lockNavigation(bool locked) {
    m_closeButton->setEnabled(!locked);
    if (m_superDelegate) m_superDelegate->canChangeType(!locked, this);
}

}  // namespace velmora
