#include "gui/widgets/ImageToggle.h"

#include "gui/widgets/Style.h"

#include <QAccessibleWidget>
#include <QEvent>
#include <QPainter>
#include <QSvgRenderer>

namespace velmora {
namespace {

// What assistive tools hear of an image toggle: a check box or radio button with its
// state (the image tells it), else a button; named by its accessible name or tool tip.
class ImageToggleAccessible : public QAccessibleWidget {
public:
    explicit ImageToggleAccessible(ImageToggle* toggle) : QAccessibleWidget(toggle, roleOf(toggle)) {
        addControllingSignal(QStringLiteral("clicked(bool)"));
    }

    static QAccessible::Role roleOf(const ImageToggle* toggle) {
        if (toggle->imageName().startsWith("checkbox_")) return QAccessible::CheckBox;
        if (toggle->imageName().startsWith("radiobutton_")) return QAccessible::RadioButton;
        return QAccessible::Button;
    }

    QAccessible::Role role() const override { return roleOf(toggle()); }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name && toggle()->accessibleName().isEmpty()) return toggle()->toolTip();
        return QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        const QString image = toggle()->imageName();
        state.checkable = role() != QAccessible::Button;
        state.checked = image == "checkbox_yes" || image == "radiobutton_sel";
        state.checkStateMixed = image == "checkbox_election";
        return state;
    }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction() && toggle()->isEnabled()) toggle()->click();
    }

private:
    ImageToggle* toggle() const { return static_cast<ImageToggle*>(widget()); }
};

QAccessibleInterface* imageToggleAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String("velmora::ImageToggle") && object->isWidgetType())
        return new ImageToggleAccessible(static_cast<ImageToggle*>(object));
    return nullptr;
}

}  // namespace

ImageToggle::ImageToggle(const QString& imageName, QWidget* parent, int side)
    : QAbstractButton(parent), m_imageName(imageName), m_side(side) {
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(imageToggleAccessible);
        return true;
    }();
    Q_UNUSED(factoryInstalled);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);  // the ring then shows for keyboard use only
    setFixedSize(side, side);
}

void ImageToggle::setImageName(const QString& imageName) {
    const QString previous = m_imageName;
    m_imageName = imageName;
    update();
    if (previous != imageName && QAccessible::isActive()) {
        QAccessible::State changed;
        changed.checked = true;
        changed.checkStateMixed = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
    }
}

QSize ImageToggle::sizeHint() const { return {m_side, m_side}; }

void ImageToggle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QSvgRenderer renderer(Style::imagePath(m_imageName));
    if (!isEnabled()) painter.setOpacity(0.4);
    renderer.render(&painter, QRectF(rect()));
    if (!hasFocus()) return;
    const qreal radius = m_imageName.startsWith("checkbox_") ? 4 : m_side / 2.0;
    Style::drawFocusRing(painter, QRectF(rect()), radius);
}

}  // namespace velmora
