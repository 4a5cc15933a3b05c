#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before the free space of a volume is wiped: "Continue" closes the panel
// and starts the wipe, "Cancel" only closes it.
class MakeSureWipeFreeSpaceViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    MakeSureWipeFreeSpaceViewController(const QString& volumeName, QWidget* parent);
    QPushButton* continueButton() const { return m_continueButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void makeSureToWipeFreeSpaceSelectVolume();

private:
    QPushButton* m_continueButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
