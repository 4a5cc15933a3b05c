#include "gui/volumes/WipeFreeSpaceProViewController.h"

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
constexpr float kLeastShownPercent = 2.0f;

}  // namespace

WipeFreeSpaceProViewController::WipeFreeSpaceProViewController(const QString& levelName, QWidget* parent,
                                                               const QString& title)
    : MAAttachedWindow(parent, {480, 250}),
      m_typeLabel(Style::label(levelName, 12, true)),
      m_stageLabel(Style::label(QString(), 13)),
      m_bar(new QProgressBar(this)),
      m_pathLabel(Style::label("Preparing…", 12)),
      m_cancelNote(Style::label("Cancelling… the wipe stops at its next step.", 12)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 22);
    layout->setSpacing(8);
    layout->addWidget(Style::label(title, 15, false, true));
    m_typeLabel->setObjectName("typeLabel");
    layout->addWidget(m_typeLabel);
    m_stageLabel->setObjectName("stageLabel");
    m_stageLabel->setTextFormat(Qt::PlainText);
    m_stageLabel->setWordWrap(true);
    m_stageLabel->hide();
    layout->addWidget(m_stageLabel);
    layout->addSpacing(8);

    Style::styleProgressBar(*m_bar, 100 * kBarScale);
    layout->addWidget(m_bar);
    layout->addSpacing(4);
    m_pathLabel->setObjectName("pathLabel");
    m_pathLabel->setWordWrap(true);
    layout->addWidget(m_pathLabel);
    m_cancelNote->setObjectName("cancelNote");
    m_cancelNote->setWordWrap(true);
    m_cancelNote->setStyleSheet("color: #E8A93A; background: transparent;");
    m_cancelNote->hide();
    layout->addWidget(m_cancelNote);
    layout->addStretch(1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cancelButton);
    layout->addLayout(buttons);
    // Escape cancels the run, as a click on Cancel does.
    setCancelButton(m_cancelButton);
    connect(m_cancelButton, &QPushButton::clicked, this, [this] {
        m_cancelButton->setEnabled(false);
        m_cancelNote->show();
        emit cancelWipeButtonAction();
    });
    setRemoveProgress(m_pathLabel->text(), 0);
}

void WipeFreeSpaceProViewController::setRemoveProgress(const QString& statusText, float percent) {
    m_bar->setRange(0, 100 * kBarScale);
    m_progress = qMax(percent, kLeastShownPercent);
    m_bar->setValue(int(qMin(m_progress, 100.0f) * kBarScale));
    m_pathLabel->setText(statusText);
}

void WipeFreeSpaceProViewController::setStage(const QString& stageText, bool busy) {
    m_stageLabel->setText(stageText);
    m_stageLabel->setVisible(!stageText.isEmpty());
    if (busy) m_bar->setRange(0, 0);
    // The panel is as tall as its content.
    setFixedHeight(qMax(height(), layout()->totalHeightForWidth(width())));
}

QString WipeFreeSpaceProViewController::stageText() const { return m_stageLabel->text(); }
bool WipeFreeSpaceProViewController::isBusy() const { return m_bar->maximum() == 0; }

QString WipeFreeSpaceProViewController::typeText() const { return m_typeLabel->text(); }
QString WipeFreeSpaceProViewController::pathText() const { return m_pathLabel->text(); }

}  // namespace velmora
