#pragma once

#include "engine/uninstall/AMAppItem.h"
#include "engine/platform/NativePath.h"
#include "support/QtTestSupport.h"

#include <QStringList>
#include <string>

namespace velmora::test {

inline QString q(const std::string& path) { return pathFromNative(QByteArray::fromStdString(path)); }

inline QStringList pathsOf(const AMAppItemList& items) {
    QStringList paths;
    for (const AMAppItemPtr& item : items) paths.append(item->path);
    return paths;
}

inline AMAppItemPtr byPath(const AMAppItemList& items, const std::string& path) {
    for (const AMAppItemPtr& item : items)
        if (item->path == q(path)) return item;
    return {};
}

}  // namespace velmora::test
