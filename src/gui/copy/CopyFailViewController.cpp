#include "gui/copy/CopyFailViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/copy/CopyIssueList.h"
#include "gui/widgets/FileUrls.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SizeText.h"

#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {
namespace {

constexpr int kWidth = 520;
constexpr int kHeight = 250;
constexpr int kHeightWithDetails = 460;

QString counted(qsizetype count, const char* one, const char* many) {
    return QString("%1 %2").arg(count).arg(count == 1 ? one : many);
}

QString titleOf(const CopyResult& result, const QString& stopText) {
    if (result.cancelled || result.destinationLost) return stopText;
    if (!result.failures.isEmpty()) return counted(result.failures.size(), "item could not be copied", "items could not be copied");
    return counted(result.mismatches.size(), "copied file differs from its source", "copied files differ from their source");
}

QString messageOf(const CopyResult& result) {
    QStringList sentences;
    sentences << QString("%1 (%2) copied into \"%3\".")
                     .arg(counted(qsizetype(result.copiedItems), "item", "items"), byteToSizeWithByte(result.copiedBytes),
                          displayPath(result.destinationFolder));
    if (result.cancelled || result.destinationLost) sentences << "The items the copy had not reached were not copied.";
    if ((result.cancelled || result.destinationLost) && !result.failures.isEmpty())
        sentences << counted(result.failures.size(), "item", "items") + " could not be copied.";
    if (!result.mismatches.isEmpty() && !result.failures.isEmpty())
        sentences << counted(result.mismatches.size(), "copied file differs", "copied files differ") + " from the source.";
    if (result.verified && result.mismatches.isEmpty())
        sentences << counted(qsizetype(result.verifiedFiles), "copied file matches its source",
                             "copied files match their source") + " byte for byte.";
    if (!result.failures.isEmpty() || !result.mismatches.isEmpty()) sentences << "The copy is not whole: see the details.";
    return sentences.join(' ');
}

}  // namespace

CopyFailViewController::CopyFailViewController(const CopyResult& result, const QString& stopText, QWidget* parent)
    : MAAttachedWindow(parent, {kWidth, kHeight}),
      m_okButton(ImageSetButton::primary("OK", this)),
      m_openFolderButton(ImageSetButton::secondary("Open Folder", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_fail", titleOf(result, stopText), messageOf(result));
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    QList<QPushButton*> buttons{m_openFolderButton, m_okButton};
    if (!result.failures.isEmpty() || !result.mismatches.isEmpty() || !result.notes.isEmpty()) {
        m_details = new CopyIssueList(result, this);
        m_details->hide();
        layout->addWidget(m_details, 1);
        m_detailsButton = ImageSetButton::secondary("Show details", this);
        buttons.prepend(m_detailsButton);
        connect(m_detailsButton, &QPushButton::clicked, this, [this] {
            const bool show = m_details->isHidden();
            m_details->setVisible(show);
            m_detailsButton->setText(show ? "Hide details" : "Show details");
            setFixedSize(kWidth, show ? kHeightWithDetails : kHeight);
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

QString CopyFailViewController::titleText() const { return findChild<QLabel*>("panelTitle")->text(); }
QString CopyFailViewController::messageText() const { return PanelContent::messageLabel(this)->text(); }

void CopyFailViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        accept();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
