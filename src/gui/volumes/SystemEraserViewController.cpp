#include "gui/volumes/SystemEraserViewController.h"

namespace velmora {

SystemEraserViewController::SystemEraserViewController(QWidget* parent)
    : GuideNotice("The startup volume cannot be erased",
                  "The system runs from this volume, so it cannot be reformatted now. To destroy data on it, use "
                  "<b>Erase Files</b> for files and folders and <b>Erase Free Space</b> for deleted data.<br><br>" +
                      link(kGuideUrl, "check full guide >>"),
                  parent) {}

}  // namespace velmora
