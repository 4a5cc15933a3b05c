#include "gui/widgets/ListTable.h"

#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QHeaderView>
#include <QTableView>

namespace velmora {

void applyListTableLook(QTableView* view, int rowHeight, const QList<int>& columnWidths) {
    view->setShowGrid(false);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setFocusPolicy(Qt::NoFocus);
    view->setMouseTracking(true);
    view->viewport()->setAttribute(Qt::WA_Hover);
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(rowHeight);
    RFOverlayScroller::apply(view);
    QHeaderView* header = view->horizontalHeader();
    header->setFixedHeight(30);
    header->setSectionsClickable(false);
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setFont(Style::regularFont(12));
    header->setMinimumSectionSize(20);
    for (int column = 0; column < columnWidths.size(); ++column) {
        header->setSectionResizeMode(column, QHeaderView::Fixed);
        header->resizeSection(column, columnWidths.at(column));
    }
    view->setStyleSheet("QTableView { background: transparent; border: none; }"
                        "QHeaderView { background: transparent; border-bottom: 1px solid rgba(255,255,255,30); }"
                        "QHeaderView::section { padding-left: 6px; }");
}

void makeListTableFocusable(QTableView* view) {
    view->setFocusPolicy(Qt::StrongFocus);
    const QString ring = QString("QTableView:focus { border: 2px solid %1; border-radius: 6px; }");
    view->setStyleSheet(view->styleSheet() + ring.arg(Style::rgba(Style::kAccent)));
}

}  // namespace velmora
