#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// The end of a removal in which every selected copy went: how many and how
// much room they took; "OK" closes it.
class DuplicationDetSuccessViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    DuplicationDetSuccessViewController(int removedCount, quint64 freedBytes, QWidget* parent);
    QString messageText() const;
    QPushButton* okButton() const { return m_okButton; }

private:
    QPushButton* m_okButton;
};

}  // namespace velmora
