#include "gui/erase/FileEraserTableDelegate.h"

#include "gui/erase/FileEraserTableModel.h"
#include "gui/widgets/Style.h"

#include <QIcon>
#include <QPainter>
#include <QSvgRenderer>

namespace velmora {
namespace {

constexpr int kImageSide = 16;
constexpr int kIconSide = 20;
constexpr int kPadding = 6;

}  // namespace

void FileEraserTableDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (option.state & QStyle::State_Selected)
        painter->fillRect(option.rect, Style::kSelection);
    else if (option.state & QStyle::State_MouseOver)
        painter->fillRect(option.rect, QColor(255, 255, 255, 10));
    painter->fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1), QColor(255, 255, 255, 18));

    const QString image = index.data(FileEraserTableModel::ImageRole).toString();
    if (!image.isEmpty()) {
        QSvgRenderer renderer(Style::imagePath(image));
        const QRect target(QPoint(0, 0), QSize(kImageSide, kImageSide));
        renderer.render(painter, QRectF(target.translated(option.rect.center() - target.center())));
        painter->restore();
        return;
    }

    QRect textArea = option.rect.adjusted(kPadding, 0, -kPadding, 0);
    const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
    if (!icon.isNull()) {
        const QRect iconArea(textArea.left(), option.rect.center().y() - kIconSide / 2, kIconSide, kIconSide);
        icon.paint(painter, iconArea);
        textArea.setLeft(iconArea.right() + kPadding + 2);
    }
    painter->setFont(index.data(Qt::FontRole).value<QFont>());
    painter->setPen(index.data(Qt::ForegroundRole).value<QColor>());
    const QString text = painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideMiddle, textArea.width());
    painter->drawText(textArea, Qt::AlignVCenter | Qt::AlignLeft, text);
    painter->restore();
}

}  // namespace velmora
