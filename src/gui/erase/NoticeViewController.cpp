#include "gui/erase/NoticeViewController.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {

NoticeViewController::NoticeViewController(const QString& title, const QString& message, QWidget* parent)
    : MAAttachedWindow(parent, {440, 200}), m_title(title) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_warning", title, message);
    auto* ok = ImageSetButton::primary("OK", this);
    PanelContent::addButtons(layout, {ok});
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    setCancelButton(ok);
}

}  // namespace velmora
