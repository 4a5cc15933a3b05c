#include "gui/volumes/MakeSureFormatViewController.h"

#include "engine/volumes/VolumeNameRules.h"
#include "gui/volumes/FormatTypeViewController.h"
#include "gui/volumes/GuideNotice.h"
#include "gui/volumes/NTFSViewController.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/Style.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>

namespace velmora {
namespace {

// The name rules' reason as a sentence of its own.
QString sentence(QString reason) {
    if (!reason.isEmpty()) reason[0] = reason[0].toUpper();
    return reason + ".";
}

}  // namespace

MakeSureFormatViewController::MakeSureFormatViewController(const QList<FormatChoice>& choices, QWidget* parent)
    : MAAttachedWindow(parent, {500, kMinimumHeight}),
      m_choices(choices),
      m_nameField(new QLineEdit(this)),
      m_nameHint(Style::label(QString(), 11, true)),
      m_typeButton(new QPushButton(this)),
      m_typeArrow(Style::label("\u25BE", 12)),
      m_noticeLabel(Style::label(QString(), 11, true)),
      m_continueButton(ImageSetButton::primary("Continue", this)),
      m_cancelButton(ImageSetButton::secondary("Cancel", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    QVBoxLayout* layout = PanelContent::addMessage(
        this, "ic_warning", QString(),
        "Every file on the volume will be removed and it gets a new, empty file system. This cannot be undone.");
    PanelContent::messageLabel(this)->setTextFormat(Qt::PlainText);

    auto* form = new QFormLayout;
    form->setContentsMargins(62, 0, 0, 0);
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(6);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_nameField->setFont(Style::lightFont(14));
    m_nameField->setMinimumHeight(30);
    m_nameField->setReadOnly(true);
    form->addRow(Style::label("Name:", 12, true), m_nameField);

    m_typeButton->setObjectName("typeButton");
    m_typeButton->setFont(Style::regularFont(13));
    m_typeButton->setMinimumHeight(30);
    m_typeButton->setCursor(Qt::PointingHandCursor);
    m_typeButton->setFocusPolicy(Qt::TabFocus);
    m_typeButton->setAutoDefault(false);
    auto* arrowRow = new QHBoxLayout(m_typeButton);
    arrowRow->setContentsMargins(0, 0, 8, 0);
    arrowRow->addStretch();
    arrowRow->addWidget(m_typeArrow);
    m_typeArrow->setAttribute(Qt::WA_TransparentForMouseEvents);
    form->addRow(Style::label("Format:", 12, true), m_typeButton);
    layout->addLayout(form);
    m_nameHint->setObjectName("nameHint");
    m_nameHint->setTextFormat(Qt::PlainText);
    m_nameHint->setWordWrap(true);
    m_nameHint->setContentsMargins(62, 0, 0, 0);
    m_nameHint->hide();
    layout->addWidget(m_nameHint);

    m_noticeLabel->setObjectName("noticeLabel");
    m_noticeLabel->setContentsMargins(62, 0, 0, 0);
    m_noticeLabel->setWordWrap(true);
    m_noticeLabel->setTextFormat(Qt::RichText);
    m_noticeLabel->setOpenExternalLinks(true);
    m_noticeLabel->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_noticeLabel->hide();
    layout->addWidget(m_noticeLabel);

    PanelContent::addButtons(layout, {m_cancelButton, m_continueButton});
    // Formatting destroys the volume's data: Enter must not start it.
    m_continueButton->setAutoDefault(false);
    m_cancelButton->setDefault(true);
    setTabOrder(m_nameField, m_typeButton);
    setTabOrder(m_typeButton, m_cancelButton);
    setTabOrder(m_cancelButton, m_continueButton);

    connect(m_nameField, &QLineEdit::textEdited, this, [this] {
        m_nameField->setFont(Style::lightFont(14));
        updateNameHint();
    });
    connect(m_typeButton, &QPushButton::clicked, this, &MakeSureFormatViewController::typeButtonAction);
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        const QString name = m_nameField->text();
        const QString type = m_typeText;
        accept();
        emit makeSureToFormatSelectVolumeWithName(name, type);
    });
}

