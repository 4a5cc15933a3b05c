#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before the ticked copies are removed: "Continue" closes the panel and
// starts the removal, "Cancel" only closes it.
class MarkSureDeleteVC : public MAAttachedWindow {
    Q_OBJECT
public:
    MarkSureDeleteVC(int fileCount, quint64 totalSize, QWidget* parent);
    QPushButton* continueButton() const { return m_continueButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void delDuplicateItems();

private:
    QPushButton* m_continueButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
