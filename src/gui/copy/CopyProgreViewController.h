#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velmora {

// The progress of a drive copy: the bar as the copy reports it (each level of a partly
// picked folder restarts it), the item being copied, the bytes copied so far, and
// "Cancel". After Cancel the button is disabled and a note says that items already
// being copied finish first. It remembers the destination folder for the end view.
class CopyProgreViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    CopyProgreViewController(const QString& copyFolder, QWidget* parent);

    void topCopyProgress(float percent);
    void topCopyFilePath(const QString& path);
    void setCopiedBytes(quint64 copied, quint64 total);
    void closeWindow() { close(); }

    const QString& copyFolder() const { return m_copyFolder; }
    int progressValue() const;
    QString pathText() const;
    QString bytesText() const;
    QLabel* cancelNote() const { return m_cancelNote; }
    QPushButton* cancelButton() const { return m_cancelButton; }

signals:
    void cancelCopy();

private:
    QString m_copyFolder;
    QString m_pathShown;
    QProgressBar* m_bar;
    QLabel* m_pathLabel;
    QLabel* m_bytesLabel;
    QLabel* m_cancelNote;
    QPushButton* m_cancelButton;
};

}  // namespace velmora
