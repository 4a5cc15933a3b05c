#include "gui/duplicate/DeleteAllCopiesSheet.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

DeleteAllCopiesSheet::DeleteAllCopiesSheet(QWidget* parent)
    : MAAttachedWindow(parent, {460, 200}),
      m_okButton(ImageSetButton::primary("OK", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", "Are you sure you want to delete all the duplicate files?",
        "No copy of this file would be kept.");
    PanelContent::addButtons(layout, {m_cancelButton, m_okButton});
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace velmora
