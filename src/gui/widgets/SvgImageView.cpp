#include "gui/widgets/SvgImageView.h"

#include "gui/widgets/Style.h"

#include <QPainter>
#include <QSvgRenderer>

namespace velmora {

SvgImageView::SvgImageView(const QString& imageName, QSize size, QWidget* parent)
    : QWidget(parent), m_imageName(imageName) {
    setFixedSize(size);
}

void SvgImageView::setImageName(const QString& imageName) {
    m_imageName = imageName;
    update();
}

void SvgImageView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer(Style::imagePath(m_imageName)).render(&painter, QRectF(rect()));
}

}  // namespace velmora
