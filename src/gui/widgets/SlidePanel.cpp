#include "gui/widgets/SlidePanel.h"

#include "gui/widgets/Style.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QVBoxLayout>

namespace velmora {

SlidePanel::SlidePanel(QWidget* page) : QWidget(page), m_animation(new QPropertyAnimation(this, "pos", this)) {
    setGeometry(hiddenX(), 0, page->width(), page->height());
    m_animation->setDuration(kDurationMs);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    setLayout(new QVBoxLayout);
    layout()->setContentsMargins(0, 0, 0, 0);
    page->installEventFilter(this);
    hide();
}

int SlidePanel::hiddenX() const { return parentWidget()->width(); }

void SlidePanel::setContent(QWidget* content) {
    delete m_content;
    m_content = content;
    layout()->addWidget(content);
}

void SlidePanel::setCancelButton(QAbstractButton* button) { m_cancelButton = button; }

void SlidePanel::slideIn() {
    m_animation->stop();
    disconnect(m_animation, &QPropertyAnimation::finished, this, nullptr);
    if (!m_shown) m_focusBefore = QApplication::focusWidget();
    m_shown = true;
    resize(parentWidget()->size());
    move(hiddenX(), 0);
    show();
    raise();
    m_animation->setStartValue(QPoint(hiddenX(), 0));
    m_animation->setEndValue(QPoint(0, 0));
    m_animation->start();
    const QList<QWidget*> controls = focusableControls();
    if (!controls.isEmpty()) controls.first()->setFocus(Qt::TabFocusReason);
}

void SlidePanel::slideOut() {
    m_animation->stop();
    m_shown = false;
    m_animation->setStartValue(pos());
    m_animation->setEndValue(QPoint(hiddenX(), 0));
    if (m_focusBefore && m_focusBefore->isVisible()) m_focusBefore->setFocus(Qt::TabFocusReason);
    connect(m_animation, &QPropertyAnimation::finished, this, [this] {
        disconnect(m_animation, &QPropertyAnimation::finished, this, nullptr);
        hide();
        emit slidOut();
    });
    m_animation->start();
}

bool SlidePanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        // A slide under way is finished at once; the panel then takes its place at the new size.
        if (m_animation->state() == QAbstractAnimation::Running) m_animation->setCurrentTime(kDurationMs);
        resize(parentWidget()->size());
        move(m_shown ? 0 : hiddenX(), 0);
    }
    return QWidget::eventFilter(watched, event);
}

void SlidePanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && m_shown && m_cancelButton && m_cancelButton->isEnabled()) {
        m_cancelButton->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

QList<QWidget*> SlidePanel::focusableControls() const {
    QList<QWidget*> controls;
    for (QWidget* widget = nextInFocusChain(); widget && widget != this; widget = widget->nextInFocusChain())
        if (isAncestorOf(widget) && widget->isVisibleTo(this) && widget->isEnabled() &&
            (widget->focusPolicy() & Qt::TabFocus))
            controls.append(widget);
    return controls;
}

bool SlidePanel::focusNextPrevChild(bool next) {
    if (!m_shown) return QWidget::focusNextPrevChild(next);
    const QList<QWidget*> controls = focusableControls();
    if (controls.isEmpty()) return true;
    const qsizetype current = controls.indexOf(QApplication::focusWidget());
    const qsizetype count = controls.size();
    const qsizetype target = current < 0 ? 0 : (current + (next ? 1 : count - 1)) % count;
    controls.at(target)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void SlidePanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Style::kWindow);
}

}  // namespace velmora
