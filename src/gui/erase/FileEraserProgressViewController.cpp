#include "gui/erase/FileEraserProgressViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace velmora {
namespace {

// The bar counts in tenths of a percent, so that small steps still move it.
constexpr int kBarScale = 10;

}  // namespace

FileEraserProgressViewController::FileEraserProgressViewController(const QString& levelName, QWidget* parent)
    : MAAttachedWindow(parent, {480, 236}),
      m_typeLabel(Style::label(levelName, 12, true)),
      m_timeLabel(Style::label("00:00:00", 12, true)),
      m_bar(new QProgressBar(this)),
      m_roundLabel(Style::label(QString(), 12)),
      m_pathLabel(Style::label(QString(), 11, true)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 22);
    layout->setSpacing(8);

    auto* titleRow = new QHBoxLayout;
    titleRow->addWidget(Style::label("Erasing…", 15, false, true));
    titleRow->addStretch(1);
    m_timeLabel->setObjectName("elapsedTime");
    titleRow->addWidget(m_timeLabel);
    layout->addLayout(titleRow);
    m_typeLabel->setObjectName("typeLabel");
    layout->addWidget(m_typeLabel);
    layout->addSpacing(8);

    Style::styleProgressBar(*m_bar, 100 * kBarScale);
    layout->addWidget(m_bar);
    layout->addSpacing(4);
    m_roundLabel->setObjectName("roundLabel");
    layout->addWidget(m_roundLabel);
    m_pathLabel->setObjectName("pathLabel");
    layout->addWidget(m_pathLabel);
    layout->addStretch(1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cancelButton);
    layout->addLayout(buttons);
    connect(m_cancelButton, &QPushButton::clicked, this, [this] {
        // The run ends with the item in hand; a second click would change nothing.
        m_cancelButton->setEnabled(false);
        emit cancelEraserButtonAction();
    });
    setCancelButton(m_cancelButton);
    setRemoveProgress(2.0, QString(), QString());
}

void FileEraserProgressViewController::setRemoveProgress(double progress, const QString& path, const QString& round) {
    m_progress = progress;
    m_path = path;
    m_roundLabel->setText(round);
    showPath();
    m_bar->setValue(int(progress * kBarScale));
    if (progress >= 100) close();
}

void FileEraserProgressViewController::setElapsedTime(const QString& text) { m_timeLabel->setText(text); }

QString FileEraserProgressViewController::typeText() const { return m_typeLabel->text(); }
QString FileEraserProgressViewController::roundText() const { return m_roundLabel->text(); }
QString FileEraserProgressViewController::elapsedText() const { return m_timeLabel->text(); }

void FileEraserProgressViewController::showPath() {
    const int width = contentsRect().width() - 56;
    m_pathLabel->setText(m_pathLabel->fontMetrics().elidedText(m_path, Qt::ElideMiddle, width));
    m_pathLabel->setToolTip(m_path);
}

void FileEraserProgressViewController::resizeEvent(QResizeEvent* event) {
    showPath();
    MAAttachedWindow::resizeEvent(event);
}

}  // namespace velmora
