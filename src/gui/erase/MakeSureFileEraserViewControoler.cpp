#include "gui/erase/MakeSureFileEraserViewControoler.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

MakeSureFileEraserViewControoler::MakeSureFileEraserViewControoler(QWidget* parent)
    : MAAttachedWindow(parent, {460, 220}),
      m_continueButton(ImageSetButton::primary("Continue", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", "Erase the selected items?",
        "The ticked files and folders will be overwritten and removed. Erased data cannot be recovered, "
        "not even with recovery software.");
    PanelContent::addButtons(layout, {m_cancelButton, m_continueButton});
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    // Enter and Escape both mean Cancel here; erasing takes a click on Continue.
    setCancelButton(m_cancelButton);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        accept();
        emit makeSureToEraserSelectFiles();
    });
}

}  // namespace velmora
