#include "diskutil/Commands.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/MountTable.h"
#include "diskutil/PropertyList.h"
#include "diskutil/Volume.h"

#include <iostream>

namespace velmora::diskutil {

namespace {

struct DiskWithPartitions {
    Volume disk;
    std::vector<Volume> partitions;
};

std::vector<DiskWithPartitions> scanDisks() {
    const std::vector<MountEntry> table = readMountTable();
    std::vector<DiskWithPartitions> disks;
    for (const BlockDevice& device : listBlockDevices()) {
        Volume volume = describeVolume(device, table);
        if (device.isWholeDisk) disks.push_back({volume, {}});
        else if (!disks.empty()) disks.back().partitions.push_back(volume);
    }
    return disks;
}

// One disk or partition as the entries of "AllDisksAndPartitions" describe it.
PropertyList describeEntry(const Volume& volume) {
    PropertyList entry = PropertyList::dictionary();
    entry.setString("DeviceIdentifier", volume.device.kernelName);
    entry.setInteger("Size", volume.device.sizeBytes);
    entry.setString("Content", volume.content());
    if (volume.hasFileSystem()) {
        entry.setString("VolumeName", volume.name());
        entry.setString("VolumeUUID", volume.fileSystem.uuid);
    }
    if (!volume.mountPoint.empty()) entry.setString("MountPoint", volume.mountPoint);
    return entry;
}

}  // namespace

// The layout of the macOS disk utility's "list -plist": every identifier, the disks with
// their partitions, the names of the mounted volumes, and the whole disks.
void listCommand(const std::vector<std::string>& args) {
    if (args.size() != 1 || args[0] != "-plist") throw DiskUtilError("Usage: velmora-diskutil list -plist");

    PropertyList allDisks = PropertyList::array();
    PropertyList allDisksAndPartitions = PropertyList::array();
    PropertyList volumesFromDisks = PropertyList::array();
    PropertyList wholeDisks = PropertyList::array();
    for (const DiskWithPartitions& disk : scanDisks()) {
        wholeDisks.appendString(disk.disk.device.kernelName);
        allDisks.appendString(disk.disk.device.kernelName);
        PropertyList partitions = PropertyList::array();
        for (const Volume& partition : disk.partitions) {
            allDisks.appendString(partition.device.kernelName);
            partitions.appendChild(describeEntry(partition));
        }
        PropertyList entry = describeEntry(disk.disk);
        entry.setChild("Partitions", std::move(partitions));
        allDisksAndPartitions.appendChild(std::move(entry));

        if (!disk.disk.mountPoint.empty()) volumesFromDisks.appendString(disk.disk.name());
        for (const Volume& partition : disk.partitions) {
            if (!partition.mountPoint.empty()) volumesFromDisks.appendString(partition.name());
        }
    }

    PropertyList list = PropertyList::dictionary();
    list.setChild("AllDisks", std::move(allDisks));
    list.setChild("AllDisksAndPartitions", std::move(allDisksAndPartitions));
    list.setChild("VolumesFromDisks", std::move(volumesFromDisks));
    list.setChild("WholeDisks", std::move(wholeDisks));
    std::cout << list.toXml();
}

}  // namespace velmora::diskutil
