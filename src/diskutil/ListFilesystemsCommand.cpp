#include "diskutil/Commands.h"

#include "diskutil/DiskUtilError.h"
#include "diskutil/FileSystemFormat.h"
#include "diskutil/PropertyList.h"

#include <iostream>

namespace velmora::diskutil {

// The file systems the tool knows, as the macOS disk utility's "listFilesystems -plist"
// lists them (Personality: what eraseVolume takes; LocalizedName: the label to show),
// with Formattable telling whether this system can create one now and the name limits.
void listFilesystemsCommand(const std::vector<std::string>& args) {
    if (args.size() != 1 || args[0] != "-plist") throw DiskUtilError("Usage: velmora-diskutil listFilesystems -plist");
    PropertyList fileSystems = PropertyList::array();
    for (const FileSystemFormat& format : knownFormats()) {
        PropertyList entry = PropertyList::dictionary();
        entry.setString("Personality", format.name);
        entry.setString("LocalizedName", format.name);
        entry.setString("FilesystemType", format.type);
        entry.setBool("Formattable", canMake(format));
        entry.setInteger("MaximumNameLength", format.maxLabelLength);
        entry.setString("NameLengthUnit", format.labelInUtf16Units ? "UTF-16" : "bytes");
        entry.setBool("UpperCaseName", format.upperCaseLabel);
        fileSystems.appendChild(std::move(entry));
    }
    std::cout << fileSystems.toXml();
}

}  // namespace velmora::diskutil
