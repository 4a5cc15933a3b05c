#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Tells that the history report was written, and where; or that it could not be.
class ExportViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    ExportViewController(const QString& reportPath, bool written, QWidget* parent);
    QString reportPath() const { return m_reportPath; }
    bool written() const { return m_written; }
    QPushButton* okButton() const { return m_okButton; }

private:
    QString m_reportPath;
    bool m_written;
    QPushButton* m_okButton;
};

}  // namespace velmora
