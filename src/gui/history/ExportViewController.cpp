#include "gui/history/ExportViewController.h"

#include "gui/widgets/PanelContent.h"
#include "gui/widgets/ImageSetButton.h"

#include <QFileInfo>
#include <QVBoxLayout>

namespace velmora {

ExportViewController::ExportViewController(const QString& reportPath, QWidget* parent)
    : MAAttachedWindow(parent, {460, 210}), m_reportPath(reportPath), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_success", "History exported",
        QString("The report was saved as %1").arg(QFileInfo(reportPath).absoluteFilePath()));
    PanelContent::addButtons(layout, {m_okButton});
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace velmora
