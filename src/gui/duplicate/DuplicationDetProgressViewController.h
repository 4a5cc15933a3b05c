#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velmora {

// The progress of a removal: a bar with the percentage, the path of the
// copy last removed, and "Stop", which ends the removal after the copy in hand
// (Escape presses it too).
class DuplicationDetProgressViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    explicit DuplicationDetProgressViewController(QWidget* parent);

    void setRemoveProgress(int progress, const QString& path);
    int progress() const { return m_progress; }
    QString pathText() const { return m_path; }
    QPushButton* stopButton() const { return m_stopButton; }

signals:
    void stopRemoveBtnClicked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showPath();

    int m_progress = 0;
    QString m_path;
    QProgressBar* m_bar;
    QLabel* m_percentLabel;
    QLabel* m_pathLabel;
    QPushButton* m_stopButton;
};

}  // namespace velmora
