#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

namespace velmora {

// Which deletion and size rules a browser entry follows. Chromium, Brave and Edge
// follow Chrome's rules; a browser entry's name alone does not decide it.
enum class BrowserRules { None, GoogleChrome, Firefox, Opera, Safari };

class BrowerObj;
using BrowerObjPtr = std::shared_ptr<BrowerObj>;
using BrowserArr = QList<BrowerObjPtr>;

// One row of the internet cleaner: a browser entry (parObj empty, categories in chrArr)
// or a category entry (parObj set, urlStr the path format).
class BrowerObj {
public:
    QString name;
    // The icon: a resource name of our artwork ("icon_history", "ic_browser_chrome"), or
    // for an application found in an Applications folder the path of its icon file.
    QString iconImage;
    int isSelect = 0;  // 0 unticked, 1 ticked, 2 partly ticked (browser entries only)
    QString urlStr;    // category: a path format with one "%@"
    QString size;      // the shown count or size text
    BrowerObj* parObj = nullptr;  // category: its browser entry, which owns it
    BrowserArr chrArr;            // browser: its categories

    // Browser entries only.
    BrowserRules rules = BrowserRules::None;
    QString catalogueKey;  // the key of its categories in the catalogue
    // Programs whose process makes the browser "running": an absolute executable path, or
    // a file name matched against a process's executable name and its comm.
    QStringList programs;

    bool isBrowser() const { return parObj == nullptr; }
};

}  // namespace velmora
