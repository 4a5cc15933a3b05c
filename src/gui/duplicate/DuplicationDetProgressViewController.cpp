#include "gui/duplicate/DuplicationDetProgressViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace velmora {

DuplicationDetProgressViewController::DuplicationDetProgressViewController(QWidget* parent)
    : MAAttachedWindow(parent, {480, 210}),
      m_bar(new QProgressBar(this)),
      m_percentLabel(Style::label("0%", 12, true)),
      m_pathLabel(Style::label(QString(), 11, true)),
      m_stopButton(ImageSetButton::secondary("Stop", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 22);
    layout->setSpacing(8);

    auto* titleRow = new QHBoxLayout;
    titleRow->addWidget(Style::label("Removing duplicates…", 15, false, true));
    titleRow->addStretch(1);
    m_percentLabel->setObjectName("percentLabel");
    titleRow->addWidget(m_percentLabel);
    layout->addLayout(titleRow);
    layout->addWidget(Style::label("The selected copies are deleted permanently.", 12, true));
    layout->addSpacing(8);

    Style::styleProgressBar(*m_bar, 100);
    layout->addWidget(m_bar);
    m_pathLabel->setObjectName("pathLabel");
    layout->addWidget(m_pathLabel);
    layout->addStretch(1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_stopButton);
    layout->addLayout(buttons);
    connect(m_stopButton, &QPushButton::clicked, this, [this] {
        // The removal ends with the copy in hand; a second click changes nothing.
        m_stopButton->setEnabled(false);
        emit stopRemoveBtnClicked();
    });
    setCancelButton(m_stopButton);
}

void DuplicationDetProgressViewController::setRemoveProgress(int progress, const QString& path) {
    m_progress = progress;
    m_path = displayPath(path);
    m_bar->setValue(progress);
    m_percentLabel->setText(QString("%1%").arg(progress));
    showPath();
}

void DuplicationDetProgressViewController::showPath() {
    const int width = contentsRect().width() - 56;
    m_pathLabel->setText(m_pathLabel->fontMetrics().elidedText(m_path, Qt::ElideMiddle, width));
    m_pathLabel->setToolTip(m_path);
}

void DuplicationDetProgressViewController::resizeEvent(QResizeEvent* event) {
    showPath();
    MAAttachedWindow::resizeEvent(event);
}

}  // namespace velmora
