#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before history is deleted: "Continue" closes the panel and reports
// `confirmed`, "Cancel" only closes it.
class HistoryConfirmViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    HistoryConfirmViewController(const QString& title, const QString& message, QWidget* parent);
    QPushButton* continueButton() const { return m_continueButton; }

signals:
    void confirmed();

private:
    QPushButton* m_continueButton;
};

}  // namespace velmora
