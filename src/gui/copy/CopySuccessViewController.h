#pragma once

#include "gui/copy/CopyEndViewController.h"

namespace velmora {

// The end of a drive copy in which every item was copied (and, when asked, verified):
// how much went where, "Open Folder" and "OK". What the destination could not keep of
// the copied items (permissions or links on FAT, say) is said and listed under
// "Show details", never left out.
class CopySuccessViewController : public CopyEndViewController {
    Q_OBJECT
public:
    CopySuccessViewController(const CopyResult& result, QWidget* parent);
};

}  // namespace velmora
