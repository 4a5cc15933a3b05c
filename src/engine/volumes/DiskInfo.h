#pragma once

#include <QVariantMap>

namespace velmora {

// The screens that query volumes, each with its own copy of the query.
enum class DiskInfoScreen {
    WipeDisk,    // "diskutil info -plist %s", 64 bytes, execCommand
    SelectDisk,  // "diskutil info -plist %s", 64 bytes, diskExecCommand
    RepairDisk,  // "diskutil info -plist \"%s\"", 128 bytes, aepairExecCommand
};

// getDisjInfo: "diskutil info -plist NAME" for a BSD name, device node or volume
// name, read back from the runner's output file. Empty when the name is missing or
// the output is not a dictionary.
QVariantMap getDisjInfo(const char* name, DiskInfoScreen screen);

}  // namespace velmora
