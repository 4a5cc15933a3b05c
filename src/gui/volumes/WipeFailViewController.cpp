#include "gui/volumes/WipeFailViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/Style.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

WipeFailViewController::WipeFailViewController(const QString& title, const QString& errorText, const QString& detail,
                                               bool wasCancelled, QWidget* parent)
    : MAAttachedWindow(parent, {470, 230}),
      m_failNode(Style::label("The space written so far has been released again; the volume holds no fill files.", 12)),
      m_detailLabel(Style::label(detail, 11, true)),
      m_okButton(ImageSetButton::primary("OK", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_fail", title, errorText);
    findChild<QLabel*>("panelTitle")->setTextFormat(Qt::PlainText);  // a volume name is never markup
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    m_failNode->setObjectName("failNode");
    m_failNode->setWordWrap(true);
    m_failNode->setStyleSheet("color: #E8A93A; background: transparent;");
    m_failNode->setVisible(wasCancelled);
    layout->addWidget(m_failNode);
    m_detailLabel->setObjectName("detailLabel");
    m_detailLabel->setWordWrap(true);
    m_detailLabel->setVisible(!detail.isEmpty());
    layout->addWidget(m_detailLabel);
    PanelContent::addButtons(layout, {m_okButton});
    setCancelButton(m_okButton);
    // A long reason (which file failed, and why) makes the view taller.
    setFixedHeight(qMax(height(), layout->totalHeightForWidth(width())));
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace velmora
