#include "gui/copy/CopyMakeSureVC.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

CopyMakeSureVC::CopyMakeSureVC(const QString& sourceName, const QString& destinationName, bool allFiles,
                               const QString& sizeText, QWidget* parent)
    : MAAttachedWindow(parent, {480, 230}),
      m_copyButton(ImageSetButton::primary("Copy", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QString what = allFiles ? QString("All files of \"%1\"").arg(sourceName)
                                  : QString("The files you picked on \"%1\"").arg(sourceName);
    const QString size = sizeText.isEmpty() ? QString() : QString(" (%1)").arg(sizeText);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_disk", QString("Copy to \"%1\"?").arg(destinationName),
        QString("%1%2 will be copied into a new dated folder \"VLclone(…)\" on \"%3\". Nothing is changed or removed "
                "on either drive.")
            .arg(what, size, destinationName));
    findChild<QLabel*>("panelTitle")->setTextFormat(Qt::PlainText);
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    PanelContent::addButtons(layout, {m_cancelButton, m_copyButton});
    // Enter and Escape cancel; "Copy" needs a click, or Space once focused.
    setCancelButton(m_cancelButton);
    m_copyButton->setAutoDefault(false);
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_copyButton, &QPushButton::clicked, this, [this] {
        accept();
        emit beginToCopyFiles();
    });
}

void CopyMakeSureVC::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
