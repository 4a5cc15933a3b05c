#pragma once

#include "engine/inter/BrowerObj.h"
#include "support/QtTestSupport.h"

#include <QString>
#include <filesystem>
#include <ostream>
#include <gtest/gtest.h>

// GoogleTest takes QString values in failure messages.
inline std::ostream& operator<<(std::ostream& out, const QString& text) { return out << text.toStdString(); }

namespace velmora::test {

inline BrowerObjPtr browserNamed(const BrowserArr& browsers, const QString& name) {
    for (const BrowerObjPtr& browser : browsers)
        if (browser->name == name) return browser;
    return nullptr;
}

inline BrowerObjPtr categoryNamed(const BrowerObj& browser, const QString& name) {
    for (const BrowerObjPtr& category : browser.chrArr)
        if (category->name == name) return category;
    return nullptr;
}

// Ticks exactly the named categories of one browser, nothing of the others.
inline void tickOnly(const BrowserArr& browsers, const QString& browserName, const QStringList& categories) {
    for (const BrowerObjPtr& browser : browsers) {
        browser->isSelect = 0;
        for (const BrowerObjPtr& category : browser->chrArr) {
            category->isSelect = browser->name == browserName && categories.contains(category->name) ? 1 : 0;
            if (category->isSelect) browser->isSelect = 2;
        }
    }
}

}  // namespace velmora::test
