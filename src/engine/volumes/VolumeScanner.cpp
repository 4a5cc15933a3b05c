#include "engine/volumes/VolumeScanner.h"

#include "engine/platform/StandardPaths.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/MountedVolumes.h"

#include <QFutureWatcher>
#include <QtConcurrent>

namespace velmora {

VolumeScanner::VolumeScanner(Screen screen, QObject* parent) : QObject(parent), m_screen(screen) {}

VolumeScanner::~VolumeScanner() { m_scan.waitForFinished(); }

void VolumeScanner::getallVolumes() {
    if (m_isScanV) return;
    m_isScanV = true;
    m_allVolumeArr.clear();
    emit scanBegan();
    auto* watcher = new QFutureWatcher<VolumeList>(this);
    connect(watcher, &QFutureWatcher<VolumeList>::finished, this, [this, watcher] {
        m_allVolumeArr = watcher->result();
        watcher->deleteLater();
        m_isScanV = false;
        emit scanEnded();
    });
    m_scan = QtConcurrent::run([this] { return scanAllVolumes(); });
    watcher->setFuture(m_scan);
}

VolumeList VolumeScanner::scanAllVolumes() const {
    VolumeList list;
    for (const QString& bsdName : bsdNamesOfMountedVolumes())
        if (!bsdName.isEmpty() && bsdName != " ") getVolumeAllObjWithVolumeName(bsdName, list);
    return list;
}

QStringList VolumeScanner::bsdNamesOfMountedVolumes() {
    QStringList names;
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        for (const QString& entry : volumesRootEntries()) {
            if (entry == "(null)" || entry == ".DS_Store") continue;
            names.append(bsdNameForVolumePath(StandardPaths::volumesRoot() + "/" + entry));
        }
    } else {
        for (const MountedDevice& device : mountedBlockDevices()) names.append(device.bsdName);
    }
    return names;
}

void VolumeScanner::getVolumeAllObjWithVolumeName(const QString& bsdName, VolumeList& list) const {
    // The argument is a BSD name and the field a volume name, so this rarely matches.
    for (const VolumeObj& volume : list)
        if (volume.volumeName == bsdName) return;
    const QVariantMap info = getDisjInfo(bsdName.toUtf8().constData());
    const QString name = info.value("VolumeName").toString();
    const QString deviceNode = info.value("DeviceNode").toString();
    for (const VolumeObj& volume : list)
        if (volume.volumeName == name && volume.volumePath == deviceNode) return;
    if (info.isEmpty() || !info.contains("VolumeName") || name == "EFI") return;

    VolumeObj volume;
    volume.volumeName = name;
    volume.volumeTotalSizeNum = info.value("TotalSize").toLongLong();
    volume.volumeTotalSize = byteToSizeWithByte(volume.volumeTotalSizeNum);
    const QString fileSystemName = info.value("FilesystemName").toString();
    qint64 freeSpace = info.value("FreeSpace").toLongLong();
    // An APFS volume reports its own free space as 0: the container's is what is free.
    if (fileSystemName == "APFS" && freeSpace == 0) freeSpace = info.value("APFSContainerFree").toLongLong();
    volume.volumeFreeSizeNum = freeSpace;
    volume.volumeFreeSize = byteToSizeWithByte(freeSpace);
    volume.volRootDir = deviceNode;
    volume.volumePath = deviceNode;
    volume.volumeMountPoint = info.value("MountPoint").toString();
    volume.BusProtocol = info.value("BusProtocol").toString();
    volume.bCanEject = info.value("Ejectable").toBool();
    // With the device node, the UUID identifies the volume the user sees listed.
    volume.diskUUID = info.value("VolumeUUID").toString();
    if (m_screen == Screen::Erase) {
        volume.volumeType = fileSystemName;
    } else {
        volume.diskType = fileSystemName;
        volume.parentWholeDisk = info.value("ParentWholeDisk").toString();
    }
    list.append(volume);
}

QVariantMap VolumeScanner::getDisjInfo(const char* name) const {
    return velmora::getDisjInfo(name, m_screen == Screen::Erase ? DiskInfoScreen::WipeDisk : DiskInfoScreen::RepairDisk);
}

QString VolumeScanner::byteToSizeWithByte(qint64 bytes) {
    const double value = float(bytes);
    if (bytes < 1000) return QString::asprintf("%.0f byte", value);
    if (bytes < 1000000) return QString::asprintf("%.2f KB", value / 1000.0);
    if (bytes < 1000000000) return QString::asprintf("%.2f MB", value / 1000000.0);
    if (bytes < 1000000000000) return QString::asprintf("%.2f GB", value / 1000000000.0);
    return QString::asprintf("%.2f TB", value / 1000000000000.0);
}

}  // namespace velmora
