#pragma once

#include <QWidget>

class QPropertyAnimation;

namespace velmora {

// The side-panel container of a page (erasure level, history): hidden at
// x = 784, it slides to x = 0 over 0.5 s, and back out before it hides.
class SlidePanel : public QWidget {
    Q_OBJECT
public:
    static constexpr int kHiddenX = 784;
    static constexpr int kDurationMs = 500;

    explicit SlidePanel(QWidget* page);
    // Replaces the panel's content (the previous one is deleted), sized to the container.
    void setContent(QWidget* content);
    QWidget* content() const { return m_content; }
    void slideIn();
    void slideOut();

signals:
    void slidOut();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* m_content = nullptr;
    QPropertyAnimation* m_animation;
};

}  // namespace velmora
