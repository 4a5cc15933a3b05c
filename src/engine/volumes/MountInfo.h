#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace velmora {

// One line of /proc/self/mountinfo, its escaped fields decoded.
struct MountInfoEntry {
    QByteArray deviceNumber;  // "8:17"; "0:N" for a file system without a block device
    QString root;             // folder of the file system that is mounted ("/" unless a bind mount)
    QString mountPoint;
    QString fileSystemType;
    QString source;           // "/dev/sdb1", or whatever the file system calls its source
    bool readOnly = false;
};

// The entries of mountinfo text, in mount order; lines without the fields up to the
// source are skipped.
QList<MountInfoEntry> parseMountInfo(const QByteArray& text);

}  // namespace velmora
