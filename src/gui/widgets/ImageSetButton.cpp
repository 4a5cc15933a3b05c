#include "gui/widgets/ImageSetButton.h"

#include "gui/widgets/Style.h"

#include <QPainter>

namespace velmora {

ImageSetButton::ImageSetButton(const QString& text, const QString& baseName, int fontSize, QWidget* parent,
                               const QString& stateStem)
    : QPushButton(text, parent) {
    const QString stem = stateStem.isEmpty() ? baseName : stateStem;
    setFont(Style::regularFont(fontSize));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);  // the ring then shows for keyboard use only
    setMinimumSize(104, 32);
    // The style's own focus rectangle would fall inside the image's borders: the ring drawn
    // in paintEvent shows the focus instead.
    setStyleSheet(QString(R"(
        QPushButton { border-image: url(%1) 15 15 15 15 stretch; border-width: 15px; padding: -15px 0px;
                      color: white; outline: none; }
        QPushButton:hover { border-image: url(%2) 15 15 15 15 stretch; }
        QPushButton:pressed { border-image: url(%3) 15 15 15 15 stretch; }
        QPushButton:disabled { border-image: url(%4) 15 15 15 15 stretch; color: rgba(255,255,255,90); }
    )").arg(Style::imagePath(baseName), Style::imagePath(stem + "_hover"), Style::imagePath(stem + "_press"),
            Style::imagePath(stem + "_disable")));
}

void ImageSetButton::paintEvent(QPaintEvent* event) {
    QPushButton::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    Style::drawFocusRing(painter, QRectF(rect()), height() / 2.0);
}

ImageSetButton* ImageSetButton::secondary(const QString& text, QWidget* parent) {
    return new ImageSetButton(text, "btn_sec", 12, parent);
}

ImageSetButton* ImageSetButton::primary(const QString& text, QWidget* parent) {
    return new ImageSetButton(text, "btn_pril_normal", 12, parent, "btn_pril");
}

}  // namespace velmora
