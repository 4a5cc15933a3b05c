#include "gui/erase/FileEraserFailViewController.h"

#include "gui/erase/ErasureResultList.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/Style.h"

#include <QLabel>
#include <algorithm>
#include <QVBoxLayout>

namespace velmora {

FileEraserFailViewController::FileEraserFailViewController(const FileObjList& results, bool wasCancelled,
                                                           QWidget* parent)
    : MAAttachedWindow(parent, {520, 380}),
      m_failNode(Style::label("The erasure was cancelled. Items it had not reached yet were left as they were.", 12)),
      m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    // The headline follows the rows: a failure only when a row failed.
    const bool anyFailed = std::any_of(results.cbegin(), results.cend(),
                                       [](const FileObj& record) { return record.failStr == "Failed"; });
    QVBoxLayout* layout =
        anyFailed ? PanelContent::addMessage(
                        this, "ic_fail", "Not every item was erased",
                        "Items marked Failed were not erased completely; the reason is shown under each.")
                  : PanelContent::addMessage(this, "ic_warning", "Erasure cancelled",
                                             "Items marked Cancelled are still there and stay in the list.");
    m_failNode->setObjectName("failNode");
    m_failNode->setWordWrap(true);
    m_failNode->setStyleSheet("color: #E8A93A; background: transparent;");
    m_failNode->setVisible(wasCancelled);
    layout->addWidget(m_failNode);
    layout->addWidget(new ErasureResultList(results, this), 1);
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
    setCancelButton(m_okButton);
}

}  // namespace velmora
