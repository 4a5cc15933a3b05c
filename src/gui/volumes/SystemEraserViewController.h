#pragma once

#include "gui/volumes/GuideNotice.h"

namespace velmora {

// Shown instead of a whole-drive erase of the startup volume, which cannot be
// erased while the system runs from it: "OK" and the guide on erasing a startup disk.
class SystemEraserViewController : public GuideNotice {
    Q_OBJECT
public:
    explicit SystemEraserViewController(QWidget* parent);
    static constexpr const char* kGuideUrl = "https://www.velmora.app/guide/erase-startup-disk";
};

}  // namespace velmora
