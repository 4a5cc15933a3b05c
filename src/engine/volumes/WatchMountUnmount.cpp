#include "engine/volumes/WatchMountUnmount.h"

#include "engine/platform/NotificationCenter.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/MountTableWatcher.h"
#include "engine/volumes/MountedVolumes.h"

#include <QVariantMap>

namespace velmora {

WatchMountUnmount::WatchMountUnmount(QObject* parent)
    : QObject(parent), m_watcher(new MountTableWatcher(this)), m_volumeFolders(currentVolumeFolders()) {
    connect(m_watcher, &MountTableWatcher::mountTableChanged, this, &WatchMountUnmount::repostChanges);
}

void WatchMountUnmount::repostChanges() {
    const QStringList folders = currentVolumeFolders();
    for (const QString& folder : m_volumeFolders)
        if (!folders.contains(folder))
            NotificationCenter::defaultCenter()->post("MCVolumeUnmount", QVariantMap{{"NSDevicePath", folder}});
    for (const QString& folder : folders)
        if (!m_volumeFolders.contains(folder))
            NotificationCenter::defaultCenter()->post("MCVolumeMount", QVariantMap{{"NSDevicePath", folder}});
    m_volumeFolders = folders;
}

QStringList WatchMountUnmount::currentVolumeFolders() {
    QStringList folders;
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        for (const QString& entry : volumesRootEntries()) folders.append(StandardPaths::volumesRoot() + "/" + entry);
    } else {
        for (const MountedDevice& device : mountedBlockDevices()) folders.append(device.mountPoint);
    }
    return folders;
}

}  // namespace velmora
