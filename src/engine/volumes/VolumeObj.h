#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

namespace velmora {

// One mounted volume as the volume scans find it. The fields marked reserved
// belong to the record but no scan fills them.
struct VolumeObj {
    QString volumeType;          // "FilesystemName" of the query, or the short type in the file-manager scan
    QString volumeName;          // the name shown (and the entry name under the volumes root)
    QString volumePath;          // device node in the disk-utility scan, mount path in the file-manager scan
    QString volumeTotalSize;     // display text of the capacity
    QString volumeFreeSize;      // display text of the free space
    qint64 volumeTotalSizeNum = 0;
    qint64 volumeFreeSizeNum = 0;
    QString volumeMountPoint;    // "/" marks the startup volume
    bool bCanEject = false;
    QString diskType;            // file-system name, filled by the disk tool's scan instead of volumeType
    QString diskId;              // reserved
    QString diskMediaName;       // reserved
    QString diskSMARTStatus;     // reserved
    QString diskContent;         // reserved
    QString diskEx;              // reserved
    QString vORpStr;             // reserved
    QString diskUUID;            // "VolumeUUID" (disk tool's scan)
    qint16 volumeNum = 0;        // reserved
    bool isInter = false;        // reserved
    bool isSolidState = false;   // reserved
    bool isWritable = false;     // reserved
    bool isDisk = false;         // reserved
    bool isOeners = false;       // reserved
    qint32 chrCount = 0;         // reserved
    QString volRootDir;          // device node: the target of disk-utility commands
    QString BusProtocol;
    QString parentWholeDisk;     // "ParentWholeDisk" (disk tool's scan)
    quint64 deviceNumber = 0;    // st_dev of the mounted file system; with the device node and UUID it pins the volume
};

using VolumeList = QList<VolumeObj>;

}  // namespace velmora
