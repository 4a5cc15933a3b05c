#pragma once

#include "engine/copy/CopyResult.h"
#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

class CopyIssueList;

// The end of a drive copy that is not whole: stopped by the user ("You have stopped the
// copying process."), stopped because the destination folder went, or finished with
// items that could not be copied or copies that differ from their source. It says how
// many, how much was copied and where, and lists each item with its reason under
// "Show details".
class CopyFailViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    CopyFailViewController(const CopyResult& result, const QString& stopText, QWidget* parent);

    QString titleText() const;
    QString messageText() const;
    QPushButton* okButton() const { return m_okButton; }
    QPushButton* openFolderButton() const { return m_openFolderButton; }
    QPushButton* detailsButton() const { return m_detailsButton; }
    CopyIssueList* details() const { return m_details; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPushButton* m_okButton;
    QPushButton* m_openFolderButton;
    QPushButton* m_detailsButton = nullptr;
    CopyIssueList* m_details = nullptr;
};

}  // namespace velmora
