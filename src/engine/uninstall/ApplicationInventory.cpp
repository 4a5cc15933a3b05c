#include "engine/uninstall/ApplicationInventory.h"

#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/AppWalkers.h"
#include "engine/uninstall/PackageManagerApps.h"
#include "engine/uninstall/RelatedAppFilesScanner.h"
#include "engine/volumes/CommUti.h"

#include <QMetaObject>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

namespace velmora {
namespace {

void walkTab(int tab, const QString& root, const AppWalkers::Found& found) {
    if (tab == ApplicationInventory::Applications) AppWalkers::applicationsInPath(root, found);
    else if (tab == ApplicationInventory::Widgets) AppWalkers::widgetsInPath(root, found);
    else AppWalkers::pluginsInPath(root, found);
}

void scanTabInto(int tab, const AppWalkers::Found& found) {
    const QStringList roots = ApplicationInventory::searchPaths().at(tab);
    for (const QString& root : roots) walkTab(tab, root, found);
    if (tab != ApplicationInventory::Applications || StandardPaths::layout() != StandardPaths::Layout::Linux) return;
    for (const AMAppItemPtr& item : PackageManagerApps::flatpakApplications()) found(item);
    for (const AMAppItemPtr& item : PackageManagerApps::snapApplications()) found(item);
}

}  // namespace

ApplicationInventory::ApplicationInventory(QObject* parent) : QObject(parent) {}

ApplicationInventory::~ApplicationInventory() {
    // The background jobs post to this object: wait until none is left.
    while (m_running.load(std::memory_order_relaxed) > 0) QThread::msleep(5);
}

QList<QStringList> ApplicationInventory::searchPaths() {
    return {CommUti::applicationPaths(), CommUti::widgetPaths(), CommUti::pluginPaths()};
}

AMAppItemList ApplicationInventory::scanTab(int tab) {
    AMAppItemList items;
    scanTabInto(tab, [&items](const AMAppItemPtr& item) { items.append(item); });
    return items;
}

void ApplicationInventory::begimScanFile() { scanTabs({Applications, Widgets, Plugins}); }

void ApplicationInventory::refButtonAction(int tab) { scanTabs({tab}); }

void ApplicationInventory::scanTabs(const QList<int>& tabs) {
    if (m_isScan.exchange(true)) return;
    for (int tab : tabs) m_found[tab].clear();
    emit scanStarted();
    m_running.fetch_add(1);
    (void)QtConcurrent::run([this, tabs] {
        for (int tab : tabs) {
            scanTabInto(tab, [this, tab](const AMAppItemPtr& item) {
                QMetaObject::invokeMethod(this, [this, tab, item] {
                    m_found[tab].append(item);
                    emit itemFound(tab, item);
                }, Qt::QueuedConnection);
            });
        }
        QMetaObject::invokeMethod(this, [this] {
            m_isScan.store(false);
            emit scanFinished();
        }, Qt::QueuedConnection);
        m_running.fetch_sub(1);
    });
}

void ApplicationInventory::requestSize(const AMAppItemPtr& item) {
    if (item->bIsGetSize) return;
    item->bIsGetSize = true;
    const QString path = item->path;
    m_running.fetch_add(1);
    (void)QtConcurrent::run([this, item, path] {
        const QString size = RelatedAppFilesScanner::getFileSizeItem(path);
        QMetaObject::invokeMethod(this, [this, item, size] {
            item->size = size;
            emit sizeReady(item);
        }, Qt::QueuedConnection);
        m_running.fetch_sub(1);
    });
}

void ApplicationInventory::removeItems(int tab, const AMAppItemList& removed) {
    m_found[tab].removeIf([&removed](const AMAppItemPtr& item) { return removed.contains(item); });
}

}  // namespace velmora
