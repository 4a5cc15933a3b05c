#pragma once

#include "engine/uninstall/AMAppItem.h"

namespace velmora::InventoryListing {

// What the table shows: the records whose lower-cased name contains the lower-cased text
// (all of them for an empty text).
AMAppItemList filtered(const AMAppItemList& found, const QString& searchText);
// sortType 0: by name (plain, case-sensitive); otherwise by size (the size text read back
// as bytes, unknown or "0KB" as 0). sortAD 0: ascending, otherwise descending. Stable.
AMAppItemList sorted(AMAppItemList shown, int sortType, int sortAD);

// "Select all": a copy of the shown list, unless the ticked list already holds as many.
AMAppItemList selectAll(const AMAppItemList& ticked, const AMAppItemList& shown);
// The counter label ("Selected: n/m Items" or "Total: m Item(s)") and the select button.
QString counterText(int ticked, int shown);
QString selectButtonTitle(int ticked, int shown);
// "   Applications(Total: %d items)" for tab 0, "   Items(Total: %d items)" for the others.
QString headerText(int tab, int shown);

}  // namespace velmora::InventoryListing
