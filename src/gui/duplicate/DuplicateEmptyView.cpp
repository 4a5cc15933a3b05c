#include "gui/duplicate/DuplicateEmptyView.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/SvgImageView.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

DuplicateEmptyView::DuplicateEmptyView(QWidget* parent)
    : QWidget(parent),
      m_messageLabel(Style::label(QString(), 12, true)),
      m_chooseButton(ImageSetButton::secondary("Choose Folder", this)),
      m_searchButton(ImageSetButton::primary("Search Again", this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(60, 0, 60, 0);
    layout->setSpacing(10);
    layout->addStretch(1);
    layout->addWidget(new SvgImageView("img_noduplicate", {150, 120}, this), 0, Qt::AlignHCenter);
    layout->addSpacing(6);
    layout->addWidget(Style::label("No duplicate files found", 16), 0, Qt::AlignHCenter);
    m_messageLabel->setAlignment(Qt::AlignCenter);
    m_messageLabel->setWordWrap(true);
    layout->addWidget(m_messageLabel);
    layout->addSpacing(12);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    m_chooseButton->setFixedWidth(150);
    m_searchButton->setFixedWidth(150);
    buttons->addWidget(m_chooseButton);
    buttons->addWidget(m_searchButton);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addStretch(1);
    connect(m_chooseButton, &QPushButton::clicked, this, &DuplicateEmptyView::chooseFolder);
    connect(m_searchButton, &QPushButton::clicked, this, &DuplicateEmptyView::searchAgain);
}

void DuplicateEmptyView::setSearchPath(const QString& path) {
    const QString shown = m_messageLabel->fontMetrics().elidedText(displayPath(path), Qt::ElideMiddle, 420);
    m_messageLabel->setText(QString("No file in %1 has an identical copy there.").arg(shown));
    m_messageLabel->setToolTip(displayPath(path));
}

QString DuplicateEmptyView::messageText() const { return m_messageLabel->text(); }

}  // namespace velmora
