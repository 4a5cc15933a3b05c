#pragma once

#include <QVariantMap>

namespace velmora {

// The screens that query volumes, each with its own runner and output file.
enum class DiskInfoScreen {
    WipeDisk,    // execCommand
    SelectDisk,  // diskExecCommand
    RepairDisk,  // aepairExecCommand
};

// getDisjInfo: "diskutil info -plist NAME" for a BSD name, device node or volume
// name (one argument, whatever it holds), read back from the runner's output
// file. Empty when the name is missing, the utility fails or its output is not a
// dictionary.
QVariantMap getDisjInfo(const char* name, DiskInfoScreen screen);

}  // namespace velmora
