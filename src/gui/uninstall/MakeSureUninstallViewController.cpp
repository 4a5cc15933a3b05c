#include "gui/uninstall/MakeSureUninstallViewController.h"

#include "engine/uninstall/UninstallSession.h"
#include "gui/duplicate/DuplicateOutlineView.h"
#include "gui/uninstall/UninstallTreeModel.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"
#include "gui/widgets/SvgImageView.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

MakeSureUninstallViewController::MakeSureUninstallViewController(UninstallSession* session, const QStringList& running,
                                                                 QWidget* parent)
    : MAAttachedWindow(parent, {680, 480}),
      m_session(session),
      m_model(new UninstallTreeModel(session, this)),
      m_treeView(new DuplicateOutlineView(this)),
      m_runningLabel(Style::label(QString(), 12)),
      m_uninstallButton(ImageSetButton::primary("Uninstall", this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(26, 22, 26, 20);
    layout->setSpacing(8);
    auto* top = new QHBoxLayout;
    top->setSpacing(14);
    top->addWidget(new SvgImageView("ic_uninstall", {40, 40}, this), 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(Style::label("Uninstall these applications and their files?", 15, false, true));
    QLabel* message = Style::label("The ticked items are deleted for good; nothing goes to the Trash. Items marked "
                                   "in yellow are not ticked: they only look like the application's, tick them "
                                   "if they belong to it.",
                                   12, true);
    message->setWordWrap(true);
    texts->addWidget(message);
    top->addLayout(texts, 1);
    layout->addLayout(top);

    m_runningLabel->setObjectName("runningWarning");
    m_runningLabel->setWordWrap(true);
    m_runningLabel->setTextFormat(Qt::PlainText);
    m_runningLabel->setStyleSheet("color: #F0C060;");
    m_runningLabel->setText(running.isEmpty() ? QString()
                                              : QString("%1 %2 running. Quit it first: an application removed "
                                                        "while it runs can lose what it has not saved.")
                                                    .arg(running.join(", "), running.size() == 1 ? "is" : "are"));
    m_runningLabel->setVisible(!running.isEmpty());
    layout->addWidget(m_runningLabel);

    m_treeView->setModel(m_model);
    m_treeView->setObjectName("relatedFilesTree");
    m_treeView->header()->setStretchLastSection(true);
    m_treeView->header()->resizeSection(UninstallTreeModel::Name, UninstallTreeModel::columnWidth(UninstallTreeModel::Name));
    m_treeView->header()->setFont(Style::regularFont(12));
    m_treeView->setStyleSheet(QString("QTreeView { background: rgba(0,0,0,40); border: 1px solid rgba(255,255,255,30);"
                                      " border-radius: 6px; }"
                                      "QTreeView:focus { border: 2px solid %1; }"
                                      "QHeaderView { background: transparent; }"
                                      "QHeaderView::section { background: transparent; border: none; padding-left: 8px;"
                                      " color: rgba(255,255,255,128); }")
                                  .arg(Style::rgba(Style::kAccent)));
    // From the keyboard: Tab into the tree, Up and Down move, Space ticks, Left and Right fold.
    m_treeView->expandAll();
    layout->addWidget(m_treeView, 1);
    connect(m_treeView, &DuplicateOutlineView::checkBoxClicked, this,
            &MakeSureUninstallViewController::selectRemoveLanguage);
    connect(m_treeView, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        const QModelIndex name = index.siblingAtColumn(UninstallTreeModel::Name);
        if (UninstallTreeModel::recordOf(name) < 0) m_treeView->setExpanded(name, !m_treeView->isExpanded(name));
    });

    // The destructive button is never the default one: Enter presses Cancel.
    QPushButton* cancel = ImageSetButton::secondary("Cancel", this);
    m_uninstallButton->setAutoDefault(false);
    for (QPushButton* button : {cancel, m_uninstallButton}) button->setFixedWidth(120);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(m_uninstallButton);
    layout->addLayout(buttons);
    m_uninstallButton->setEnabled(session->canUninstall());
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_uninstallButton, &QPushButton::clicked, this, [this] {
        if (m_session->canUninstall()) emit clickedDeleteBtn();
    });
    setCancelButton(cancel);
    setTabOrder(m_treeView, cancel);
    setTabOrder(cancel, m_uninstallButton);
}

void MakeSureUninstallViewController::selectRemoveLanguage(const QModelIndex& index) {
    const int group = UninstallTreeModel::groupOf(index);
    if (group < 0 || m_session->isRemoving()) return;
    m_session->selectRemoveLanguage(group, UninstallTreeModel::recordOf(index));
    m_uninstallButton->setEnabled(m_session->canUninstall());
    m_model->redraw();
}

}  // namespace velmora
