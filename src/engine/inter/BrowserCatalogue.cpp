#include "engine/inter/BrowserCatalogue.h"

#include "engine/inter/BrowserFiles.h"
#include "engine/inter/CatalogueResource.h"
#include "engine/inter/ToGetDB.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/CommUti.h"

#include <QFutureWatcher>
#include <QStandardPaths>
#include <QtConcurrent>
#include <sys/stat.h>

namespace velmora {
namespace {

bool isFolder(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool exists(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

BrowserRules rulesOf(const QString& key) {
    if (key == "Google Chrome") return BrowserRules::GoogleChrome;
    if (key == "Firefox") return BrowserRules::Firefox;
    if (key == "Opera") return BrowserRules::Opera;
    if (key == "Safari") return BrowserRules::Safari;
    return BrowserRules::None;
}

// The sum of the sizes of a folder's entries whose name contains `part`.
qint64 sizeOfEntriesContaining(const QString& folder, const QString& part) {
    const QString prefix = folder.endsWith('/') ? folder : folder + "/";
    qint64 total = 0;
    for (const QString& name : BrowserFiles::getAllFileWithPath(folder))
        if (name.contains(part)) total += BrowserFiles::fileSizeWithPath(prefix + name);
    return total;
}

QString sizeText(qint64 bytes) { return CommUti::longlongDiskSize(bytes); }

QString chromeValue(const QString& category, const QString& path) {
    ToGetDB& db = ToGetDB::returnToGetDB();
    if (category == "Session") return sizeText(sizeOfEntriesContaining(path, "Session"));
    if (category == "Save Password") return BrowserFiles::countText(db.getGooglePasswordItems(path));
    if (category == "Download History") return BrowserFiles::countText(db.getGoogleDownloadItems(path));
    if (category == "Browsing History") return BrowserFiles::countText(db.getGoogleHistoryItems(path));
    if (category == "Cookies") return BrowserFiles::countText(db.getGoogleCookiesItems(path));
    return sizeText(BrowserFiles::fileSizeWithPath(path));
}

QString firefoxValue(const QString& category, const QString& path) {
    // No profile: nothing is shown, and no path is formed from an empty profile.
    const QString profile = BrowserFiles::firefoxProfileWithPath(path);
    if (profile.isEmpty()) return {};
    if (category == "Caches") return sizeText(sizeOfEntriesContaining(profile, "cache"));
    if (category == "Cookies") return sizeText(BrowserFiles::fileSizeWithPath(profile + "/cookies.sqlite"));
    if (category == "Browsing History" || category == "Download History" || category == "Save Password")
        return sizeText(BrowserFiles::fileSizeWithPath(profile + "/places.sqlite"));
    if (category == "Session") return sizeText(BrowserFiles::fileSizeWithPath(profile + "/sessionstore.js"));
    return {};
}

QString operaValue(const QString& category, const QString& path) {
    ToGetDB& db = ToGetDB::returnToGetDB();
    if (category == "Session") return sizeText(sizeOfEntriesContaining(path, "Session"));
    if (category == "Browsing History") return BrowserFiles::countText(db.getOperaHistoryItems(path));
    if (category == "Download History") return BrowserFiles::countText(db.getOperaDownloadItems(path));
    if (category == "Save Password") return BrowserFiles::countText(db.getOperaPasswordItems(path));
    if (category == "Cookies" || category == "Caches") return sizeText(BrowserFiles::fileSizeWithPath(path));
    return {};
}

QString safariValue(const QString& category, const QString& path) {
    if (category == "Caches")
        return sizeText(BrowserFiles::fileSizeWithPath(path + "Metadata") + BrowserFiles::fileSizeWithPath(path + "com.apple.Safari"));
    if (category == "Browsing History")
        return BrowserFiles::countText(ToGetDB::returnToGetDB().getSafariBrowsingHistoryItems(path));
    if (category == "Downloads History") {
        const QVariant downloads = propertyListFromFile(BrowserFiles::pathWithUser("/Users/%@/Library/Safari/Downloads.plist"));
        return BrowserFiles::countText(int(downloads.toMap().value("DownloadHistory").toList().size()));
    }
    if (category == "Cookies") {
        const qsizetype entries =
            BrowserFiles::getAllFileWithPath(BrowserFiles::pathWithUser("/Users/%@/Library/Safari/LocalStorage/")).size() +
            BrowserFiles::getAllFileWithPath(BrowserFiles::pathWithUser("/Users/%@/Library/WebKit/LocalStorage/")).size();
        return BrowserFiles::countText(int(entries));
    }
    return sizeText(BrowserFiles::fileSizeWithPath(path));
}

// The application's shown name: its bundle's display name, else the folder name
// without ".app".
QString displayNameOf(const QString& appPath, const QVariantMap& info) {
    for (const char* key : {"CFBundleDisplayName", "CFBundleName"})
        if (const QString name = info.value(key).toString(); !name.isEmpty()) return name;
    QString name = appPath.section('/', -1);
    name.chop(4);
    return name;
}

QString iconFileOf(const QString& appPath, const QVariantMap& info) {
    QString icon = info.value("CFBundleIconFile").toString();
    if (icon.isEmpty()) return {};
    if (!icon.endsWith(".icns")) icon += ".icns";
    return appPath + "/Contents/Resources/" + icon;
}

bool programFound(const CatalogueResource::Programs& programs) {
    for (const QString& name : programs.executables)
        if (!QStandardPaths::findExecutable(name).isEmpty()) return true;
    QStringList dataDirs = qEnvironmentVariable("XDG_DATA_DIRS", "/usr/local/share:/usr/share").split(':', Qt::SkipEmptyParts);
    dataDirs.prepend(StandardPaths::applicationSupportDir());
    for (const QString& dir : dataDirs)
        for (const QString& entry : programs.desktopEntries)
            if (exists(dir + "/applications/" + entry)) return true;
    return false;
}

}  // namespace

BrowserCatalogue::BrowserCatalogue(QObject* parent) : QObject(parent) {}

BrowserCatalogue::~BrowserCatalogue() { m_scan.waitForFinished(); }

void BrowserCatalogue::getBrowserArr() {
    if (m_scan.isRunning()) return;
    // The destructor waits for the scan, so the scan may post to this object; a posted
    // call is dropped when the object is gone by then.
    m_scan = QtConcurrent::run([this] {
        return scan([this](const QString& name) {
            QMetaObject::invokeMethod(this, [this, name] { emit scanProgress(name); }, Qt::QueuedConnection);
        });
    });
    auto* watcher = new QFutureWatcher<BrowserArr>(this);
    connect(watcher, &QFutureWatcher<BrowserArr>::finished, this, [this, watcher] {
        watcher->deleteLater();
        emit browserArrReady(m_scan.result());
    });
    watcher->setFuture(m_scan);
}

BrowserArr BrowserCatalogue::scan(const std::function<void(const QString&)>& found) {
    BrowserArr browserArr;
    browserArr.reserve(100);
    const auto reportFrom = [&](qsizetype first) {
        if (found)
            for (qsizetype i = first; i < browserArr.size(); ++i) found(browserArr[i]->name);
    };
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        for (const QString& folder : applicationPaths()) {
            const qsizetype first = browserArr.size();
            applicationsInPath(folder, browserArr);
            reportFrom(first);
        }
        return browserArr;
    }
    for (const CatalogueResource::Programs& programs : CatalogueResource::browserPrograms()) {
        const qsizetype first = browserArr.size();
        linuxBrowser(programs, browserArr);
        reportFrom(first);
    }
    return browserArr;
}

QStringList BrowserCatalogue::applicationPaths() {
    const QString root = StandardPaths::systemRoot() == "/" ? QString() : StandardPaths::systemRoot();
    return {StandardPaths::homeDir() + "/Applications", root + "/Applications", root + "/Network/Applications",
            root + "/Developer/Applications"};
}

void BrowserCatalogue::applicationsInPath(const QString& folder, BrowserArr& browserArr) {
    static const char* const kKnownNames[] = {"Safari", "Google Chrome", "Firefox", "Opera"};
    for (const QString& entry : BrowserFiles::getAllFileWithPath(folder)) {
        const QString path = folder + "/" + entry;
        if (!isFolder(path)) continue;
        if (!entry.endsWith(".app")) {
            applicationsInPath(path, browserArr);
            continue;
        }
        const QVariantMap info = propertyListFromFile(path + "/Contents/Info.plist").toMap();
        const QString name = displayNameOf(path, info);
        for (const char* key : kKnownNames) {
            if (!name.contains(key)) continue;
            auto browser = std::make_shared<BrowerObj>();
            browser->name = name;
            browser->iconImage = iconFileOf(path, info);
            browser->rules = rulesOf(key);
            browser->isSelect = browser->rules == BrowserRules::Safari ? 0 : 1;
            browser->catalogueKey = key;
            browser->programs = {name};
            getSubArrWithKey(key, *browser);
            browserArr.append(browser);
        }
    }
}

void BrowserCatalogue::linuxBrowser(const CatalogueResource::Programs& programs, BrowserArr& browserArr) {
    if (!isFolder(BrowserFiles::pathWithUser(programs.profileFormat)) && !programFound(programs)) return;
    auto browser = std::make_shared<BrowerObj>();
    browser->name = programs.key;
    browser->iconImage = programs.icon;
    browser->rules = rulesOf(programs.rules);
    browser->isSelect = 1;
    browser->catalogueKey = programs.key;
    browser->programs = programs.programs;
    getSubArrWithKey(programs.key, *browser);
    browserArr.append(browser);
}

void BrowserCatalogue::getSubArrWithKey(const QString& key, BrowerObj& browser) {
    for (const CatalogueResource::Browser& entry : CatalogueResource::eraserHistory()) {
        if (entry.key != key) continue;
        for (const CatalogueResource::Category& category : entry.categories) {
            auto item = std::make_shared<BrowerObj>();
            item->parObj = &browser;
            item->name = category.name;
            // Where a browser moved a file, the first place that exists, else the newest.
            item->urlStr = category.pathFormats.value(0);
            for (const QString& format : category.pathFormats) {
                if (exists(BrowserFiles::pathWithUser(format))) {
                    item->urlStr = format;
                    break;
                }
            }
            item->iconImage = getIconWithKey(category.name);
            item->isSelect = browser.rules == BrowserRules::Safari ? 0 : 1;
            item->size = sizeTextOf(*item);
            browser.chrArr.append(item);
        }
    }
}

QString BrowserCatalogue::sizeTextOf(const BrowerObj& category) {
    const QString path = BrowserFiles::pathWithUser(category.urlStr);
    switch (category.parObj ? category.parObj->rules : BrowserRules::None) {
    case BrowserRules::GoogleChrome: return chromeValue(category.name, path);
    case BrowserRules::Firefox: return firefoxValue(category.name, path);
    case BrowserRules::Opera: return operaValue(category.name, path);
    case BrowserRules::Safari: return safariValue(category.name, path);
    case BrowserRules::None: break;
    }
    return {};
}

QString BrowserCatalogue::getIconWithKey(const QString& categoryName) {
    if (categoryName == "Browsing History") return "icon_history";
    if (categoryName == "Session") return "icon_autofill";
    if (categoryName == "Caches") return "icon_caches";
    if (categoryName == "Cookies") return "icon_cookies";
    if (categoryName == "Download History" || categoryName == "Downloads History") return "icon_download";
    if (categoryName == "Save Password") return "icon_password";
    if (categoryName == "Form Values") return "icon_tabform";
    return {};
}

}  // namespace velmora
