#include "engine/uninstall/InventoryListing.h"

#include "engine/volumes/CommUti.h"

#include <algorithm>

namespace velmora::InventoryListing {
namespace {

// The size text back in bytes (KB, MB, GB, TB in powers of 1000; 0 for anything else).
quint64 sizeKey(const QString& text) { return CommUti::volSpaceFromString(text); }

}  // namespace

AMAppItemList filtered(const AMAppItemList& found, const QString& searchText) {
    if (searchText.isEmpty()) return found;
    const QString needle = searchText.toLower();
    AMAppItemList shown;
    for (const AMAppItemPtr& item : found)
        if (item->name.toLower().contains(needle)) shown.append(item);
    return shown;
}

AMAppItemList sorted(AMAppItemList shown, int sortType, int sortAD) {
    const bool descending = sortAD != 0;
    if (sortType == 0) {
        std::stable_sort(shown.begin(), shown.end(), [descending](const AMAppItemPtr& a, const AMAppItemPtr& b) {
            return descending ? QString::compare(a->name, b->name) > 0 : QString::compare(a->name, b->name) < 0;
        });
    } else {
        std::stable_sort(shown.begin(), shown.end(), [descending](const AMAppItemPtr& a, const AMAppItemPtr& b) {
            return descending ? sizeKey(a->size) > sizeKey(b->size) : sizeKey(a->size) < sizeKey(b->size);
        });
    }
    return shown;
}

AMAppItemList selectAll(const AMAppItemList& ticked, const AMAppItemList& shown) {
    return ticked.size() != shown.size() ? shown : AMAppItemList{};
}

QString counterText(int ticked, int shown) {
    if (ticked > 0) return QString("Selected: %1/%2 Items").arg(ticked).arg(shown);
    return shown < 2 ? QString("Total: %1 Item").arg(shown) : QString("Total: %1 Items").arg(shown);
}

QString selectButtonTitle(int ticked, int shown) { return ticked > 0 && ticked >= shown ? "Unselect all" : "Select all"; }

QString headerText(int tab, int shown) {
    return tab == 0 ? QString("   Applications(Total: %1 items)").arg(shown) : QString("   Items(Total: %1 items)").arg(shown);
}

}  // namespace velmora::InventoryListing
