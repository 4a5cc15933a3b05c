#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

// The end of a wipe that failed or was cancelled: the failure mark, a title
// naming the volume, the failure text and "OK". The failure note (`failNode`)
// shows only after a cancel.
class WipeFailViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    // detail, when not empty, says under the failure text what exactly went wrong.
    WipeFailViewController(const QString& title, const QString& errorText, const QString& detail, bool wasCancelled,
                           QWidget* parent);
    QLabel* failNode() const { return m_failNode; }
    QLabel* detailLabel() const { return m_detailLabel; }
    QPushButton* okButton() const { return m_okButton; }

private:
    QLabel* m_failNode;
    QLabel* m_detailLabel;
    QPushButton* m_okButton;
};

}  // namespace velmora
