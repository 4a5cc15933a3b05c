#include "gui/volumes/MakeSureWipeFreeSpaceViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

MakeSureWipeFreeSpaceViewController::MakeSureWipeFreeSpaceViewController(const QString& volumeName, QWidget* parent)
    : MAAttachedWindow(parent, {470, 230}),
      m_continueButton(ImageSetButton::primary("Continue", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", QString("Erase the free space of \"%1\"?").arg(volumeName),
        "Deleted data in the free space of this volume will be overwritten so that it cannot be recovered. "
        "The files still on the volume are kept. This may take a while.");
    // The volume's name is shown as it is, never as markup.
    findChild<QLabel*>("panelTitle")->setTextFormat(Qt::PlainText);
    PanelContent::addButtons(layout, {m_cancelButton, m_continueButton});
    // Erasing cannot be undone: Enter and Escape cancel; "Continue" needs a click, or Space once focused.
    setCancelButton(m_cancelButton);
    m_continueButton->setAutoDefault(false);
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        accept();
        emit makeSureToWipeFreeSpaceSelectVolume();
    });
}

}  // namespace velmora
