#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QList>
#include <QString>

namespace velmora {

// A file system the disk tool offers for a format: the identifier its item in the
// type list carries and the text shown and passed to the disk utility.
struct FormatChoice {
    int identifier = 0;  // 0 "ExFAT", 1 "MS-DOS FAT32", 2 "Journaled HFS+", 3 "ext4"
    QString typeText;
};

// The type list of the format confirmation, in identifier order: "ExFAT" and
// "MS-DOS FAT32" always; "Journaled HFS+" only where the disk utility can make it
// (always on macOS; on Linux when it lists the format as formattable, that is
// when mkfs.hfsplus is installed); "ext4" on Linux. Asks the disk utility
// ("listFilesystems -plist") on Linux, so it runs a short child process.
QList<FormatChoice> formatChoices();

// What the format confirmation shows for a volume (its diskType): the type text,
// "MS-DOS FAT32" for an NTFS volume; fixed (not choosable) for APFS and NTFS.
struct FormatType {
    QString typeText;
    bool fixed = false;
};
FormatType formatTypeForVolume(const VolumeObj& volume);

// The three ways a volume is formatted, chosen by its current diskType.
enum class FormatCase {
    EraseWithChosenType,  // neither APFS nor NTFS: eraseVolume TYPE NAME DEVICE
    ReformatInPlace,      // APFS: reformat DEVICE, name and type kept
    EraseNtfsAsFat32,     // NTFS: eraseVolume "MS-DOS FAT32" NEW DEVICE
};
FormatCase formatCaseForVolume(const VolumeObj& volume);

}  // namespace velmora
