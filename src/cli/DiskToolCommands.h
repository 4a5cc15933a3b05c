#pragma once

#include <QStringList>

namespace velmora::cli {

// velmora-cli format [--yes] [--json] VOLUME TYPE [NAME]: erases the volume with a new
// file system (TYPE: ExFAT, MS-DOS FAT32, Journaled HFS+, ext4, or exfat, fat32, hfs+).
int runFormatCommand(QStringList args);
// velmora-cli rename VOLUME NAME
int runRenameCommand(QStringList args);
// velmora-cli eject VOLUME: ejects the disk that holds the volume.
int runEjectCommand(QStringList args);

}  // namespace velmora::cli
