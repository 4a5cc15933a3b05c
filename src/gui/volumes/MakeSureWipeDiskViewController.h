#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before a whole volume is erased: "Continue" closes the panel and starts
// the erase, "Cancel" only closes it.
class MakeSureWipeDiskViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    MakeSureWipeDiskViewController(const QString& volumeName, QWidget* parent);
    QPushButton* continueButton() const { return m_continueButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void makeSureToWipeSelectVolume();

private:
    QPushButton* m_continueButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
