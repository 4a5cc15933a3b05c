#pragma once

#include "engine/copy/CopyResult.h"
#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

class CopyIssueList;

// The end view of a drive copy, whole or not: an icon, a title and a plain-text message,
// then "Show details" (when there is a list of items to show), "Open Folder" and "OK".
// The details list every item the copy could not copy, that differs from its source or
// that the destination could not keep whole. Escape and "OK" close it.
class CopyEndViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    QString titleText() const;
    QString messageText() const;
    QPushButton* okButton() const { return m_okButton; }
    QPushButton* openFolderButton() const { return m_openFolderButton; }
    QPushButton* detailsButton() const { return m_detailsButton; }
    CopyIssueList* details() const { return m_details; }

protected:
    struct Look {
        const char* icon;
        QString title;
        QString message;
        bool withDetails;
        QSize size;
        int heightWithDetails;
    };
    CopyEndViewController(const CopyResult& result, const Look& look, QWidget* parent);
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_okButton;
    QPushButton* m_openFolderButton;
    QPushButton* m_detailsButton = nullptr;
    CopyIssueList* m_details = nullptr;
};

}  // namespace velmora
