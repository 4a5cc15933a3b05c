#pragma once

#include <QMap>
#include <QWidget>

class QPushButton;
class QVBoxLayout;

namespace velmora {

class ImageToggle;
class SlidePanel;

// The erasure-level settings panel: five radio buttons (identifiers "1", "2",
// "3", "7", "35"), the "Check for updates at start-up" check box (shown when the
// build has an update address), Save and Cancel. Only Save writes "EraserTimes" and
// the check box's setting.
class SetEraserLevelVC : public QWidget {
    Q_OBJECT
public:
    explicit SetEraserLevelVC(QWidget* parent = nullptr);
    // Opens a fresh panel in the page's level container and slides it in.
    static SetEraserLevelVC* showIn(SlidePanel* container);

    void setEraserLevelSelect();
    void setLevelStr(const QString& level);
    QString eraserLevel() const { return m_eraserLevel; }
    ImageToggle* radioButton(const QString& identifier) const { return m_buttons.value(identifier); }
    ImageToggle* updateCheckBox() const { return m_updateCheckBox; }

public slots:
    void buttonAction(const QString& identifier);
    void updateCheckBoxAction();
    void saveButtonAction();
    void cancelButtonAction();

signals:
    void closeSetEraserLevelView();

private:
    void addUpdateCheckRow(QVBoxLayout* layout);
    void setChecksForUpdates(bool checks);

    QMap<QString, ImageToggle*> m_buttons;
    QString m_eraserLevel;
    ImageToggle* m_updateCheckBox = nullptr;
    QPushButton* m_cancelButton = nullptr;
    bool m_checksForUpdates = true;
};

}  // namespace velmora
