#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Tells that the history report was written, and where.
class ExportViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    ExportViewController(const QString& reportPath, QWidget* parent);
    QString reportPath() const { return m_reportPath; }
    QPushButton* okButton() const { return m_okButton; }

private:
    QString m_reportPath;
    QPushButton* m_okButton;
};

}  // namespace velmora
