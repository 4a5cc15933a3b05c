#pragma once

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QStringList>
#include <QWidget>

// The layout check of the pages: every text shown in a widget tree must fit where it
// is drawn. It compares each text's width and height (in the widget's own font) with
// the room the widget gives it, and the widget's rect with what its parents show of
// it. A text shortened with "…" is accepted when a tool tip carries the whole text,
// except a size ("629… MB"), which is never shortened.
//
//   const QStringList clipped = clippedTexts(window);
//   QVERIFY2(clipped.isEmpty(), qPrintable(clipped.join('\n')));
//
// Run it at two window sizes; ctest runs the tests registered with
// velmora_qtest_at_scale2() a second time at device pixel ratio 2.
namespace layoutcheck {

inline QString describe(const QWidget* widget, const QString& text) {
    const QString name = widget->objectName().isEmpty() ? QString() : "#" + widget->objectName();
    return QString("%1%2 \"%3\"").arg(widget->metaObject()->className(), name, text.left(60));
}

inline bool looksLikeSize(const QString& text) {
    static const QRegularExpression size(R"((\d|…)\s*(bytes|[KMGT]?B)\b)");
    return size.match(text).hasMatch();
}

inline QString plainText(const QLabel* label) {
    if (label->textFormat() == Qt::PlainText || !Qt::mightBeRichText(label->text())) return label->text();
    QString text = label->text();
    return text.remove(QRegularExpression("<[^>]*>"));
}

// The part of `widget` its ancestors up to `root` leave visible, in the widget's coordinates.
inline QRect visiblePart(const QWidget* widget, const QWidget* root) {
    QRect visible = widget->rect();
    QPoint offset(0, 0);
    for (const QWidget* child = widget; child != root && child->parentWidget() && !child->isWindow();
         child = child->parentWidget()) {
        offset += child->pos();
        visible &= child->parentWidget()->rect().translated(-offset);
    }
    return visible;
}

inline void checkOwnRect(const QWidget* widget, const QWidget* root, const QString& text, QStringList& problems) {
    if (visiblePart(widget, root) != widget->rect())
        problems << describe(widget, text) + ": partly outside its parent";
}

inline void checkLabel(const QLabel* label, const QWidget* root, QStringList& problems) {
    const QString text = plainText(label);
    if (text.trimmed().isEmpty() || !label->pixmap().isNull()) return;
    if (text.contains(QChar(0x2026)) && looksLikeSize(text)) problems << describe(label, text) + ": a size is elided";
    checkOwnRect(label, root, text, problems);
    if (label->wordWrap()) {
        if (label->heightForWidth(label->width()) > label->height())
            problems << describe(label, text) + QString(": needs %1 px of height, has %2")
                                                    .arg(label->heightForWidth(label->width()))
                                                    .arg(label->height());
        return;
    }
    const QSize needed = label->sizeHint();
    if (needed.width() > label->width() || needed.height() > label->height())
        problems << describe(label, text) + QString(": needs %1x%2, has %3x%4")
                                                .arg(needed.width())
                                                .arg(needed.height())
                                                .arg(label->width())
                                                .arg(label->height());
}

inline void checkButton(const QAbstractButton* button, const QWidget* root, QStringList& problems) {
    const QString text = button->text();
    if (text.isEmpty()) return;
    checkOwnRect(button, root, text, problems);
    int neededWidth = 0;
    if (qobject_cast<const QPushButton*>(button)) {
        // The text and its icon with a little air on both sides; the style's own
        // minimum widths are not a clipping.
        const int icon = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
        neededWidth = button->fontMetrics().horizontalAdvance(text) + icon + 12;
    } else {
        neededWidth = button->sizeHint().width();
    }
    if (neededWidth > button->width() || button->fontMetrics().height() > button->height())
        problems << describe(button, text) + QString(": needs %1 px, has %2").arg(neededWidth).arg(button->width());
}

inline void checkItemView(const QAbstractItemView* view, QStringList& problems) {
    const QAbstractItemModel* model = view->model();
    if (!model) return;
    const QRect viewport = view->viewport()->rect();
    for (int row = 0; row < model->rowCount(view->rootIndex()); ++row) {
        for (int column = 0; column < model->columnCount(view->rootIndex()); ++column) {
            const QModelIndex index = model->index(row, column, view->rootIndex());
            const QRect cell = view->visualRect(index);
            if (!cell.isValid() || !viewport.intersects(cell)) continue;
            const QString text = index.data(Qt::DisplayRole).toString();
            if (text.isEmpty()) continue;
            const QVariant fontData = index.data(Qt::FontRole);
            const QFontMetrics metrics(fontData.isValid() ? fontData.value<QFont>() : view->font());
            const bool hasIcon = !index.data(Qt::DecorationRole).isNull();
            const int room = cell.width() - 12 - (hasIcon ? 28 : 0);
            if (metrics.horizontalAdvance(text) <= room) continue;
            const QString where = describe(view, text) + QString(" (row %1, column %2)").arg(row).arg(column);
            if (looksLikeSize(text))
                problems << where + ": a size does not fit its column";
            else if (index.data(Qt::ToolTipRole).toString().isEmpty())
                problems << where + ": elided without a tool tip";
        }
    }
}

inline void checkHeader(const QHeaderView* header, QStringList& problems) {
    if (!header->model()) return;
    for (int section = 0; section < header->count(); ++section) {
        if (header->isSectionHidden(section)) continue;
        const QString text = header->model()->headerData(section, header->orientation()).toString();
        if (text.isEmpty()) continue;
        if (header->fontMetrics().horizontalAdvance(text) + 12 > header->sectionSize(section))
            problems << describe(header, text) + ": header caption does not fit";
    }
}

// Every clipped text among the visible widgets under `root` (root included), one line each.
inline QStringList clippedTexts(const QWidget* root) {
    QStringList problems;
    QList<const QWidget*> widgets{root};
    for (const QWidget* child : root->findChildren<const QWidget*>()) widgets << child;
    for (const QWidget* widget : widgets) {
        if (!widget->isVisibleTo(root) && widget != root) continue;
        if (widget->isWindow() && widget != root) continue;
        if (auto* label = qobject_cast<const QLabel*>(widget))
            checkLabel(label, root, problems);
        else if (auto* button = qobject_cast<const QAbstractButton*>(widget))
            checkButton(button, root, problems);
        else if (auto* header = qobject_cast<const QHeaderView*>(widget))
            checkHeader(header, problems);
        else if (auto* view = qobject_cast<const QAbstractItemView*>(widget))
            checkItemView(view, problems);
    }
    return problems;
}

}  // namespace layoutcheck

using layoutcheck::clippedTexts;
