#include "gui/duplicate/MarkSureDeleteVC.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

MarkSureDeleteVC::MarkSureDeleteVC(int fileCount, quint64 totalSize, QWidget* parent)
    : MAAttachedWindow(parent, {460, 230}),
      m_continueButton(ImageSetButton::primary("Continue", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QString message = QString("%1 selected %2 (%3) will be deleted for good: nothing goes to the Trash.")
                                .arg(fileCount)
                                .arg(fileCount == 1 ? "copy" : "copies")
                                .arg(byteToSizeWithByte(totalSize));
    QVBoxLayout* layout =
        PanelContent::addMessage(this, "ic_warning", "Remove the selected duplicates?", message);
    PanelContent::addButtons(layout, {m_cancelButton, m_continueButton});
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        accept();
        emit delDuplicateItems();
    });
}

}  // namespace velmora
