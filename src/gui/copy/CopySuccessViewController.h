#pragma once

#include "engine/copy/CopyResult.h"
#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

class CopyIssueList;

// The end of a drive copy in which every item was copied (and, when asked, verified):
// how much went where, "Open Folder" and "OK". What the destination could not keep of
// the copied items (permissions or links on FAT, say) is said and listed under
// "Show details", never left out.
class CopySuccessViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    CopySuccessViewController(const CopyResult& result, QWidget* parent);
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
