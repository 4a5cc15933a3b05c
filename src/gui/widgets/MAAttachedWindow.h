#pragma once

#include <QDialog>

class QPushButton;

namespace velmora {

// A modal panel attached to the main window: frameless, rounded, centred on
// its parent window, run with exec() or open(). Confirmations, progress views
// and result views are built on it.
//
// Keyboard: the panel's cancel button (its safe choice: Cancel, Stop, OK, Close)
// is what Escape clicks, and it is the default button that Enter presses unless
// the user moved the focus to another button; it has the focus when the panel
// opens. A destructive button is therefore never pressed by a stray Enter.
class MAAttachedWindow : public QDialog {
    Q_OBJECT
public:
    explicit MAAttachedWindow(QWidget* parent, QSize size = {440, 240});
    // Centres the panel on the parent's window (or the screen without a parent).
    void centreOnParent();
    void setCancelButton(QPushButton* button);
    QPushButton* cancelButton() const { return m_cancelButton; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_cancelButton = nullptr;
};

}  // namespace velmora
