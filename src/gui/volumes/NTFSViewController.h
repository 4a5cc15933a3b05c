#pragma once

#include "gui/volumes/GuideNotice.h"

namespace velmora {

// Shown instead of a free-space wipe of an NTFS volume, which this system can
// read but not write: "OK", the guide on erasing NTFS drives and the Windows edition.
class NTFSViewController : public GuideNotice {
    Q_OBJECT
public:
    explicit NTFSViewController(QWidget* parent);
    static constexpr const char* kGuideUrl = "https://www.velmora.app/guide/erase-ntfs-drive";
    static constexpr const char* kWindowsUrl = "https://www.velmora.app/windows";
};

}  // namespace velmora
