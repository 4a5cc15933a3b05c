#pragma once

#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

class DuplicateOutlineView;
class UninstallSession;
class UninstallTreeModel;

// The confirmation before an uninstall: every application with its related files in an
// expanded tree with three-state group boxes. What the engine pre-ticks is ticked; a
// possible match or a folder another application also matches is shown unticked and
// marked. A running application is named with "Quit it first". "Cancel" (also Enter and
// Escape) closes it; "Uninstall" reports clickedDeleteBtn and is enabled only while
// something is ticked, and takes a click or Space once the focus is on it. The session
// belongs to the caller; `running` names its running applications (read in the
// background with the related files, so that opening the panel reads no processes).
class MakeSureUninstallViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    MakeSureUninstallViewController(UninstallSession* session, const QStringList& running, QWidget* parent);

    // A click on a row's box (what the view reports).
    void selectRemoveLanguage(const QModelIndex& index);

    UninstallSession* session() const { return m_session; }
    DuplicateOutlineView* treeView() const { return m_treeView; }
    UninstallTreeModel* treeModel() const { return m_model; }
    QLabel* runningLabel() const { return m_runningLabel; }
    QPushButton* uninstallButton() const { return m_uninstallButton; }

signals:
    void clickedDeleteBtn();

private:
    UninstallSession* m_session;
    UninstallTreeModel* m_model;
    DuplicateOutlineView* m_treeView;
    QLabel* m_runningLabel;
    QPushButton* m_uninstallButton;
};

}  // namespace velmora
