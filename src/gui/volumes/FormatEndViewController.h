#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// The end of a disk-tool action: what happened (the success, or the failure with
// the disk utility's message) and "OK", which closes it (also Enter and Escape).
class FormatEndViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    FormatEndViewController(const QString& title, bool succeeded, const QString& message, QWidget* parent);
    bool succeeded() const { return m_succeeded; }
    QPushButton* okButton() const { return m_okButton; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_succeeded;
    QPushButton* m_okButton;
};

}  // namespace velmora
