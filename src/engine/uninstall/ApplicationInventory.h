#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <QObject>
#include <QStringList>
#include <atomic>

namespace velmora {

// The uninstaller's inventory: what each tab lists, found by walking the tab's search
// roots (and, on the Linux layout, asking Flatpak and Snap). Scans run on the background
// queue; the found lists are changed and every signal is sent on the object's thread.
class ApplicationInventory : public QObject {
    Q_OBJECT

public:
    enum Tab { Applications = 0, Widgets = 1, Plugins = 2 };
    static constexpr int kTabCount = 3;

    explicit ApplicationInventory(QObject* parent = nullptr);
    ~ApplicationInventory() override;  // waits for a running scan or size

    // The tabs' roots in tab order (applicationPaths, widgetPaths, pluginPaths).
    static QList<QStringList> searchPaths();
    // One tab's records found now, on the calling thread (what the CLI uses).
    static AMAppItemList scanTab(int tab);

    // Empties the found lists and scans all three tabs. Ignored while a scan runs.
    void begimScanFile();
    // Empties one tab's found list and scans its roots again. Ignored while a scan runs.
    void refButtonAction(int tab);
    bool isScan() const { return m_isScan.load(std::memory_order_relaxed); }

    const AMAppItemList& items(int tab) const { return m_found[tab]; }
    // Every application found (tab 0), for the rule that a leftover another installed
    // application also matches is never pre-ticked.
    const AMAppItemList& allApplications() const { return m_found[Applications]; }

    // Lazy size: starts computing the record's size once (bIsGetSize); sizeReady follows.
    void requestSize(const AMAppItemPtr& item);

    // The removal's clean-up: the records leave the tab's found list (by identity, so a
    // bundle listed twice keeps its other row).
    void removeItems(int tab, const AMAppItemList& removed);

signals:
    void scanStarted();
    // An application reaches the list as soon as it is found; widgets and plug-ins too.
    void itemFound(int tab, const velmora::AMAppItemPtr& item);
    void scanFinished();
    void sizeReady(const velmora::AMAppItemPtr& item);

private:
    void scanTabs(const QList<int>& tabs);

    AMAppItemList m_found[kTabCount];
    std::atomic<bool> m_isScan{false};
    std::atomic<int> m_running{0};  // background jobs that still post to this object
};

}  // namespace velmora
