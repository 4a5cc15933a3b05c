#pragma once

#include <QPointer>
#include <QWidget>

class QAbstractButton;
class QPropertyAnimation;

namespace velmora {

// The side-panel container of a page (erasure level, history): hidden just past
// the page's right edge, it slides in to cover the page over 0.5 s, and back out
// before it hides. It follows the page's size while the window is resized.
// While shown it holds the keyboard: Tab cycles through its own controls only (the
// page under it cannot be seen), Escape clicks its cancel button, and the focus goes
// back where it was when the panel slides out.
class SlidePanel : public QWidget {
    Q_OBJECT
public:
    static constexpr int kDurationMs = 500;

    explicit SlidePanel(QWidget* page);
    // Replaces the panel's content (the previous one is deleted), sized to the container.
    void setContent(QWidget* content);
    QWidget* content() const { return m_content; }
    void slideIn();
    void slideOut();
    // What Escape clicks: the content's Cancel or Close.
    void setCancelButton(QAbstractButton* button);
    // Where the panel waits while hidden: the page's width.
    int hiddenX() const;
    bool isShown() const { return m_shown; }

signals:
    void slidOut();

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    QList<QWidget*> focusableControls() const;

    QWidget* m_content = nullptr;
    QPropertyAnimation* m_animation;
    bool m_shown = false;
    QPointer<QAbstractButton> m_cancelButton;
    QPointer<QWidget> m_focusBefore;
};

}  // namespace velmora
