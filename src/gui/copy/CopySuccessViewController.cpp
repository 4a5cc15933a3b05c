#include "gui/copy/CopySuccessViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/copy/CopyIssueList.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SizeText.h"

#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

CopySuccessViewController::CopySuccessViewController(const CopyResult& result, QWidget* parent)
    : MAAttachedWindow(parent, {500, 230}),
      m_okButton(ImageSetButton::primary("OK", this)),
      m_openFolderButton(ImageSetButton::secondary("Open Folder", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QString message = QString("%1 %2 (%3) copied into \"%4\".")
                          .arg(result.copiedItems)
                          .arg(result.copiedItems == 1 ? "item" : "items")
                          .arg(byteToSizeWithByte(result.copiedBytes), displayPath(result.destinationFolder));
    if (result.verified)
        message += QString(" Every copied file (%1) was compared with its source byte for byte.").arg(result.verifiedFiles);
    qint64 notes = 0;
    for (const CopyNote& note : result.notes) notes += note.count;
    if (notes > 0)
        message += QString(" The destination could not keep everything of %1 %2: see the details.")
                       .arg(notes)
                       .arg(notes == 1 ? "item" : "items");
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_success", "The copy is complete", message);
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    QList<QPushButton*> buttons{m_openFolderButton, m_okButton};
    if (!result.notes.isEmpty()) {
        m_details = new CopyIssueList(result, this);
        m_details->hide();
        layout->addWidget(m_details, 1);
        m_detailsButton = ImageSetButton::secondary("Show details", this);
        buttons.prepend(m_detailsButton);
        connect(m_detailsButton, &QPushButton::clicked, this, [this] {
            const bool show = m_details->isHidden();
            m_details->setVisible(show);
            m_detailsButton->setText(show ? "Hide details" : "Show details");
            setFixedSize(width(), show ? 430 : 230);
            centreOnParent();
        });
    }
    for (QPushButton* button : buttons) button->setAutoDefault(false);
    setCancelButton(m_okButton);
    PanelContent::addButtons(layout, buttons);
    const QString folder = result.destinationFolder;
    connect(m_openFolderButton, &QPushButton::clicked, this, [folder] { QDesktopServices::openUrl(fileUrl(folder)); });
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

void CopySuccessViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        accept();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
