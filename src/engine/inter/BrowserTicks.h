#pragma once

#include "engine/inter/BrowerObj.h"

namespace velmora::BrowserTicks {

// A click on a tick box: 0 -> 1, 1 -> 0, 2 -> 1. A category's browser then becomes 1
// when all its categories are 1, 0 when none is, else 2; a browser passes its new
// state to all its categories.
void selectBrower(BrowerObj& entry);
// The browser's state from its categories (1 all, 0 none, 2 some).
void updateBrowserState(BrowerObj& browser);
// Whether Clean is enabled: any browser entry not unticked.
bool canClean(const BrowserArr& browserArr);

}  // namespace velmora::BrowserTicks
