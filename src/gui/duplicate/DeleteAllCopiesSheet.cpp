#include "gui/duplicate/DeleteAllCopiesSheet.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

DeleteAllCopiesSheet::DeleteAllCopiesSheet(QWidget* parent)
    : MAAttachedWindow(parent, {460, 200}),
      m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", "Are you sure you want to delete all the duplicate files?",
        "No copy of this file would be kept.");
    QPushButton* cancel = ImageSetButton::secondary("Cancel", this);
    PanelContent::addButtons(layout, {cancel, m_okButton});
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    setCancelButton(cancel);
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace velmora
