#include "gui/duplicate/DuplicateSearchingView.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/Style.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

DuplicateSearchingView::DuplicateSearchingView(QWidget* parent)
    : QWidget(parent),
      m_indicator(new MLCircularIndicator(this, 140)),
      m_titleLabel(Style::label("Searching for duplicates…", 16)),
      m_pathLabel(Style::label(QString(), 11, true)),
      m_stopButton(ImageSetButton::secondary("Stop", this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 0, 40, 0);
    layout->setSpacing(12);
    layout->addStretch(1);
    layout->addWidget(m_indicator, 0, Qt::AlignHCenter);
    layout->addSpacing(10);
    layout->addWidget(m_titleLabel, 0, Qt::AlignHCenter);
    m_pathLabel->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_pathLabel);
    layout->addSpacing(10);
    m_stopButton->setFixedWidth(120);
    layout->addWidget(m_stopButton, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    connect(m_stopButton, &QPushButton::clicked, this, &DuplicateSearchingView::stopScanBtnClicked);
}

void DuplicateSearchingView::reset(const QString& searchPath) {
    m_titleLabel->setText("Searching for duplicates…");
    m_stopButton->setEnabled(true);
    m_indicator->setValue(0);
    m_indicator->setIndeterminate(true);
    setCurrentPath(searchPath);
}

void DuplicateSearchingView::setProgress(int percent) {
    // The folders are listed before any file is compared: no percentage yet.
    if (percent <= 0) return;
    m_indicator->setIndeterminate(false);
    m_indicator->setValue(percent);
}

void DuplicateSearchingView::setCurrentPath(const QString& path) {
    m_path = displayPath(path);
    showPath();
}

void DuplicateSearchingView::showStopping() {
    m_titleLabel->setText("Stopping…");
    m_stopButton->setEnabled(false);
}

void DuplicateSearchingView::showPath() {
    const int width = contentsRect().width() - 80;
    m_pathLabel->setText(m_pathLabel->fontMetrics().elidedText(m_path, Qt::ElideMiddle, width));
    m_pathLabel->setToolTip(m_path);
}

void DuplicateSearchingView::resizeEvent(QResizeEvent* event) {
    showPath();
    QWidget::resizeEvent(event);
}

}  // namespace velmora
