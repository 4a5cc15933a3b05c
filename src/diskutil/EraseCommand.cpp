#include "diskutil/Commands.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/FileSystemFormat.h"
#include "diskutil/Mounting.h"
#include "diskutil/Program.h"
#include "diskutil/SystemDevices.h"
#include "diskutil/Volume.h"

#include <iostream>

namespace velmora::diskutil {

namespace {

// Progress lines as the macOS disk utility prints them; the application watches for
// "Mounting disk". Each line is flushed so that it arrives on its own.
void progress(const std::string& line) {
    std::cout << line << std::endl;
}

void run(const std::vector<std::string>& command, const std::string& failure) {
    const ProgramResult result = runProgram(command);
    if (result.exitCode != 0) throw DiskUtilError(failure + ": " + result.reason());
}

// Creates a fresh file system on the volume and mounts it again, under the folder that
// held the old mount point (or /media/<user>) with the volume's new name.
void erase(const Volume& volume, const FileSystemFormat& format, const std::string& label) {
    const std::string& makeProgram = format.makeCommand.front();
    if (findProgram(makeProgram).empty()) {
        throw DiskUtilError(format.name + " is not available on this system: " + makeProgram + " is not installed");
    }
    const BlockDevice& device = volume.device;
    const bool partitioned = !partitionsOf(device.kernelName).empty()
        || (!volume.hasFileSystem() && !volume.fileSystem.partitionTable.empty());
    if (device.isWholeDisk && partitioned) {
        throw DiskUtilError(device.node + " is a partitioned disk: erase one of its volumes");
    }
    const std::string newName = label.empty() ? volume.name() : label;

    progress("Started erase on " + device.kernelName + " " + volume.name());
    const RemountPlan plan = planRemount(volume);
    progress("Unmounting disk");
    unmountDevice(device);
    progress("Erasing");
    // Old signatures go first, so that blkid cannot find two file systems afterwards.
    run({"wipefs", "--all", "--quiet", device.node}, "Could not wipe " + device.node);
    run(makeFileSystemCommand(format, label, device.node), "Could not create " + format.name + " on " + device.node);
    progress("Initialized " + device.node + " as " + format.name);
    progress("Mounting disk");
    mountAgain(plan, device, format, newName);
    progress("Finished erase on " + device.kernelName + " " + newName);
}

}  // namespace

void eraseVolumeCommand(const std::vector<std::string>& args) {
    if (args.size() != 3) throw DiskUtilError("Usage: velmora-diskutil eraseVolume FORMAT NAME DEVICE");
    const FileSystemFormat* format = formatNamed(args[0]);
    if (!format) throw DiskUtilError(args[0] + " does not appear to be a valid file system format");
    const Volume volume = findVolume(args[2]);
    refuseSystemDevice(volume.device);
    erase(volume, *format, labelFor(*format, args[1]));
}

// Erases the volume in place, keeping its file system and its name.
void reformatCommand(const std::vector<std::string>& args) {
    if (args.size() != 1) throw DiskUtilError("Usage: velmora-diskutil reformat DEVICE");
    const Volume volume = findVolume(args[0]);
    refuseSystemDevice(volume.device);
    if (!volume.format) {
        throw DiskUtilError("Cannot reformat " + volume.device.node + ": "
                            + (volume.hasFileSystem() ? "unsupported file system " + volume.fileSystem.type
                                                      : std::string("it holds no file system")));
    }
    erase(volume, *volume.format, volume.fileSystem.label);
}

}  // namespace velmora::diskutil
