#include "gui/copy/CopyProgreViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/copy/PlainToolTip.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace velmora {

CopyProgreViewController::CopyProgreViewController(const QString& copyFolder, QWidget* parent)
    : MAAttachedWindow(parent, {500, 260}),
      m_copyFolder(copyFolder),
      m_bar(new QProgressBar(this)),
      m_pathLabel(Style::label("Preparing…", 12)),
      m_bytesLabel(Style::label(QString(), 12, true)),
      m_cancelNote(Style::label("Stopping… items already being copied are finished first.", 12)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 22);
    layout->setSpacing(8);
    layout->addWidget(Style::label("Copying…", 15, false, true));
    QLabel* into = Style::label(QString("Into %1").arg(displayPath(copyFolder)), 12, true);
    into->setTextFormat(Qt::PlainText);
    into->setWordWrap(true);
    layout->addWidget(into);
    layout->addSpacing(6);

    Style::styleProgressBar(*m_bar, 100);
    layout->addWidget(m_bar);
    m_pathLabel->setTextFormat(Qt::PlainText);
    m_pathLabel->setMinimumWidth(0);
    m_pathLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layout->addWidget(m_pathLabel);
    layout->addWidget(m_bytesLabel);
    m_cancelNote->setWordWrap(true);
    m_cancelNote->setStyleSheet("color: #E8A93A; background: transparent;");
    m_cancelNote->hide();
    layout->addWidget(m_cancelNote);
    layout->addStretch(1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    // Escape stops the copy, as a click on Cancel does.
    setCancelButton(m_cancelButton);
    buttons->addWidget(m_cancelButton);
    layout->addLayout(buttons);
    connect(m_cancelButton, &QPushButton::clicked, this, [this] {
        m_cancelButton->setEnabled(false);
        m_cancelNote->show();
        emit cancelCopy();
    });
}

void CopyProgreViewController::topCopyProgress(float percent) { m_bar->setValue(qBound(0, int(percent), 100)); }

void CopyProgreViewController::topCopyFilePath(const QString& path) {
    const QString shown = displayPath(path);
    m_pathShown = shown;
    m_pathLabel->setToolTip(plainToolTip(shown));
    m_pathLabel->setText(m_pathLabel->fontMetrics().elidedText(shown, Qt::ElideMiddle, width() - 56));
}

void CopyProgreViewController::setCopiedBytes(quint64 copied, quint64 total) {
    m_bytesLabel->setText(total > 0 && total != ~quint64(0)
                              ? QString("%1 of %2 copied").arg(byteToSizeWithByte(copied), byteToSizeWithByte(total))
                              : QString("%1 copied").arg(byteToSizeWithByte(copied)));
}

int CopyProgreViewController::progressValue() const { return m_bar->value(); }
QString CopyProgreViewController::pathText() const { return m_pathShown; }
QString CopyProgreViewController::bytesText() const { return m_bytesLabel->text(); }

}  // namespace velmora
