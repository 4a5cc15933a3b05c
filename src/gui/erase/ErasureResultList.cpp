#include "gui/erase/ErasureResultList.h"

#include "engine/platform/NativePath.h"

#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QFontMetrics>
#include <QHeaderView>

namespace velmora {

ErasureResultList::ErasureResultList(const FileObjList& results, QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(2);
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setIndentation(0);
    setItemsExpandable(false);
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setTextElideMode(Qt::ElideMiddle);
    setStyleSheet("QTreeWidget { background: rgba(0,0,0,40); border-radius: 6px; padding: 6px; }");
    RFOverlayScroller::apply(this);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::Fixed);
    // The result column fits its longest word in the bold face; results are never cut.
    const QFontMetrics resultMetrics(Style::boldFont(11));
    int resultWidth = 0;
    for (const char* result : {"Erased", "Failed", "Cancelled"})
        resultWidth = qMax(resultWidth, resultMetrics.horizontalAdvance(result));
    header()->resizeSection(1, resultWidth + 16);
    for (const FileObj& record : results) {
        auto* row = new QTreeWidgetItem(this, {displayPath(record.url), record.failStr});
        row->setToolTip(0, displayPath(record.url));
        row->setFont(0, Style::regularFont(11));
        row->setFont(1, Style::boldFont(11));
        row->setForeground(0, Style::kSecondaryText);
        const bool erased = record.failStr == "Erased";
        const QColor warning(0xE8, 0xA9, 0x3A);
        row->setForeground(1, erased                             ? QColor(0x2F, 0xB3, 0x7C)
                              : record.failStr == "Cancelled" ? warning
                                                              : QColor(0xE0, 0x56, 0x5B));
        if (record.failReason.isEmpty()) continue;
        // Why the item was not erased (or how it was), on a line of its own under it.
        auto* reason = new QTreeWidgetItem(row);
        reason->setData(0, Qt::UserRole, displayPath(record.failReason));
        reason->setFirstColumnSpanned(true);
        reason->setToolTip(0, displayPath(record.failReason));
        reason->setFont(0, Style::regularFont(10));
        reason->setForeground(0, erased ? Style::kSecondaryText : warning);
        row->setExpanded(true);
        m_reasons.append(reason);
    }
}

void ErasureResultList::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    const int width = viewport()->width() - 12;
    for (QTreeWidgetItem* reason : m_reasons) {
        const QFontMetrics metrics(reason->font(0));
        QStringList lines{QString()};
        for (const QString& word : reason->data(0, Qt::UserRole).toString().split(' ')) {
            const QString longer = lines.last().isEmpty() ? word : lines.last() + ' ' + word;
            if (!lines.last().isEmpty() && metrics.horizontalAdvance(longer) > width) lines.append(word);
            else lines.last() = longer;
        }
        reason->setText(0, lines.join('\n'));
    }
}

}  // namespace velmora
