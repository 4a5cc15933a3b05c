#pragma once

#include "engine/erase/FileObj.h"
#include "gui/widgets/MAAttachedWindow.h"

class QPushButton;

namespace velmora {

// The end of a run without failures or cancel: how many items were erased,
// the per-item results and "OK".
class FileEraserSuccessViewController : public MAAttachedWindow {
    Q_OBJECT
public:
    FileEraserSuccessViewController(const FileObjList& results, QWidget* parent);
    QPushButton* okButton() const { return m_okButton; }

private:
    QPushButton* m_okButton;
};

}  // namespace velmora
