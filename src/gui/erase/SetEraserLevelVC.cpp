#include "gui/erase/SetEraserLevelVC.h"

#include "engine/erase/EraserLevel.h"
#include "engine/update/UpdateCheck.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/ImageToggle.h"
#include "gui/widgets/SlidePanel.h"
#include "gui/widgets/Style.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>

namespace velmora {
namespace {

struct LevelRow {
    const char* identifier;
    const char* passes;
};
constexpr LevelRow kRows[] = {{"1", "1 pass of random data"},
                              {"2", "1 pass of random data, recorded as a two-pass standard"},
                              {"3", "3 passes: random, random, fixed pattern"},
                              {"7", "7 passes of fixed patterns and random data"},
                              {"35", "35 passes: the full Gutmann sequence"}};

}  // namespace

SetEraserLevelVC::SetEraserLevelVC(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 36, 48, 36);
    layout->addWidget(Style::label("Erasure Level", 20, false, true));
    QLabel* intro = Style::label("Choose how many times erased data is overwritten. More passes take longer; "
                                 "one pass is enough for modern drives and all solid-state media.", 12, true);
    intro->setWordWrap(true);
    layout->addWidget(intro);
    layout->addSpacing(18);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(16);
    int row = 0;
    for (const LevelRow& level : kRows) {
        const QString identifier = level.identifier;
        auto* radio = new ImageToggle("radiobutton_no", this, 18);
        radio->setObjectName("but_" + identifier);
        radio->setAccessibleName(EraserLevel::displayName(identifier.toInt()));
        connect(radio, &ImageToggle::clicked, this, [this, identifier] { buttonAction(identifier); });
        m_buttons.insert(identifier, radio);
        grid->addWidget(radio, row, 0, Qt::AlignTop);
        auto* text = new QVBoxLayout;
        text->setSpacing(2);
        text->addWidget(Style::label(EraserLevel::displayName(identifier.toInt()), 14));
        text->addWidget(Style::label(level.passes, 11, true));
        grid->addLayout(text, row, 1);
        ++row;
    }
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
    layout->addStretch();
    if (UpdateCheck::hasUpdateAddress()) addUpdateCheckRow(layout);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    m_cancelButton = ImageSetButton::secondary("Cancel", this);
    auto* save = ImageSetButton::secondary("Save", this);
    auto* cancel = m_cancelButton;
    connect(cancel, &QPushButton::clicked, this, &SetEraserLevelVC::cancelButtonAction);
    connect(save, &QPushButton::clicked, this, &SetEraserLevelVC::saveButtonAction);
    buttons->addWidget(cancel);
    buttons->addSpacing(12);
    buttons->addWidget(save);
    layout->addLayout(buttons);
}

void SetEraserLevelVC::addUpdateCheckRow(QVBoxLayout* layout) {
    auto* row = new QHBoxLayout;
    row->setSpacing(14);
    m_updateCheckBox = new ImageToggle("checkbox_no", this, 18);
    m_updateCheckBox->setObjectName("checkUpdates");
    m_updateCheckBox->setAccessibleName("Check for updates at start-up");
    connect(m_updateCheckBox, &ImageToggle::clicked, this, &SetEraserLevelVC::updateCheckBoxAction);
    row->addWidget(m_updateCheckBox);
    row->addWidget(Style::label("Check for updates at start-up", 14), 1);
    layout->addLayout(row);
    layout->addSpacing(12);
}

void SetEraserLevelVC::updateCheckBoxAction() { setChecksForUpdates(!m_checksForUpdates); }

void SetEraserLevelVC::setChecksForUpdates(bool checks) {
    m_checksForUpdates = checks;
    if (m_updateCheckBox) m_updateCheckBox->setImageName(checks ? "checkbox_yes" : "checkbox_no");
}

SetEraserLevelVC* SetEraserLevelVC::showIn(SlidePanel* container) {
    auto* panel = new SetEraserLevelVC;
    container->setContent(panel);
    connect(panel, &SetEraserLevelVC::closeSetEraserLevelView, container, &SlidePanel::slideOut);
    container->setCancelButton(panel->m_cancelButton);
    panel->setEraserLevelSelect();
    container->slideIn();
    return panel;
}

void SetEraserLevelVC::setEraserLevelSelect() {
    setLevelStr(QString::asprintf("%d", EraserLevel::stored()));
    setChecksForUpdates(UpdateCheck::launchCheckSetting());
}

void SetEraserLevelVC::setLevelStr(const QString& level) {
    for (ImageToggle* button : std::as_const(m_buttons)) button->setImageName("radiobutton_no");
    m_eraserLevel = level;
    if (ImageToggle* selected = m_buttons.value(level)) selected->setImageName("radiobutton_sel");
}

void SetEraserLevelVC::buttonAction(const QString& identifier) { setLevelStr(identifier); }

void SetEraserLevelVC::saveButtonAction() {
    EraserLevel::store(m_eraserLevel.toInt());
    if (m_updateCheckBox) UpdateCheck::setLaunchCheckSetting(m_checksForUpdates);
    cancelButtonAction();
}

void SetEraserLevelVC::cancelButtonAction() { emit closeSetEraserLevelView(); }

}  // namespace velmora
