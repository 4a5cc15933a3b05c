#include "gui/widgets/ImageToggle.h"

#include "gui/widgets/Style.h"

#include <QPainter>
#include <QSvgRenderer>

namespace velmora {

ImageToggle::ImageToggle(const QString& imageName, QWidget* parent, int side)
    : QAbstractButton(parent), m_imageName(imageName), m_side(side) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);  // the ring then shows for keyboard use only
    setFixedSize(side, side);
}

void ImageToggle::setImageName(const QString& imageName) {
    m_imageName = imageName;
    update();
}

QSize ImageToggle::sizeHint() const { return {m_side, m_side}; }

void ImageToggle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QSvgRenderer renderer(Style::imagePath(m_imageName));
    if (!isEnabled()) painter.setOpacity(0.4);
    renderer.render(&painter, QRectF(rect()));
    if (hasFocus()) Style::drawFocusRing(painter, QRectF(rect()), m_side / 2.0);
}

}  // namespace velmora
