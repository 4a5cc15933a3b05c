#pragma once

#include <QMap>
#include <QWidget>

namespace velmora {

class ImageToggle;
class SlidePanel;

// The erasure-level settings panel: five radio buttons (identifiers "1", "2",
// "3", "7", "35"), Save and Cancel. Only Save writes "EraserTimes".
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

public slots:
    void buttonAction(const QString& identifier);
    void saveButtonAction();
    void cancelButtonAction();

signals:
    void closeSetEraserLevelView();

private:
    QMap<QString, ImageToggle*> m_buttons;
    QString m_eraserLevel;
};

}  // namespace velmora
