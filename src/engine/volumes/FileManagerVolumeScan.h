#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace velmora {

class MountTableWatcher;

// The drive-copy picker's volume list: built from the file manager's view of
// the mounted local volumes (doGetAllVolume), then kept current disk by disk
// as disks appear and disappear. Records hold the mount path in volumePath.
// Lives on the user-interface thread.
class FileManagerVolumeScan : public QObject {
    Q_OBJECT

public:
    explicit FileManagerVolumeScan(QObject* parent = nullptr);

    const VolumeList& allVolumeArr() const { return m_allVolumeArr; }

    // Rebuilds the list at once. Volumes of size 0 and of type exactly "ntfs" are
    // left out; the first volume already listed ends the scan.
    void doGetAllVolume();
    // Starts following disks: each one that appears goes to apperDiskObj, each
    // one that disappears to disApperDiskObjWithName.
    void getDiskCallBack();
    // Adds the volume of a BSD name (queried in the background); volumesChanged follows.
    void apperDiskObj(const QString& bsdName);
    // Removes the first record whose volumePath is "/dev/BSDNAME".
    void disApperDiskObjWithName(const QString& bsdName);
    QVariantMap getDisjInfo(const char* name) const;

signals:
    void volumesChanged();

private:
    void diskSetChanged();
    static QStringList currentDisks();

    VolumeList m_allVolumeArr;
    MountTableWatcher* m_diskWatcher = nullptr;
    QStringList m_disks;
};

}  // namespace velmora
