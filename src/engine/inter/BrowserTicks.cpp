#include "engine/inter/BrowserTicks.h"

#include <algorithm>

namespace velmora::BrowserTicks {

void selectBrower(BrowerObj& entry) {
    entry.isSelect = entry.isSelect == 1 ? 0 : 1;
    if (entry.parObj) {
        updateBrowserState(*entry.parObj);
        return;
    }
    for (const BrowerObjPtr& category : entry.chrArr) category->isSelect = entry.isSelect;
}

void updateBrowserState(BrowerObj& browser) {
    const auto ticked = std::count_if(browser.chrArr.cbegin(), browser.chrArr.cend(),
                                      [](const BrowerObjPtr& category) { return category->isSelect == 1; });
    browser.isSelect = ticked == browser.chrArr.size() ? 1 : ticked == 0 ? 0 : 2;
}

bool canClean(const BrowserArr& browserArr) {
    return std::any_of(browserArr.cbegin(), browserArr.cend(), [](const BrowerObjPtr& browser) { return browser->isSelect != 0; });
}

}  // namespace velmora::BrowserTicks
