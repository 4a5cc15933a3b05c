#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// The end of a wipe that succeeded: a title naming the volume, the engine's
// success text and "OK".
class WipeSuccessViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    WipeSuccessViewController(const QString& title, const QString& text, QWidget* parent);
    QPushButton* okButton() const { return m_okButton; }

private:
    QPushButton* m_okButton;
};

}  // namespace velmora
