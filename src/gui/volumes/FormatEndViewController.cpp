#include "gui/volumes/FormatEndViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

FormatEndViewController::FormatEndViewController(const QString& title, bool succeeded, const QString& message,
                                                 QWidget* parent)
    : MAAttachedWindow(parent, {470, 200}), m_succeeded(succeeded), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, succeeded ? "ic_success" : "ic_fail", title, message);
    // The message carries names and the disk utility's words: shown as they are.
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    PanelContent::addButtons(layout, {m_okButton});
    m_okButton->setDefault(true);
    setFixedHeight(qMax(height(), layout->totalHeightForWidth(width())));
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

void FormatEndViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        accept();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
