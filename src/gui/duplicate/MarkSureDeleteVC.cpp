#include "gui/duplicate/MarkSureDeleteVC.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

MarkSureDeleteVC::MarkSureDeleteVC(int fileCount, quint64 totalSize, QWidget* parent)
    : MAAttachedWindow(parent, {460, 230}),
      m_continueButton(ImageSetButton::primary("Continue", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QString message = QString("%1 selected %2 (%3) will be deleted for good: nothing goes to the Trash.")
                                .arg(fileCount)
                                .arg(fileCount == 1 ? "copy" : "copies")
                                .arg(byteToSizeWithByte(totalSize));
    QVBoxLayout* layout =
        PanelContent::addMessage(this, "ic_warning", "Remove the selected duplicates?", message);
    QPushButton* cancel = ImageSetButton::secondary("Cancel", this);
    PanelContent::addButtons(layout, {cancel, m_continueButton});
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    setCancelButton(cancel);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        accept();
        emit delDuplicateItems();
    });
}

}  // namespace velmora
