#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asked before the last unselected copy of a group is ticked, which would
// leave no copy of the file: "OK" accepts, "Cancel" rejects. Cancel is the
// default button and what Escape presses: a stray key never ticks the last copy.
class DeleteAllCopiesSheet : public MAAttachedWindow {
    Q_OBJECT
public:
    explicit DeleteAllCopiesSheet(QWidget* parent);
    QPushButton* okButton() const { return m_okButton; }

private:
    QPushButton* m_okButton;
};

}  // namespace velmora
