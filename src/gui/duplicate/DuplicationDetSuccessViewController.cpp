#include "gui/duplicate/DuplicationDetSuccessViewController.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SizeText.h"
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
                                .arg(byteToSizeWithByte(freedBytes));
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_success", "Duplicates removed", message);
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
    setCancelButton(m_okButton);
}

QString DuplicationDetSuccessViewController::messageText() const {
    return PanelContent::messageLabel(this)->text();
}

}  // namespace velmora
