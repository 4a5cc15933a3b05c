#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asked when browsers that are about to be scanned or cleaned are running:
// their databases are locked and their files rewritten while they run.
// "Close" ends them (accepted), "Cancel" or Escape leaves them running (rejected).
class CloseBrowerViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    // names: the running browsers, joined with "," as the page collects them.
    CloseBrowerViewController(const QString& names, QWidget* parent);
    QString messageText() const;
    QPushButton* closeButton() const { return m_closeButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_closeButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
