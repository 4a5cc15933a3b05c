#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QString>
#include <optional>

namespace velmora {

// A volume as its identity finds it mounted right now.
struct ResolvedVolume {
    QString deviceNode;
    QString uuid;               // empty for a file system without one
    quint64 deviceNumber = 0;   // st_dev of its folder
    QString mountPoint;         // its folder: the mount point ("/Volumes/NAME" on the macOS layout)
    QString volumeName;
    qint64 freeBytes = 0;
};

// What pins a chosen volume: its device node and file-system UUID, and the device
// number of its mount once known (the identity of a file system without a UUID).
// A name never identifies a volume: two mounted volumes may carry the same one.
class VolumeIdentity {
public:
    VolumeIdentity(const QString& deviceNode, const QString& uuid, quint64 deviceNumber, const QString& name);
    // The identity a record carries: volRootDir, diskUUID, deviceNumber (volumeName for messages).
    static VolumeIdentity of(const VolumeObj& volume);

    // The one file system mounted now from the device node that has this UUID and
    // device number. Empty, with *error naming the volume, when the device is gone
    // or not mounted, holds another file system, or two mounted file systems claim
    // the device (a second mount that only names it as its source).
    std::optional<ResolvedVolume> resolve(QString* error) const;
    // After a reformat the device holds a new file system with a new UUID and device
    // number: the one file system mounted from the same device node now, whatever
    // its UUID, with the same checks otherwise.
    std::optional<ResolvedVolume> resolveReformatted(QString* error) const;

private:
    std::optional<ResolvedVolume> find(bool sameFileSystem, QString* error) const;
    QString describe() const;

    QString m_deviceNode;
    QString m_uuid;
    quint64 m_deviceNumber;
    QString m_name;
};

// Writes a resolved volume's identity and place into the record: volRootDir,
// volumePath, diskUUID, deviceNumber and volumeMountPoint.
void applyResolvedVolume(const ResolvedVolume& resolved, VolumeObj& volume);

// Pins a chosen record at confirmation: its listed device node and UUID (for a
// file system without a UUID, the device number of its listed mount point) must
// resolve to one mounted volume, whose identity and place are written into the
// record. False, with *error naming the volume, when they do not.
bool pinVolume(VolumeObj& volume, QString* error);

}  // namespace velmora
