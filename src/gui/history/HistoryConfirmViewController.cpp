#include "gui/history/HistoryConfirmViewController.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

HistoryConfirmViewController::HistoryConfirmViewController(const QString& title, const QString& message,
                                                           QWidget* parent)
    : MAAttachedWindow(parent, {440, 200}), m_continueButton(ImageSetButton::primary("Continue", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_warning", title, message);
    auto* cancel = ImageSetButton::secondary("Cancel", this);
    PanelContent::addButtons(layout, {cancel, m_continueButton});
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    setCancelButton(cancel);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        accept();
        emit confirmed();
    });
}

}  // namespace velmora
