#include "gui/widgets/PanelContent.h"

#include "gui/widgets/SvgImageView.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora::PanelContent {

QVBoxLayout* addMessage(QWidget* panel, const QString& image, const QString& title, const QString& message) {
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(28, 26, 28, 22);
    layout->setSpacing(14);

    auto* top = new QHBoxLayout;
    top->setSpacing(18);
    auto* icon = new SvgImageView(image, {44, 44}, panel);
    top->addWidget(icon, 0, Qt::AlignTop);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    QLabel* titleLabel = Style::label(title, 15, false, true);
    titleLabel->setObjectName("panelTitle");
    titleLabel->setWordWrap(true);
    texts->addWidget(titleLabel);
    QLabel* messageText = Style::label(message, 12, true);
    messageText->setObjectName("panelMessage");
    messageText->setWordWrap(true);
    texts->addWidget(messageText);
    top->addLayout(texts, 1);
    layout->addLayout(top);
    return layout;
}

void addButtons(QVBoxLayout* layout, const QList<QPushButton*>& buttons) {
    // Takes the spare room only when no content above was given it.
    layout->addStretch(0);
    auto* row = new QHBoxLayout;
    row->setSpacing(12);
    row->addStretch(1);
    for (QPushButton* button : buttons) row->addWidget(button);
    layout->addLayout(row);
}

QLabel* messageLabel(const QWidget* panel) { return panel->findChild<QLabel*>("panelMessage"); }

}  // namespace velmora::PanelContent
