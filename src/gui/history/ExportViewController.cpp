#include "gui/history/ExportViewController.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QFileInfo>
#include <QVBoxLayout>

namespace velmora {

ExportViewController::ExportViewController(const QString& reportPath, bool written, QWidget* parent)
    : MAAttachedWindow(parent, {460, 210}),
      m_reportPath(reportPath),
      m_written(written),
      m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QString shownPath = QFileInfo(reportPath).absoluteFilePath();
    QVBoxLayout* layout =
        written ? PanelContent::addMessage(this, "ic_success", "History exported",
                                           QString("The report was saved as %1").arg(shownPath))
                : PanelContent::addMessage(this, "ic_fail", "History not exported",
                                           QString("The report could not be saved as %1").arg(shownPath));
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
    setCancelButton(m_okButton);
}

}  // namespace velmora
