#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace velmora {

// A file system mounted from a block device.
struct MountedDevice {
    QString deviceNode;      // "/dev/sdb1"
    QString bsdName;         // the kernel's name for the device ("sdb1", "dm-0", "disk2s1")
    QString mountPoint;
    QString fileSystemType;  // the mount table's type ("ext4", "fuseblk", "apfs")
    bool readOnly = false;
};

// Every file system mounted from a block device, one entry per device (its
// first mount), in mount order: /proc/self/mountinfo on Linux, the kernel's
// mount list on macOS.
QList<MountedDevice> mountedBlockDevices();

// The names under the volumes root (the macOS layout's "/Volumes/").
QStringList volumesRootEntries();

// The BSD name of the disk whose volume is mounted exactly at this path; empty
// when nothing is mounted there (what disk arbitration answers for a volume path).
QString bsdNameForVolumePath(const QString& path);

// The folder where a volume's files are: "/Volumes/NAME" on the macOS layout,
// the mount point on Linux.
QString volumeDirectory(const QString& volumeName, const QString& mountPoint);

}  // namespace velmora
