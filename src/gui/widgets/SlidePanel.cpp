#include "gui/widgets/SlidePanel.h"

#include "gui/widgets/Style.h"

#include <QPainter>
#include <QPropertyAnimation>
#include <QVBoxLayout>

namespace velmora {

SlidePanel::SlidePanel(QWidget* page) : QWidget(page), m_animation(new QPropertyAnimation(this, "pos", this)) {
    setGeometry(kHiddenX, 0, page->width(), page->height());
    m_animation->setDuration(kDurationMs);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    setLayout(new QVBoxLayout);
    layout()->setContentsMargins(0, 0, 0, 0);
    hide();
}

void SlidePanel::setContent(QWidget* content) {
    delete m_content;
    m_content = content;
    layout()->addWidget(content);
}

void SlidePanel::slideIn() {
    m_animation->stop();
    disconnect(m_animation, &QPropertyAnimation::finished, this, nullptr);
    resize(parentWidget()->size());
    move(kHiddenX, 0);
    show();
    raise();
    m_animation->setStartValue(QPoint(kHiddenX, 0));
    m_animation->setEndValue(QPoint(0, 0));
    m_animation->start();
}

void SlidePanel::slideOut() {
    m_animation->stop();
    m_animation->setStartValue(pos());
    m_animation->setEndValue(QPoint(kHiddenX, 0));
    connect(m_animation, &QPropertyAnimation::finished, this, [this] {
        disconnect(m_animation, &QPropertyAnimation::finished, this, nullptr);
        hide();
        emit slidOut();
    });
    m_animation->start();
}

void SlidePanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Style::kWindow);
}

}  // namespace velmora
