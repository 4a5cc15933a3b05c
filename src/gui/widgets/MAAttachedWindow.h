#pragma once

#include <QDialog>

namespace velmora {

// A modal panel attached to the main window: frameless, rounded, centred on
// its parent window, run with exec() or open(). Confirmations, progress views
// and result views are built on it.
class MAAttachedWindow : public QDialog {
    Q_OBJECT
public:
    explicit MAAttachedWindow(QWidget* parent, QSize size = {440, 240});
    // Centres the panel on the parent's window (or the screen without a parent).
    void centreOnParent();

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace velmora
