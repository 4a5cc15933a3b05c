#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before the ticked items are erased: "Continue" closes the panel and
// starts the erasure, "Cancel" only closes it.
class MakeSureFileEraserViewControoler : public MAAttachedWindow {
    Q_OBJECT
public:
    explicit MakeSureFileEraserViewControoler(QWidget* parent);
    QPushButton* continueButton() const { return m_continueButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void makeSureToEraserSelectFiles();

private:
    QPushButton* m_continueButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
