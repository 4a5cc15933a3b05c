#include "gui/erase/FileEraserSuccessViewController.h"

#include "gui/erase/ErasureResultList.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QVBoxLayout>

namespace velmora {
namespace {

QString summary(const FileObjList& results) {
    const auto erased = std::count_if(results.cbegin(), results.cend(),
                                      [](const FileObj& record) { return record.failStr == "Erased"; });
    if (erased == results.size())
        return QString("%1 %2 erased beyond recovery.").arg(erased).arg(erased == 1 ? "item was" : "items were");
    return QString("%1 of %2 items were erased beyond recovery.").arg(erased).arg(results.size());
}

}  // namespace

FileEraserSuccessViewController::FileEraserSuccessViewController(const FileObjList& results, QWidget* parent)
    : MAAttachedWindow(parent, {520, 360}), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_success", "Erasure completed", summary(results));
    layout->addWidget(new ErasureResultList(results, this), 1);
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
    setCancelButton(m_okButton);
}

}  // namespace velmora
