#include "gui/inter/FullDiskAccessViewController.h"

#include "engine/inter/FullDiskAccessAuthorizer.h"
#include "engine/platform/NativePath.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace velmora {

FullDiskAccessViewController::FullDiskAccessViewController(const QString& unreadableFolder, const QString& reason,
                                                           QWidget* parent)
    : MAAttachedWindow(parent, {480, 250}) {
    setAttribute(Qt::WA_DeleteOnClose);
#ifdef Q_OS_MACOS
    Q_UNUSED(unreadableFolder);
    Q_UNUSED(reason);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", "Allow Full Disk Access",
        "Browser data such as Safari's lies in folders that macOS opens only to applications with Full Disk "
        "Access. Add Velmora Data Eraser to the list in System Settings, then scan again.");
    m_settingsButton = ImageSetButton::primary("Open Settings", this);
    m_closeButton = ImageSetButton::secondary("Later", this);
    PanelContent::addButtons(layout, {m_closeButton, m_settingsButton});
    connect(m_settingsButton, &QPushButton::clicked, this, &FullDiskAccessViewController::openSetView);
#else
    const QString folder = displayPath(unreadableFolder);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", "A browser folder can't be read",
        QString("%1 could not be listed (%2). The browser data in it is not shown and is not cleaned. Give your "
                "user read access to this folder, then scan again.")
            .arg(folder, reason.isEmpty() ? QString("no permission") : reason));
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    PanelContent::messageLabel(this)->setToolTip(folder);
    m_closeButton = ImageSetButton::primary("OK", this);
    PanelContent::addButtons(layout, {m_closeButton});
#endif
    setCancelButton(m_closeButton);
    connect(m_closeButton, &QPushButton::clicked, this, &FullDiskAccessViewController::closeWindow);
}

QString FullDiskAccessViewController::messageText() const { return PanelContent::messageLabel(this)->text(); }

// The Full Disk Access list of the system settings; before 10.14 there is none.
void FullDiskAccessViewController::openSetView() {
    const QString address = FullDiskAccessAuthorizer::settingsUrl();
    if (!address.isEmpty()) QDesktopServices::openUrl(QUrl(address));
}

void FullDiskAccessViewController::closeWindow() { accept(); }

void FullDiskAccessViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        closeWindow();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
