#include "engine/uninstall/AMAppItem.h"

namespace velmora {

AMAppItem AMAppItem::initWithInfoDictionary(const QString& image, const QString& name, const QString& path,
                                            const QString& bundleID, const QString& bundleVersion,
                                            const QDateTime& date, const QString& isSystemAppStr,
                                            const QString& size) {
    AMAppItem item;
    item.image = image;
    item.name = name;
    item.path = path;
    item.bundleID = bundleID;
    item.bundleVersion = bundleVersion;
    item.date = date;
    item.isSystemAppStr = isSystemAppStr;
    item.isSystemApp = isSystemAppStr == "YES";
    item.size = size;
    return item;
}

}  // namespace velmora
