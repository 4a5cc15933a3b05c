#include "gui/duplicate/DuplicationDetSuccessViewController.h"

#include "gui/duplicate/DuplicatePanelContent.h"
#include "gui/duplicate/DuplicateSizeText.h"
#include "gui/widgets/ImageSetButton.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

DuplicationDetSuccessViewController::DuplicationDetSuccessViewController(int removedCount, quint64 freedBytes,
                                                                         QWidget* parent)
    : MAAttachedWindow(parent, {440, 190}), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QString message = QString("%1 duplicate %2 removed, %3 freed.")
                                .arg(removedCount)
                                .arg(removedCount == 1 ? "file" : "files")
                                .arg(duplicateSizeText(freedBytes));
    QVBoxLayout* layout = DuplicatePanelContent::addMessage(this, "ic_success", "Duplicates removed", message);
    DuplicatePanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

QString DuplicationDetSuccessViewController::messageText() const {
    return DuplicatePanelContent::messageLabel(this)->text();
}

}  // namespace velmora
