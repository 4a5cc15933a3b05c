#include "engine/volumes/MountedVolumes.h"

#include "engine/platform/StandardPaths.h"

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
// Mount table fields escape blanks, tabs, newlines and backslashes as octal.
QString unescapeMountField(const QByteArray& field) {
    QByteArray text;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            bool ok = false;
            const int code = field.mid(i + 1, 3).toInt(&ok, 8);
            if (ok) {
                text.append(char(code));
                i += 3;
                continue;
            }
        }
        text.append(field[i]);
    }
    return QFile::decodeName(text);
}

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
    for (const QByteArray& line : table.readAll().split('\n')) {
        // id parent major:minor root mount-point options [optional...] - type source super-options
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype separator = fields.indexOf("-");
        if (separator < 6 || separator + 2 >= fields.size()) continue;
        const QString node = unescapeMountField(fields[separator + 2]);
        if (!node.startsWith("/dev/") || fields[3] != "/" || seen.contains(node)) continue;
        seen.insert(node);
        const bool readOnly = fields[5] == "ro" || fields[5].startsWith("ro,");
        devices.append({node, kernelNameOf(fields[2], node), unescapeMountField(fields[4]),
                        QString::fromLatin1(fields[separator + 1]), readOnly});
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
