#include "gui/copy/CopyEndViewController.h"

#include "gui/copy/CopyIssueList.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"

#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

CopyEndViewController::CopyEndViewController(const CopyResult& result, const Look& look, QWidget* parent)
    : MAAttachedWindow(parent, look.size),
      m_okButton(ImageSetButton::primary("OK", this)),
      m_openFolderButton(ImageSetButton::secondary("Open Folder", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, look.icon, look.title, look.message);
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    QList<QPushButton*> buttons{m_openFolderButton, m_okButton};
    if (look.withDetails) {
        m_details = new CopyIssueList(result, this);
        m_details->hide();
        layout->addWidget(m_details, 1);
        m_detailsButton = ImageSetButton::secondary("Show details", this);
        buttons.prepend(m_detailsButton);
        const QSize size = look.size;
        const int heightWithDetails = look.heightWithDetails;
        connect(m_detailsButton, &QPushButton::clicked, this, [this, size, heightWithDetails] {
            const bool show = m_details->isHidden();
            m_details->setVisible(show);
            m_detailsButton->setText(show ? "Hide details" : "Show details");
            setFixedSize(size.width(), show ? heightWithDetails : size.height());
            centreOnParent();
        });
    }
    for (QPushButton* button : buttons) button->setAutoDefault(false);
    setCancelButton(m_okButton);
    PanelContent::addButtons(layout, buttons);
    const QString folder = result.destinationFolder;
    m_openFolderButton->setEnabled(!folder.isEmpty());
    connect(m_openFolderButton, &QPushButton::clicked, this, [folder] { QDesktopServices::openUrl(fileUrl(folder)); });
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

QString CopyEndViewController::titleText() const { return findChild<QLabel*>("panelTitle")->text(); }
QString CopyEndViewController::messageText() const { return PanelContent::messageLabel(this)->text(); }

void CopyEndViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        accept();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
