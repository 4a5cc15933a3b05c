#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velmora {

// The progress of an erasure: the erasure standard, a bar, the item being
// erased ("%d of %d items" and its path), the elapsed time and "Cancel".
// It closes itself when the progress reaches 100.
class FileEraserProgressViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    FileEraserProgressViewController(const QString& levelName, QWidget* parent);

    void setRemoveProgress(double progress, const QString& path, const QString& round);
    void setElapsedTime(const QString& text);

    double progress() const { return m_progress; }
    QString typeText() const;
    QString roundText() const;
    QString pathText() const { return m_path; }
    QString elapsedText() const;
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void cancelEraserButtonAction();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showPath();

    double m_progress = 0;
    QString m_path;
    QLabel* m_typeLabel;
    QLabel* m_timeLabel;
    QProgressBar* m_bar;
    QLabel* m_roundLabel;
    QLabel* m_pathLabel;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
