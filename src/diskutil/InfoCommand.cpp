#include "diskutil/Commands.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/PropertyList.h"
#include "diskutil/Volume.h"

#include <iostream>

namespace velmora::diskutil {

namespace {

// The keys of the macOS disk utility's "info -plist" that the application reads,
// plus a few that describe the disk.
PropertyList describe(const Volume& volume) {
    const BlockDevice& device = volume.device;
    PropertyList info = PropertyList::dictionary();
    info.setString("DeviceIdentifier", device.kernelName);
    info.setString("DeviceNode", device.node);
    info.setBool("WholeDisk", device.isWholeDisk);
    info.setString("ParentWholeDisk", device.wholeDisk);
    info.setInteger("Size", device.sizeBytes);
    info.setInteger("TotalSize", device.sizeBytes);
    info.setString("Content", volume.content());
    info.setString("MountPoint", volume.mountPoint);
    info.setBool("Ejectable", device.ejectable);
    info.setBool("Removable", device.removable);
    info.setString("BusProtocol", device.busProtocol);
    info.setBool("SolidState", device.solidState);
    if (volume.hasFileSystem()) {
        info.setString("VolumeName", volume.name());
        info.setString("VolumeUUID", volume.fileSystem.uuid);
        info.setString("FilesystemName", volume.fileSystemName());
        info.setString("FilesystemType", volume.fileSystemType());
        info.setInteger("FreeSpace", volume.freeBytes());
    }
    return info;
}

}  // namespace

void infoCommand(const std::vector<std::string>& args) {
    if (args.size() != 2 || args[0] != "-plist") throw DiskUtilError("Usage: velmora-diskutil info -plist TARGET");
    std::cout << describe(findVolume(args[1])).toXml();
}

}  // namespace velmora::diskutil
