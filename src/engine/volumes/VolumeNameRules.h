#pragma once

#include <QString>

namespace velmora {

// A name as a file system will hold it, or why it cannot hold it.
struct VolumeNameCheck {
    QString name;   // the name to pass to the disk utility
    QString error;  // empty when the name is accepted

    bool accepted() const { return error.isEmpty(); }
};

// The name a rename gives a volume of this file system (a diskType or type text:
// "MS-DOS FAT32", "ExFAT", "ext4", "Journaled HFS+", "NTFS", "APFS"). A FAT volume
// takes the name upper-cased and cut to its first 11 characters; every other
// file system takes it unchanged or refuses it: exFAT up to 15 UTF-16 units,
// ext4 up to 16 bytes, HFS+ and APFS up to 255 UTF-16 units, NTFS up to 128. An
// empty name, a name of only " ", and characters a FAT label cannot hold are refused.
VolumeNameCheck nameForRename(const QString& fileSystem, const QString& name);

// The name a format with this type text gives a volume: "NEW" for "", " " or an
// empty name, then the same rules as a rename.
VolumeNameCheck nameForFormat(const QString& typeText, const QString& name);

}  // namespace velmora
