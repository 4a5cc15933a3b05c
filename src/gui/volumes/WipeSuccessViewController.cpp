#include "gui/volumes/WipeSuccessViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

WipeSuccessViewController::WipeSuccessViewController(const QString& title, const QString& text, QWidget* parent)
    : MAAttachedWindow(parent, {460, 200}), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_success", title, text);
    findChild<QLabel*>("panelTitle")->setTextFormat(Qt::PlainText);  // a volume name is never markup
    PanelContent::addButtons(layout, {m_okButton});
    setCancelButton(m_okButton);
    // A text that goes on (the bytes a fill could not reach) makes the view taller.
    setFixedHeight(qMax(height(), layout->totalHeightForWidth(width())));
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace velmora
