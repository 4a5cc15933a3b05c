#pragma once

#include "gui/volumes/WipeFreeSpaceProViewController.h"

namespace velmora {

// The progress of a whole-drive erase: the free-space wipe's view under its
// own title (the reformat, then the fill, report through the same view).
class WipeDiskProViewController : public WipeFreeSpaceProViewController {
    Q_OBJECT
public:
    WipeDiskProViewController(const QString& levelName, QWidget* parent)
        : WipeFreeSpaceProViewController(levelName, parent, "Erasing the hard drive…") {}
};

}  // namespace velmora
