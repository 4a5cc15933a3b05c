#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// Shown when browser folders cannot be read. On macOS the system keeps them
// behind Full Disk Access: the panel sends the user to that list in the
// system settings. On Linux it names the folder that could not be listed and
// why, so the user can fix its owner or permissions.
class FullDiskAccessViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    // unreadableFolder and reason: what could not be listed and the system's reason (Linux).
    FullDiskAccessViewController(const QString& unreadableFolder, const QString& reason, QWidget* parent);
    QString messageText() const;
    QPushButton* settingsButton() const { return m_settingsButton; }  // none on Linux
    QPushButton* closeButton() const { return m_closeButton; }

    void openSetView();
    void closeWindow();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_settingsButton = nullptr;
    QPushButton* m_closeButton;
};

}  // namespace velmora
