#pragma once

#include <QPushButton>

namespace velmora {

// A push button drawn from a set of four images: the base name and the same
// name with "_press", "_hover" and "_disable". The images stretch as nine
// slices, so the rounded ends keep their shape at any width.
class ImageSetButton : public QPushButton {
    Q_OBJECT
public:
    // stateStem names the hover/press/disable images when they do not share
    // the base image's name (the primary set: "btn_pril_normal", "btn_pril_press", ...).
    ImageSetButton(const QString& text, const QString& baseName, int fontSize = 12, QWidget* parent = nullptr,
                   const QString& stateStem = {});
    static ImageSetButton* secondary(const QString& text, QWidget* parent = nullptr);  // "btn_sec"
    static ImageSetButton* primary(const QString& text, QWidget* parent = nullptr);    // "btn_pril_normal"

protected:
    void paintEvent(QPaintEvent* event) override;  // adds the focus ring
};

}  // namespace velmora
