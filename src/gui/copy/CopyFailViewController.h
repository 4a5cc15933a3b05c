#pragma once

#include "gui/copy/CopyEndViewController.h"

namespace velmora {

// The end of a drive copy that is not whole: stopped by the user ("You have stopped the
// copying process."), stopped because the destination folder went, or finished with
// items that could not be copied or copies that differ from their source. It says how
// many, how much was copied and where, and lists each item with its reason under
// "Show details".
class CopyFailViewController : public CopyEndViewController {
    Q_OBJECT
public:
    CopyFailViewController(const CopyResult& result, const QString& stopText, QWidget* parent);
};

}  // namespace velmora
