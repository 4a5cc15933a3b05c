#include "engine/volumes/MountedVolumes.h"

#include "engine/platform/StandardPaths.h"
#include "engine/volumes/MountInfo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#ifdef Q_OS_MACOS
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/ucred.h>
#endif

namespace velmora {
namespace {

#ifndef Q_OS_MACOS
// The kernel name behind a device number ("8:17" -> "sdb1"), else the node's file name.
QString kernelNameOf(const QByteArray& majorMinor, const QString& deviceNode) {
    const QString target = QFileInfo("/sys/dev/block/" + QString::fromLatin1(majorMinor)).canonicalFilePath();
    if (!target.isEmpty() && !majorMinor.startsWith("0:")) return QFileInfo(target).fileName();
    return QFileInfo(deviceNode).fileName();
}
#endif

}  // namespace

QList<MountedDevice> mountedBlockDevices() {
    QList<MountedDevice> devices;
    QSet<QString> seen;
#ifdef Q_OS_MACOS
    struct statfs* mounts = nullptr;
    const int count = getmntinfo(&mounts, MNT_NOWAIT);
    for (int i = 0; i < count; ++i) {
        const QString node = QFile::decodeName(mounts[i].f_mntfromname);
        if (!node.startsWith("/dev/") || seen.contains(node)) continue;
        seen.insert(node);
        devices.append({node, node.mid(5), QFile::decodeName(mounts[i].f_mntonname),
                        QString::fromLatin1(mounts[i].f_fstypename), (mounts[i].f_flags & MNT_RDONLY) != 0});
    }
#else
    QFile table("/proc/self/mountinfo");
    if (!table.open(QIODevice::ReadOnly)) return devices;
    for (const MountInfoEntry& entry : parseMountInfo(table.readAll())) {
        if (!entry.source.startsWith("/dev/") || entry.root != "/" || seen.contains(entry.source)) continue;
        seen.insert(entry.source);
        devices.append({entry.source, kernelNameOf(entry.deviceNumber, entry.source), entry.mountPoint,
                        entry.fileSystemType, entry.readOnly});
    }
#endif
    return devices;
}

QStringList volumesRootEntries() {
    return QDir(StandardPaths::volumesRoot()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QString bsdNameForVolumePath(const QString& path) {
    const QString folder = QDir::cleanPath(path);
    for (const MountedDevice& device : mountedBlockDevices())
        if (device.mountPoint == folder) return device.bsdName;
    return {};
}

QString volumeDirectory(const QString& volumeName, const QString& mountPoint) {
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) return StandardPaths::volumesRoot() + "/" + volumeName;
    return mountPoint;
}

}  // namespace velmora
