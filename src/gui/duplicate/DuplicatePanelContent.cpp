#include "gui/duplicate/DuplicatePanelContent.h"

#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QPainter>
#include <QSvgRenderer>
#include <QVBoxLayout>

namespace velmora::DuplicatePanelContent {

QLabel* image(const QString& name, QSize size, QWidget* parent) {
    const qreal ratio = parent ? parent->devicePixelRatioF() : 1.0;
    QPixmap picture(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    QSvgRenderer(Style::imagePath(name)).render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    painter.end();
    auto* label = new QLabel(parent);
    label->setFixedSize(size);
    label->setPixmap(picture);
    label->setStyleSheet("background: transparent;");
    return label;
}

QVBoxLayout* addMessage(QWidget* panel, const QString& image, const QString& title, const QString& message) {
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(28, 26, 28, 22);
    layout->setSpacing(14);

    auto* top = new QHBoxLayout;
    top->setSpacing(18);
    top->addWidget(DuplicatePanelContent::image(image, {44, 44}, panel), 0, Qt::AlignTop);

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
    layout->addStretch(1);
    auto* row = new QHBoxLayout;
    row->setSpacing(12);
    row->addStretch(1);
    for (QPushButton* button : buttons) row->addWidget(button);
    layout->addLayout(row);
}

QLabel* messageLabel(const QWidget* panel) { return panel->findChild<QLabel*>("panelMessage"); }

}  // namespace velmora::DuplicatePanelContent
