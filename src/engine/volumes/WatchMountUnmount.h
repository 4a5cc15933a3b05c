#pragma once

#include <QObject>
#include <QStringList>

namespace velmora {

class MountTableWatcher;

// Re-posts every volume that is mounted or unmounted on the application's
// default notification center as "MCVolumeMount" or "MCVolumeUnmount", with
// {"NSDevicePath": the volume's folder} attached. Screens observe these names
// and rescan their volume lists.
class WatchMountUnmount : public QObject {
    Q_OBJECT

public:
    explicit WatchMountUnmount(QObject* parent = nullptr);

private:
    void repostChanges();
    static QStringList currentVolumeFolders();

    MountTableWatcher* m_watcher;
    QStringList m_volumeFolders;
};

}  // namespace velmora
