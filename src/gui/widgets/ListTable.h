#pragma once

#include <QList>

class QTableView;

namespace velmora {

// The look shared by the pages' lists: no grid, no editing, fixed column widths,
// a plain header with a hairline under it, hover tracking and overlay scroll bars.
// Selection behaviour stays with each page.
void applyListTableLook(QTableView* view, int rowHeight, const QList<int>& columnWidths);

}  // namespace velmora
