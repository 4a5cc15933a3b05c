#pragma once

#include <QObject>

class QFileSystemWatcher;
class QSocketNotifier;

namespace velmora {

// Tells when volumes are mounted or unmounted: on Linux through the change
// events of /proc/self/mountinfo, on the macOS layout by watching the volumes
// root, where every mounted volume has its folder.
class MountTableWatcher : public QObject {
    Q_OBJECT

public:
    explicit MountTableWatcher(QObject* parent = nullptr);
    ~MountTableWatcher() override;

signals:
    void mountTableChanged();

private:
    int m_mountInfo = -1;
    QSocketNotifier* m_notifier = nullptr;
    QFileSystemWatcher* m_folderWatcher = nullptr;
};

}  // namespace velmora
