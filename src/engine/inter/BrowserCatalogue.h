#pragma once

#include "engine/inter/BrowerObj.h"
#include "engine/inter/CatalogueResource.h"

#include <QFuture>
#include <QObject>
#include <QStringList>
#include <functional>

namespace velmora {

// The installed browsers with their categories and shown values, from the
// "EraserHistory" catalogue of the current layout. macOS: every application in the
// Applications folders whose name contains a known browser name. Linux: each browser
// of the catalogue whose profile folder exists or whose program or .desktop entry is
// found.
class BrowserCatalogue : public QObject {
    Q_OBJECT

public:
    explicit BrowserCatalogue(QObject* parent = nullptr);
    ~BrowserCatalogue() override;  // waits for a scan under way

    // Rebuilds the list in the background unless a scan runs; emits scanProgress for
    // each browser found and browserArrReady with the list on the owner's thread.
    void getBrowserArr();
    bool isScanning() const { return m_scan.isRunning(); }

    // The background part, callable on its own (the CLI).
    // `found` is called with each browser's name as it is found.
    static BrowserArr scan(const std::function<void(const QString&)>& found = {});

    // macOS layout: the user, local and network Applications folders, then the local
    // developer-applications folder.
    static QStringList applicationPaths();
    // Walks one folder for browser applications (no depth limit; ".app" folders are
    // not entered) and appends an entry for each match.
    static void applicationsInPath(const QString& folder, BrowserArr& browserArr);
    // The categories of one browser from the catalogue, with icon, tick and shown value.
    static void getSubArrWithKey(const QString& key, BrowerObj& browser);
    // The shown value of one category, by its browser's rules.
    static QString sizeTextOf(const BrowerObj& category);
    // The category icon name of a category name ("icon_history"...), "" for others.
    static QString getIconWithKey(const QString& categoryName);

signals:
    void scanProgress(const QString& browserName);
    void browserArrReady(const velmora::BrowserArr& browserArr);

private:
    // Appends the browser when it is installed.
    static void linuxBrowser(const CatalogueResource::Programs& programs, BrowserArr& browserArr);

    QFuture<BrowserArr> m_scan;
};

}  // namespace velmora
