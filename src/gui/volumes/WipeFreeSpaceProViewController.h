#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velmora {

// The progress of a free-space wipe: the erasure level, a bar (never below
// 2%), the status text of the engine and "Cancel" (also Escape). After Cancel the
// button is disabled and a note says the wipe stops at its next step.
class WipeFreeSpaceProViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    WipeFreeSpaceProViewController(const QString& levelName, QWidget* parent,
                                   const QString& title = "Erasing free space…");

    void setRemoveProgress(const QString& statusText, float percent);
    void closeWindow() { close(); }
    // A run of several stages names the current one above the bar; a stage that
    // cannot tell how far it is (busy) shows a moving bar until its first progress.
    void setStage(const QString& stageText, bool busy);
    QString stageText() const;
    bool isBusy() const;

    float progress() const { return m_progress; }
    QString typeText() const;
    QString pathText() const;
    QLabel* cancelNote() const { return m_cancelNote; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void cancelWipeButtonAction();

private:
    float m_progress = 0;
    QLabel* m_typeLabel;
    QLabel* m_stageLabel;
    QProgressBar* m_bar;
    QLabel* m_pathLabel;
    QLabel* m_cancelNote;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
