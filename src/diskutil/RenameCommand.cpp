#include "diskutil/Commands.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/FileSystemFormat.h"
#include "diskutil/Mounting.h"
#include "diskutil/Program.h"
#include "diskutil/SystemDevices.h"
#include "diskutil/Volume.h"

#include <iostream>

namespace velmora::diskutil {

// Relabels the volume. A mounted volume is unmounted for it (a label written under a
// mounted driver may be overwritten by it) and mounted again under its new name.
void renameCommand(const std::vector<std::string>& args) {
    if (args.size() != 2) throw DiskUtilError("Usage: velmora-diskutil rename TARGET NAME");
    const Volume volume = findVolume(args[0]);
    refuseSystemDevice(volume.device);
    if (!volume.format) {
        throw DiskUtilError("Cannot rename " + volume.device.node + ": "
                            + (volume.hasFileSystem() ? "unsupported file system " + volume.fileSystem.type
                                                      : std::string("it holds no file system")));
    }
    const FileSystemFormat& format = *volume.format;
    if (format.labelProgram.empty() || findProgram(format.labelProgram).empty()) {
        throw DiskUtilError("Cannot rename a " + format.name + " volume: no labelling tool is installed");
    }
    const std::string label = labelFor(format, args[1]);
    if (label.empty()) throw DiskUtilError("Invalid volume name: \"" + args[1] + "\"");

    const RemountPlan plan = planRemount(volume);
    const bool wasMounted = !volume.mountPoint.empty();
    unmountDevice(volume.device);
    const ProgramResult result = runProgram({format.labelProgram, volume.device.node, label});
    if (result.exitCode != 0) {
        if (wasMounted) mountAgain(plan, volume.device, format, plan.oldName);
        throw DiskUtilError("Could not rename " + volume.device.node + ": " + result.reason());
    }
    if (wasMounted) mountAgain(plan, volume.device, format, label);
    std::cout << "Volume on " << volume.device.kernelName << " renamed to " << label << std::endl;
}

}  // namespace velmora::diskutil
