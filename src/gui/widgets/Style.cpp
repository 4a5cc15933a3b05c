#include "gui/widgets/Style.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QProgressBar>

namespace velmora::Style {
namespace {

QFont fontWith(int pointSize, QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setPointSize(pointSize);
    font.setWeight(weight);
    return font;
}

}  // namespace

QString rgba(const QColor& color) {
    return QString("rgba(%1,%2,%3,%4)").arg(color.red()).arg(color.green()).arg(color.blue()).arg(color.alpha());
}

void apply(QApplication& app) {
    QPalette palette;
    palette.setColor(QPalette::Window, kWindow);
    palette.setColor(QPalette::Base, kWindow);
    palette.setColor(QPalette::AlternateBase, kPanel);
    palette.setColor(QPalette::WindowText, kText);
    palette.setColor(QPalette::Text, kText);
    palette.setColor(QPalette::ButtonText, kText);
    palette.setColor(QPalette::Button, kPanel);
    palette.setColor(QPalette::Highlight, kSelection);
    palette.setColor(QPalette::HighlightedText, kText);
    palette.setColor(QPalette::ToolTipBase, kPanel);
    palette.setColor(QPalette::ToolTipText, kText);
    palette.setColor(QPalette::PlaceholderText, kSecondaryText);
    app.setPalette(palette);
    app.setStyleSheet(QString(R"(
        QWidget { color: white; }
        QToolTip { background: %1; color: white; border: 1px solid %2; padding: 4px; }
        QTableView, QTreeView { background: transparent; border: none; gridline-color: transparent;
                                selection-background-color: %3; outline: 0; }
        QHeaderView::section { background: transparent; color: %4; border: none; padding: 4px; }
        QMenu { background: %1; border: 1px solid %2; padding: 4px; }
        QMenu::item { padding: 5px 22px; }
        QMenu::item:selected { background: %3; }
        QLineEdit { background: rgba(255,255,255,20); border: 1px solid rgba(255,255,255,60);
                    border-radius: 4px; padding: 4px; }
    )").arg(rgba(kPanel), rgba(kAccent), rgba(kSelection), rgba(kSecondaryText)));
}

void drawFocusRing(QPainter& painter, const QRectF& area, qreal radius) {
    // Two tones, so that the ring shows on the dark surface and on accent-coloured buttons alike.
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(kAccent, 2));
    painter.drawRoundedRect(area.adjusted(1, 1, -1, -1), radius, radius);
    painter.setPen(QPen(kText, 1.5));
    const qreal inner = qMax<qreal>(0, radius - 2.5);
    painter.drawRoundedRect(area.adjusted(2.75, 2.75, -2.75, -2.75), inner, inner);
    painter.restore();
}

QString imagePath(const QString& name) { return QString(":/images/%1.svg").arg(name); }

QFont regularFont(int pointSize) { return fontWith(pointSize, QFont::Normal); }
QFont lightFont(int pointSize) { return fontWith(pointSize, QFont::Light); }
QFont boldFont(int pointSize) { return fontWith(pointSize, QFont::Bold); }

QLabel* label(const QString& text, int pointSize, bool secondary, bool bold) {
    auto* result = new QLabel(text);
    result->setFont(bold ? boldFont(pointSize) : regularFont(pointSize));
    result->setStyleSheet(QString("color: %1; background: transparent;").arg(rgba(secondary ? kSecondaryText : kText)));
    return result;
}

void styleProgressBar(QProgressBar& bar, int maximum, int height) {
    bar.setRange(0, maximum);
    bar.setTextVisible(false);
    bar.setFixedHeight(height);
    bar.setStyleSheet(QString("QProgressBar { background: rgba(255,255,255,30); border: none; border-radius: %1px; }"
                              "QProgressBar::chunk { background: %2; border-radius: %1px; }")
                          .arg(height / 2)
                          .arg(rgba(kAccent)));
}

}  // namespace velmora::Style
