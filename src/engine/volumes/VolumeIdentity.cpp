#include "engine/volumes/VolumeIdentity.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/DiskInfo.h"
#include "engine/volumes/MountInfo.h"
#include "engine/volumes/MountedVolumes.h"

#include <QFile>
#include <QStringList>
#include <sys/stat.h>
#ifndef Q_OS_MACOS
#include <sys/sysmacros.h>
#endif

namespace velmora {
namespace {

// The file system mounted from a device node, as the mount table has it.
struct DeviceMount {
    QString mountPoint;
    quint64 deviceNumber = 0;
};

#ifndef Q_OS_MACOS
quint64 deviceNumberOf(const QByteArray& majorMinor) {
    const QList<QByteArray> parts = majorMinor.split(':');
    if (parts.size() != 2) return 0;
    return makedev(parts[0].toUInt(), parts[1].toUInt());
}

// Every mount of a whole file system (not a sub-folder bind) that comes from the
// device: by device number for the kernel's own mounts, by source name for FUSE
// mounts, which have a device number of their own. One entry per file system,
// its first mount point.
QList<DeviceMount> mountsOfDevice(const QString& deviceNode) {
    struct stat node;
    const bool isBlockDevice = ::stat(nativePath(deviceNode).constData(), &node) == 0 && S_ISBLK(node.st_mode);
    QFile table("/proc/self/mountinfo");
    if (!table.open(QIODevice::ReadOnly)) return {};
    QList<DeviceMount> mounts;
    for (const MountInfoEntry& entry : parseMountInfo(table.readAll())) {
        const quint64 deviceNumber = deviceNumberOf(entry.deviceNumber);
        const bool fromDevice = entry.source == deviceNode || (isBlockDevice && deviceNumber == node.st_rdev);
        if (!fromDevice || entry.root != "/") continue;
        const bool known = std::any_of(mounts.cbegin(), mounts.cend(),
                                       [&](const DeviceMount& mount) { return mount.deviceNumber == deviceNumber; });
        if (!known) mounts.append({entry.mountPoint, deviceNumber});
    }
    return mounts;
}
#endif

}  // namespace

VolumeIdentity::VolumeIdentity(const QString& deviceNode, const QString& uuid, quint64 deviceNumber, const QString& name)
    : m_deviceNode(deviceNode), m_uuid(uuid), m_deviceNumber(deviceNumber), m_name(name) {}

VolumeIdentity VolumeIdentity::of(const VolumeObj& volume) {
    return {volume.volRootDir, volume.diskUUID, volume.deviceNumber, volume.volumeName};
}

std::optional<ResolvedVolume> VolumeIdentity::resolve(QString* error) const { return find(true, error); }

std::optional<ResolvedVolume> VolumeIdentity::resolveReformatted(QString* error) const { return find(false, error); }

QString VolumeIdentity::describe() const { return QString("the volume \"%1\" (%2)").arg(m_name, m_deviceNode); }

std::optional<ResolvedVolume> VolumeIdentity::find(bool sameFileSystem, QString* error) const {
    if (!m_deviceNode.startsWith("/dev/")) {
        *error = describe() + " has no device node to identify it";
        return std::nullopt;
    }
    const QVariantMap info = getDisjInfo(m_deviceNode.toUtf8().constData(), DiskInfoScreen::WipeDisk);
    if (info.value("DeviceNode").toString() != m_deviceNode || !info.contains("VolumeName")) {
        *error = describe() + " cannot be found: its device holds no volume now";
        return std::nullopt;
    }
    ResolvedVolume found;
    found.deviceNode = m_deviceNode;
    found.uuid = info.value("VolumeUUID").toString();
    found.volumeName = info.value("VolumeName").toString();
    found.freeBytes = info.value("FreeSpace").toLongLong();
    if (sameFileSystem && !m_uuid.isEmpty() && found.uuid != m_uuid) {
        *error = describe() + QString(" is not the chosen volume any more: its device holds another file system "
                                      "(UUID %1, chosen %2)").arg(found.uuid.isEmpty() ? "none" : found.uuid, m_uuid);
        return std::nullopt;
    }

    quint64 mountedDevice = 0;
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        // The disk utility speaks for the mount table there.
        const QString mountPoint = info.value("MountPoint").toString();
        if (!mountPoint.isEmpty()) found.mountPoint = volumeDirectory(found.volumeName, mountPoint);
    } else {
#ifndef Q_OS_MACOS
        const QList<DeviceMount> mounts = mountsOfDevice(m_deviceNode);
        if (mounts.size() > 1) {
            QStringList places;
            for (const DeviceMount& mount : mounts) places.append(mount.mountPoint);
            *error = QString("two mounted volumes claim the device of %1 (at %2): it cannot be told which one is chosen")
                         .arg(describe(), places.join(", "));
            return std::nullopt;
        }
        if (!mounts.isEmpty()) {
            found.mountPoint = mounts.first().mountPoint;
            mountedDevice = mounts.first().deviceNumber;
        }
#endif
    }
    if (found.mountPoint.isEmpty()) {
        *error = describe() + " is not mounted";
        return std::nullopt;
    }
    struct stat folder;
    if (::lstat(nativePath(found.mountPoint).constData(), &folder) != 0 || !S_ISDIR(folder.st_mode) ||
        (mountedDevice != 0 && folder.st_dev != mountedDevice)) {
        *error = QString("%1 is not mounted at %2 any more").arg(describe(), found.mountPoint);
        return std::nullopt;
    }
    found.deviceNumber = folder.st_dev;
    if (sameFileSystem && m_deviceNumber != 0 && found.deviceNumber != m_deviceNumber) {
        *error = describe() + " is not the chosen volume any more: another file system is mounted from its device";
        return std::nullopt;
    }
    return found;
}

void applyResolvedVolume(const ResolvedVolume& resolved, VolumeObj& volume) {
    volume.volRootDir = resolved.deviceNode;
    volume.volumePath = resolved.deviceNode;
    volume.diskUUID = resolved.uuid;
    volume.deviceNumber = resolved.deviceNumber;
    volume.volumeMountPoint = resolved.mountPoint;
}

bool pinVolume(VolumeObj& volume, QString* error) {
    quint64 deviceNumber = volume.deviceNumber;
    if (volume.diskUUID.isEmpty() && deviceNumber == 0) {
        struct stat listed;
        if (::lstat(nativePath(volume.volumeMountPoint).constData(), &listed) == 0 && S_ISDIR(listed.st_mode))
            deviceNumber = listed.st_dev;
    }
    const VolumeIdentity identity(volume.volRootDir, volume.diskUUID, deviceNumber, volume.volumeName);
    const std::optional<ResolvedVolume> resolved = identity.resolve(error);
    if (!resolved) return false;
    applyResolvedVolume(*resolved, volume);
    return true;
}

}  // namespace velmora
