#include "gui/volumes/GuideNotice.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/Style.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

GuideNotice::GuideNotice(const QString& title, const QString& messageHtml, QWidget* parent)
    : MAAttachedWindow(parent, {480, 280}), m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_warning", title, QString());
    m_messageLabel = PanelContent::messageLabel(this);
    m_messageLabel->setTextFormat(Qt::RichText);
    m_messageLabel->setText(messageHtml);
    m_messageLabel->setOpenExternalLinks(true);
    m_messageLabel->setTextInteractionFlags(Qt::TextBrowserInteraction);
    PanelContent::addButtons(layout, {m_okButton});
    setCancelButton(m_okButton);
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

QString GuideNotice::link(const QString& url, const QString& text) {
    return QString("<a href=\"%1\" style=\"color:%2; text-decoration:none\">%3</a>")
        .arg(url, Style::kAccent.name(), text.toHtmlEscaped());
}

}  // namespace velmora
