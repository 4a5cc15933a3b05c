#include "gui/inter/CloseBrowerViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

CloseBrowerViewController::CloseBrowerViewController(const QString& names, QWidget* parent)
    : MAAttachedWindow(parent, {460, 230}),
      m_closeButton(ImageSetButton::primary("Close", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QString shown = QString(names).replace(',', ", ");
    const QString message =
        QString("%1 must be closed first: a running browser keeps its data open. Unsaved work in it is lost.")
            .arg(shown);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_warning", "Close the running browsers?", message);
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    PanelContent::addButtons(layout, {m_cancelButton, m_closeButton});
    // Ending programs is not what Return should do by accident: Enter and Escape cancel.
    setCancelButton(m_cancelButton);
    m_closeButton->setAutoDefault(false);
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_closeButton, &QPushButton::clicked, this, &QDialog::accept);
}

QString CloseBrowerViewController::messageText() const { return PanelContent::messageLabel(this)->text(); }

void CloseBrowerViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
