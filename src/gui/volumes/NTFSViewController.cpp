#include "gui/volumes/NTFSViewController.h"

namespace velmora {

NTFSViewController::NTFSViewController(QWidget* parent)
    : GuideNotice("This NTFS volume cannot be written",
                  "The free space of an NTFS volume cannot be wiped here: this system can read NTFS but not write "
                  "it. Erase the whole drive instead (it is reformatted as FAT32), or wipe it from Windows.<br><br>" +
                      link(kGuideUrl, "check full guide >>") + "&nbsp;&nbsp;&nbsp;" +
                      link(kWindowsUrl, "Velmora Data Eraser for Windows"),
                  parent) {}

}  // namespace velmora
