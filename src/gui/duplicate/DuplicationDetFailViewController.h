#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// The end of a removal that left selected copies on the disk, or that the
// user stopped; "OK" closes it.
class DuplicationDetFailViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    DuplicationDetFailViewController(const QString& title, const QString& message, QWidget* parent);
    QString titleText() const;
    QString messageText() const;
    QPushButton* okButton() const { return m_okButton; }

private:
    QPushButton* m_okButton;
};

}  // namespace velmora
