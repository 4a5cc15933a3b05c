#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asked before the last unselected copy of a group is ticked, which would
// leave no copy of the file: "OK" accepts, "Cancel" rejects.
class DeleteAllCopiesSheet : public MAAttachedWindow {
    Q_OBJECT
public:
    explicit DeleteAllCopiesSheet(QWidget* parent);
    QPushButton* okButton() const { return m_okButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

private:
    QPushButton* m_okButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
