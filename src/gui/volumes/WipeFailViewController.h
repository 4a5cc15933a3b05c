#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

// The end of a wipe that failed or was cancelled: the failure text and "OK".
// The failure note (`failNode`) shows only after a cancel.
class WipeFailViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    WipeFailViewController(const QString& errorText, bool wasCancelled, QWidget* parent);
    QLabel* failNode() const { return m_failNode; }
    QPushButton* okButton() const { return m_okButton; }

private:
    QLabel* m_failNode;
    QPushButton* m_okButton;
};

}  // namespace velmora
