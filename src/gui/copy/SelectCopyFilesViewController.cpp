#include "gui/copy/SelectCopyFilesViewController.h"

#include "engine/copy/Controller.h"
#include "gui/copy/CheckBoxLook.h"
#include "gui/copy/CopyFileTreeModel.h"
#include "gui/copy/FilePreviewViewController.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

namespace velmora {

SelectCopyFilesViewController::SelectCopyFilesViewController(Controller& controller, const QString& sourceName,
                                                             bool scanning, QWidget* parent)
    : MAAttachedWindow(parent, {660, 520}),
      m_controller(controller),
      m_model(new CopyFileTreeModel(controller, this)),
      m_scanning(scanning),
      m_progressLabel(Style::label("Measuring the files of the source…", 12, true)),
      m_progressBar(new QProgressBar(this)),
      m_progressTimer(new QTimer(this)),
      m_selectAll(new QCheckBox("Select All", this)),
      m_treeView(new QTreeView(this)),
      m_selectedLabel(Style::label(QString(), 12, true)),
      m_openButton(ImageSetButton::secondary("Open", this)),
      m_previewButton(ImageSetButton::secondary("Preview", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)),
      m_chooseButton(ImageSetButton::primary("Choose", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(26, 22, 26, 20);
    layout->setSpacing(8);
    layout->addWidget(Style::label("Choose the files to copy", 15, false, true));
    QLabel* from = Style::label(QString("From \"%1\"").arg(sourceName), 12, true);
    from->setTextFormat(Qt::PlainText);
    layout->addWidget(from);

    auto* progressRow = new QHBoxLayout;
    progressRow->addWidget(m_progressLabel);
    Style::styleProgressBar(*m_progressBar, 100, 6);
    m_progressBar->setFixedWidth(200);
    progressRow->addStretch(1);
    progressRow->addWidget(m_progressBar);
    layout->addLayout(progressRow);

    m_selectAll->setFocusPolicy(Qt::TabFocus);
    m_selectAll->setStyleSheet(checkBoxStyleSheet("QCheckBox") +
                               QString("QCheckBox { color: white; spacing: 8px; padding: 2px 4px; }"
                                       "QCheckBox:focus { border: 2px solid %1; border-radius: 5px; }")
                                   .arg(Style::rgba(Style::kAccent)));
    layout->addWidget(m_selectAll);

    m_treeView->setModel(m_model);
    m_treeView->setUniformRowHeights(true);
    m_treeView->setIconSize({18, 18});
    m_treeView->setFocusPolicy(Qt::StrongFocus);
    m_treeView->setAllColumnsShowFocus(true);
    m_treeView->setMouseTracking(true);
    m_treeView->header()->setStretchLastSection(false);
    m_treeView->header()->setSectionResizeMode(CopyFileTreeModel::Name, QHeaderView::Stretch);
    m_treeView->header()->setSectionResizeMode(CopyFileTreeModel::Size, QHeaderView::Fixed);
    m_treeView->header()->resizeSection(CopyFileTreeModel::Size, 110);
    m_treeView->header()->setSectionsClickable(false);
    m_treeView->setStyleSheet(checkBoxStyleSheet("QTreeView") +
                              QString("QTreeView { background: rgba(0,0,0,40); border: 1px solid rgba(255,255,255,25);"
                                      " border-radius: 6px; }"
                                      "QTreeView:focus { border: 2px solid %1; }"
                                      "QTreeView::item { height: 26px; }"
                                      "QTreeView::item:selected { background: %2; }")
                                  .arg(Style::rgba(Style::kAccent), Style::rgba(Style::kSelection)));
    RFOverlayScroller::apply(m_treeView);
    layout->addWidget(m_treeView, 1);
    layout->addWidget(m_selectedLabel);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    for (QPushButton* button : {m_openButton, m_previewButton, m_cancelButton, m_chooseButton}) button->setAutoDefault(false);
    buttons->addWidget(m_openButton);
    buttons->addWidget(m_previewButton);
    buttons->addStretch(1);
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_chooseButton);
    layout->addLayout(buttons);

    connect(m_selectAll, &QCheckBox::clicked, this, [this] {
        // A click on a partly ticked box ticks everything.
        m_controller.selectAllFileNode(m_controller.selectAllState() != 1);
    });
    connect(&m_controller, &Controller::selectAllButtonStateChanged, this, &SelectCopyFilesViewController::selectionChanged);
    connect(&m_controller, &Controller::treeChanged, this, &SelectCopyFilesViewController::selectionChanged);
    connect(&m_controller, &Controller::endScan, this, &SelectCopyFilesViewController::scanEnded);
    connect(m_treeView->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &SelectCopyFilesViewController::currentChanged);
    connect(m_openButton, &QPushButton::clicked, this, [this] { openFileWithFileNode(currentNode()); });
    connect(m_previewButton, &QPushButton::clicked, this, [this] { pereviewFileWithFileNode(currentNode()); });
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_chooseButton, &QPushButton::clicked, this, [this] {
        accept();
        emit filesChosen();
    });
    connect(m_progressTimer, &QTimer::timeout, this, &SelectCopyFilesViewController::showProgress);

    if (m_scanning) {
        m_progressTimer->start(100);
        showProgress();
    } else {
        scanEnded();
    }
    selectionChanged();
    currentChanged();
}

void SelectCopyFilesViewController::showProgress() {
    const float percent = m_controller.getProgress();
    m_progressBar->setValue(int(percent));
    m_progressLabel->setText(QString("Measuring the files of the source… %1%").arg(int(percent)));
}

void SelectCopyFilesViewController::scanEnded() {
    m_scanning = false;
    m_progressTimer->stop();
    m_progressBar->hide();
    m_progressLabel->setText(QString("%1 items at the top level. Open a folder to pick inside it.")
                                 .arg(m_controller.rootArr().size()));
    selectionChanged();
}

void SelectCopyFilesViewController::selectionChanged() {
    const int state = m_controller.selectAllState();
    m_selectAll->setCheckState(state == 1 ? Qt::Checked : state == 2 ? Qt::PartiallyChecked : Qt::Unchecked);
    const bool any = m_controller.hasSelection();
    m_selectedLabel->setText(any ? QString("Selected: %1").arg(byteToSizeWithByte(m_controller.selectedSize()))
                                 : QString("Nothing selected yet."));
    m_chooseButton->setEnabled(any && !m_scanning);
}

FileNode* SelectCopyFilesViewController::currentNode() const { return m_model->nodeOf(m_treeView->currentIndex()); }

void SelectCopyFilesViewController::currentChanged() {
    const FileNode* node = currentNode();
    m_openButton->setEnabled(node != nullptr);
    m_previewButton->setEnabled(node && !node->isDirectory);
}

void SelectCopyFilesViewController::openFileWithFileNode(const FileNode* node) {
    if (node) QDesktopServices::openUrl(fileUrl(node->path));
}

void SelectCopyFilesViewController::pereviewFileWithFileNode(const FileNode* node) {
    if (!node || node->isDirectory) return;
    (new FilePreviewViewController(node->path, this))->open();
}

void SelectCopyFilesViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
