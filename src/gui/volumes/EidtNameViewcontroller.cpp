#include "gui/volumes/EidtNameViewcontroller.h"

#include "engine/volumes/VolumeNameRules.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/Style.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace velmora {
namespace {

// The name rules' reason as a sentence of its own.
QString sentence(QString reason) {
    if (!reason.isEmpty()) reason[0] = reason[0].toUpper();
    return reason + ".";
}

}  // namespace

EidtNameViewcontroller::EidtNameViewcontroller(const QString& volumeName, const QString& fileSystem, QWidget* parent)
    : MAAttachedWindow(parent, {470, 200}),
      m_fileSystem(fileSystem),
      m_nameField(new QLineEdit(volumeName, this)),
      m_hintLabel(Style::label(QString(), 11, true)),
      m_saveButton(ImageSetButton::primary("Save", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_disk", "Rename volume",
                                                   QString("Enter a new name for \"%1\".").arg(volumeName));
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);
    m_nameField->setFont(Style::lightFont(14));
    m_nameField->setMinimumHeight(32);
    m_nameField->selectAll();
    layout->addWidget(m_nameField);
    m_hintLabel->setObjectName("hintLabel");
    m_hintLabel->setWordWrap(true);
    m_hintLabel->setTextFormat(Qt::PlainText);
    m_hintLabel->hide();
    layout->addWidget(m_hintLabel);
    PanelContent::addButtons(layout, {m_cancelButton, m_saveButton});
    // Enter in the field saves; renaming is not destructive.
    m_cancelButton->setAutoDefault(false);
    m_saveButton->setDefault(true);
    fitHeight();
    setTabOrder(m_nameField, m_cancelButton);
    setTabOrder(m_cancelButton, m_saveButton);
    m_nameField->setFocus();

    connect(m_nameField, &QLineEdit::textEdited, this, &EidtNameViewcontroller::controlTextDidChange);
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_saveButton, &QPushButton::clicked, this, [this] {
        const QString name = m_nameField->text();
        accept();
        emit eidtNameSaveActionWithName(name);
    });
}

void EidtNameViewcontroller::controlTextDidChange(const QString& text) {
    m_nameField->setFont(Style::lightFont(14));
    m_editStr = text;
    const VolumeNameCheck check = nameForRename(m_fileSystem, text);
    if (!check.accepted())
        m_hintLabel->setText(sentence(check.error));
    else if (check.name != text)
        m_hintLabel->setText(QString("The volume will be named \"%1\".").arg(check.name));
    else
        m_hintLabel->clear();
    m_hintLabel->setVisible(!m_hintLabel->text().isEmpty());
    fitHeight();
}

// The hint comes and goes: the panel is as tall as its content.
void EidtNameViewcontroller::fitHeight() { setFixedHeight(layout()->totalHeightForWidth(width())); }

void EidtNameViewcontroller::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
