#include "gui/erase/ErasureResultList.h"

#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QHeaderView>

namespace velmora {

ErasureResultList::ErasureResultList(const FileObjList& results, QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(2);
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setTextElideMode(Qt::ElideMiddle);
    setStyleSheet("QTreeWidget { background: rgba(0,0,0,40); border-radius: 6px; padding: 6px; }");
    RFOverlayScroller::apply(this);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::Fixed);
    header()->resizeSection(1, 70);
    for (const FileObj& record : results) {
        auto* row = new QTreeWidgetItem(this, {record.url, record.failStr});
        row->setToolTip(0, record.url);
        if (!record.failReason.isEmpty()) row->setToolTip(1, record.failReason);
        row->setFont(0, Style::regularFont(11));
        row->setFont(1, Style::boldFont(11));
        row->setForeground(0, Style::kSecondaryText);
        row->setForeground(1, record.failStr == "Erased" ? QColor(0x2F, 0xB3, 0x7C) : QColor(0xE0, 0x56, 0x5B));
    }
}

}  // namespace velmora
