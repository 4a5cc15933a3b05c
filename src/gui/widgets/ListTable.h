#pragma once

#include <QList>

class QTableView;

namespace velmora {

// The look shared by the pages' lists: no grid, no editing, fixed column widths,
// a plain header with a hairline under it, hover tracking and overlay scroll bars.
// Selection behaviour stays with each page.
void applyListTableLook(QTableView* view, int rowHeight, const QList<int>& columnWidths);

// Lets the list take the keyboard focus (Tab, or a click on a row) so that the arrow
// keys move through its rows; while it has the focus it shows the focus ring.
void makeListTableFocusable(QTableView* view);

}  // namespace velmora