FormatTypeViewController* MakeSureFormatViewController::typeList() const { return m_typeList; }

void MakeSureFormatViewController::setName(const QString& name, const QString& diskType) {
    findChild<QLabel*>("panelTitle")->setText(QString("Format \"%1\"?").arg(name));
    m_nameField->setText(name);
    VolumeObj volume;
    volume.diskType = diskType;
    const FormatType type = formatTypeForVolume(volume);
    m_typeText = type.typeText;
    m_typeFixed = type.fixed;
    const bool ntfs = formatCaseForVolume(volume) == FormatCase::EraseNtfsAsFat32;
    if (m_typeFixed) {
        // The name typed is not used for these volumes: the field stays as it is shown.
        m_noticeLabel->setText(
            ntfs ? "This NTFS volume is erased as MS-DOS FAT32 and named NEW, whatever name is typed.<br>" +
                       GuideNotice::link(NTFSViewController::kGuideUrl, "check full guide >>") + "<br>" +
                       GuideNotice::link(NTFSViewController::kWindowsUrl, "Velmora Data Eraser for Windows")
                 : "This APFS volume is reformatted in place: it keeps its name and format.<br>" +
                       GuideNotice::link(kApfsArticleUrl, "Recover lost data from a system drive >>"));
        m_noticeLabel->show();
    } else {
        // The field becomes editable once the panel is up, so the first key press goes to it.
        QTimer::singleShot(0, m_nameField, [field = m_nameField] { field->setReadOnly(false); });
    }
    showType();
    updateNameHint();
}

// The hint and the notice come and go: the panel is as tall as its content.
void MakeSureFormatViewController::fitHeight() {
    setFixedHeight(qMax(kMinimumHeight, layout()->totalHeightForWidth(width())));
}

void MakeSureFormatViewController::showType() {
    m_typeButton->setText(m_typeText);
    m_typeButton->setEnabled(!m_typeFixed);
    m_typeArrow->setVisible(!m_typeFixed);
    // A fixed type is shown in half-bright text.
    m_typeButton->setStyleSheet(QString("QPushButton { text-align: left; padding: 4px 26px 4px 8px; border-radius: 4px;"
                                        " background: rgba(255,255,255,20); border: 1px solid rgba(255,255,255,60);"
                                        " color: %1; }"
                                        "QPushButton:focus { border: 2px solid %2; }")
                                    .arg(Style::rgba(m_typeFixed ? Style::kSecondaryText : Style::kText),
                                         Style::rgba(Style::kAccent)));
}

void MakeSureFormatViewController::updateNameHint() {
    const QString typed = m_nameField->text();
    const VolumeNameCheck check = nameForFormat(m_typeText, typed);
    if (m_typeFixed)
        m_nameHint->clear();
    else if (!check.accepted())
        m_nameHint->setText(sentence(check.error));
    else if (check.name != typed)
        m_nameHint->setText(QString("The volume will be named \"%1\".").arg(check.name));
    else
        m_nameHint->clear();
    m_nameHint->setVisible(!m_nameHint->text().isEmpty());
    fitHeight();
}

void MakeSureFormatViewController::typeButtonAction() {
    if (m_typeFixed) return;
    delete m_typeList;
    m_typeList = new FormatTypeViewController(m_choices, m_typeText, this);
    m_typeList->setAttribute(Qt::WA_DeleteOnClose);
    m_typeList->setMinimumWidth(m_typeButton->width());
    connect(m_typeList, &FormatTypeViewController::selectFormatbyType, this,
            &MakeSureFormatViewController::selectFormatbyType);
    m_typeList->popup(m_typeButton->mapToGlobal(QPoint(0, m_typeButton->height())));
}

void MakeSureFormatViewController::selectFormatbyType(int identifier) {
    if (m_typeFixed) return;
    for (const FormatChoice& choice : std::as_const(m_choices)) {
        if (choice.identifier != identifier) continue;
        m_typeText = choice.typeText;
        showType();
        updateNameHint();
        return;
    }
}

void MakeSureFormatViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
