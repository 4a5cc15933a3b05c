#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before the ticked copies are removed: "Continue" closes the panel and
// starts the removal, "Cancel" only closes it. Cancel is the default button
// and what Escape presses: the removal needs a click or the focus on Continue.
class MarkSureDeleteVC : public MAAttachedWindow {
    Q_OBJECT
public:
    MarkSureDeleteVC(int fileCount, quint64 totalSize, QWidget* parent);
    QPushButton* continueButton() const { return m_continueButton; }

signals:
    void delDuplicateItems();

private:
    QPushButton* m_continueButton;
};

}  // namespace velmora
