#pragma once

class QLayout;
class QTableView;
class QWidget;

namespace velmora {

class MLCircularIndicator;
class VolumeTableModel;

// The volume list of the erase and disk pages: the list table look, one row per
// volume, chosen with a click or, once Tab has put the focus (and its ring) on
// the list, with Up and Down; Tab then goes on to the page's buttons.
QTableView* createVolumeTable(VolumeTableModel* model, QWidget* parent);

// The volume table with a hidden busy indicator over its middle, shown while the
// volumes are listed; the layout holds both.
QLayout* volumeTableArea(QTableView* table, MLCircularIndicator*& busyIndicator, QWidget* parent);

// Gives the type and size columns the width of their widest text, so a size is
// never cut short, and the name column the rest of the list's width.
void fitVolumeColumns(QTableView* table);

}  // namespace velmora
