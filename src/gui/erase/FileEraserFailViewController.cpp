#include "gui/erase/FileEraserFailViewController.h"

#include "gui/erase/ErasureResultList.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

FileEraserFailViewController::FileEraserFailViewController(const FileObjList& results, bool wasCancelled,
                                                           QWidget* parent)
    : MAAttachedWindow(parent, {520, 380}),
      m_failNode(Style::label("The erasure was cancelled. Items it had not reached yet were left as they were.", 12)),
      m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_fail", "Not every item was erased",
        "Items marked Failed were not erased completely; the reason is shown under each.");
    m_failNode->setObjectName("failNode");
    m_failNode->setWordWrap(true);
    m_failNode->setStyleSheet("color: #E8A93A; background: transparent;");
    m_failNode->setVisible(wasCancelled);
    layout->addWidget(m_failNode);
    layout->addWidget(new ErasureResultList(results, this), 1);
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace velmora
