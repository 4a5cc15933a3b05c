#include "gui/uninstall/UninstallTableDelegate.h"

#include "gui/uninstall/UninstallTableModel.h"
#include "gui/widgets/Style.h"

#include <QIcon>
#include <QPainter>

namespace velmora {
namespace {

constexpr int kIconSide = 28;
constexpr int kPadding = 6;

}  // namespace

void UninstallTableDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    if (index.column() != UninstallTableModel::AppName) {
        FileEraserTableDelegate::paint(painter, option, index);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (option.state & QStyle::State_Selected)
        painter->fillRect(option.rect, Style::kSelection);
    else if (option.state & QStyle::State_MouseOver)
        painter->fillRect(option.rect, QColor(255, 255, 255, 10));
    painter->fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1), QColor(255, 255, 255, 18));

    const QRect iconArea(option.rect.left() + kPadding, option.rect.center().y() - kIconSide / 2, kIconSide, kIconSide);
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, iconArea);
    const QRect textArea = option.rect.adjusted(iconArea.right() + 10 - option.rect.left(), 0, -kPadding, 0);

    const QString secondLine = index.data(UninstallTableModel::SecondLineRole).toString();
    painter->setFont(Style::regularFont(13));
    painter->setPen(Style::kText);
    const QString name = painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, textArea.width());
    if (secondLine.isEmpty()) {
        painter->drawText(textArea, Qt::AlignVCenter | Qt::AlignLeft, name);
    } else {
        const int half = textArea.height() / 2;
        painter->drawText(textArea.adjusted(0, 0, 0, -half), Qt::AlignBottom | Qt::AlignLeft, name);
        painter->setFont(Style::regularFont(11));
        painter->setPen(Style::kSecondaryText);
        painter->drawText(textArea.adjusted(0, half + 2, 0, 0), Qt::AlignTop | Qt::AlignLeft,
                          painter->fontMetrics().elidedText(secondLine, Qt::ElideMiddle, textArea.width()));
    }
    painter->restore();
}

}  // namespace velmora
