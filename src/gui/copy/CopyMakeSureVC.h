#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Asks before a drive copy starts: what is copied from where to where. "Copy" closes the
// panel and starts the copy; "Cancel" or Escape only closes it.
class CopyMakeSureVC : public MAAttachedWindow {
    Q_OBJECT
public:
    CopyMakeSureVC(const QString& sourceName, const QString& destinationName, bool allFiles, const QString& sizeText,
                   QWidget* parent);
    QPushButton* copyButton() const { return m_copyButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void beginToCopyFiles();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_copyButton;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
