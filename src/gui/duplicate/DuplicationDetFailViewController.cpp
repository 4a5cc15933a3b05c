#include "gui/duplicate/DuplicationDetFailViewController.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

DuplicationDetFailViewController::DuplicationDetFailViewController(const QString& title, const QString& message,
                                                                   QWidget* parent)
    : MAAttachedWindow(parent, {460, 200}), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_fail", title, message);
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
    setCancelButton(m_okButton);
}

QString DuplicationDetFailViewController::titleText() const { return findChild<QLabel*>("panelTitle")->text(); }

QString DuplicationDetFailViewController::messageText() const {
    return PanelContent::messageLabel(this)->text();
}

}  // namespace velmora
