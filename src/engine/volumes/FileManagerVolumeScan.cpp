#include "engine/volumes/FileManagerVolumeScan.h"

#include "engine/platform/LogCategories.h"
#include "engine/volumes/CommUti.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/DiskMedium.h"
#include "engine/volumes/MountTableWatcher.h"
#include "engine/volumes/MountedVolumes.h"

#include <QFileInfo>
#include <QFutureWatcher>
#include <QStorageInfo>
#include <QtConcurrent>
#include <optional>

namespace velmora {
namespace {

// The name the file manager shows for a volume: its label, else its folder's name.
QString displayNameOf(const QStorageInfo& storage) {
    if (!storage.name().isEmpty()) return storage.name();
    const QString folderName = QFileInfo(storage.rootPath()).fileName();
    return folderName.isEmpty() ? storage.rootPath() : folderName;
}

// The background part of apperDiskObj: the record of a disk that appeared, when
// its volume is mounted.
std::optional<VolumeObj> appearedVolume(const QString& bsdName) {
    const QVariantMap info = getDisjInfo(bsdName.toUtf8().constData(), DiskInfoScreen::SelectDisk);
    if (info.isEmpty()) return std::nullopt;
    const QString name = info.value("VolumeName").toString();
    if (bsdNameForVolumePath(volumeDirectory(name, info.value("MountPoint").toString())).isEmpty()) return std::nullopt;
    qCInfo(lcVolumes, "---=====%s", qPrintable(info.value("DeviceNode").toString()));
    if (!info.contains("VolumeName")) return std::nullopt;
    VolumeObj volume;
    volume.volumeName = name;
    volume.volumeTotalSizeNum = info.value("TotalSize").toLongLong();
    volume.volumeTotalSize = CommUti::longlongConvertVolSpace(volume.volumeTotalSizeNum);
    volume.volumeType = info.value("FilesystemName").toString();
    qint64 freeSpace = info.value("FreeSpace").toLongLong();
    if (volume.volumeType == "APFS" && freeSpace == 0) freeSpace = info.value("APFSContainerFree").toLongLong();
    volume.volumeFreeSizeNum = freeSpace;
    volume.volumeFreeSize = CommUti::longlongConvertVolSpace(freeSpace);
    volume.volumePath = info.value("DeviceNode").toString();
    volume.volumeMountPoint = info.value("MountPoint").toString();
    return volume;
}

}  // namespace

FileManagerVolumeScan::FileManagerVolumeScan(QObject* parent) : QObject(parent) {}

void FileManagerVolumeScan::doGetAllVolume() {
    m_allVolumeArr.clear();
    for (const MountedDevice& device : mountedBlockDevices()) {
        const QString& path = device.mountPoint;
        const QStorageInfo storage(path);
        if (!storage.isValid()) continue;
        const bool removable = isRemovableMedium(path);
        const bool writable = !storage.isReadOnly();
        const bool unmountable = path != "/";
        const QString type = device.fileSystemType;
        const qint64 size = storage.bytesTotal();
        const qint64 freeSize = storage.bytesAvailable();
        const QString name = displayNameOf(storage);
        qCInfo(lcVolumes,
               "path=%s\nname=%s\nremovable=%d\nwritable=%d\nunmountable=%d\ndescription=%s\ntype=%s, size=%lld\n,freeSize=%lld\n\n",
               qPrintable(path), qPrintable(name), removable, writable, unmountable, qPrintable(type), qPrintable(type),
               size, freeSize);
        if (size == 0 || type == "ntfs") continue;
        for (const VolumeObj& volume : m_allVolumeArr) {
            if (volume.volumeName == name && volume.volumePath == path) {
                qCInfo(lcVolumes, "%s : return disk : %s", Q_FUNC_INFO, qPrintable(name));
                return;
            }
        }
        VolumeObj volume;
        volume.volumeName = name;
        volume.volumeTotalSize = CommUti::longlongConvertVolSpace(size);
        volume.volumeFreeSize = CommUti::longlongConvertVolSpace(freeSize);
        volume.volumeType = type;
        volume.volumePath = path;
        volume.volumeMountPoint = path;
        volume.volumeTotalSizeNum = size;
        volume.volumeFreeSizeNum = freeSize;
        m_allVolumeArr.append(volume);
    }
}

void FileManagerVolumeScan::getDiskCallBack() {
    if (m_diskWatcher) return;
    m_disks = currentDisks();
    m_diskWatcher = new MountTableWatcher(this);
    connect(m_diskWatcher, &MountTableWatcher::mountTableChanged, this, &FileManagerVolumeScan::diskSetChanged);
}

void FileManagerVolumeScan::apperDiskObj(const QString& bsdName) {
    for (const VolumeObj& volume : m_allVolumeArr)
        if (volume.volumePath == "/dev/" + bsdName) return;
    auto* watcher = new QFutureWatcher<std::optional<VolumeObj>>(this);
    connect(watcher, &QFutureWatcher<std::optional<VolumeObj>>::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (!watcher->result()) return;
        m_allVolumeArr.append(*watcher->result());
        emit volumesChanged();
    });
    watcher->setFuture(QtConcurrent::run(appearedVolume, bsdName));
}

void FileManagerVolumeScan::disApperDiskObjWithName(const QString& bsdName) {
    for (qsizetype i = 0; i < m_allVolumeArr.size(); ++i) {
        if (m_allVolumeArr[i].volumePath == "/dev/" + bsdName) {
            m_allVolumeArr.removeAt(i);
            emit volumesChanged();
            return;
        }
    }
}

QVariantMap FileManagerVolumeScan::getDisjInfo(const char* name) const {
    return velmora::getDisjInfo(name, DiskInfoScreen::SelectDisk);
}

// Disks are followed through their mounts: a disk appears with its volume and
// disappears when that is unmounted.
void FileManagerVolumeScan::diskSetChanged() {
    const QStringList disks = currentDisks();
    for (const QString& disk : m_disks)
        if (!disks.contains(disk)) disApperDiskObjWithName(disk);
    for (const QString& disk : disks)
        if (!m_disks.contains(disk)) apperDiskObj(disk);
    m_disks = disks;
}

QStringList FileManagerVolumeScan::currentDisks() {
    QStringList disks;
    for (const MountedDevice& device : mountedBlockDevices()) disks.append(device.bsdName);
    return disks;
}

}  // namespace velmora
