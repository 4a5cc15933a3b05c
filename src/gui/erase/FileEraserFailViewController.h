#pragma once

#include "engine/erase/FileObj.h"
#include "gui/widgets/MAAttachedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

// The end of a run that failed on some item or was cancelled: the per-item
// results and "OK". The cancel note (`failNode`) shows only after a cancel.
class FileEraserFailViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    FileEraserFailViewController(const FileObjList& results, bool wasCancelled, QWidget* parent);
    QLabel* failNode() const { return m_failNode; }
    QPushButton* okButton() const { return m_okButton; }

private:
    QLabel* m_failNode;
    QPushButton* m_okButton;
};

}  // namespace velmora
