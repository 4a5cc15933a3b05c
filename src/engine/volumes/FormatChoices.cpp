#include "engine/volumes/FormatChoices.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/ShellRunners.h"

namespace velmora {
namespace {

constexpr char kHfsPlus[] = "Journaled HFS+";

// Whether the disk utility lists the file system as one it can create now.
bool diskUtilCanFormat(const QString& personality) {
    const CommandResult result = aepairExecCommand(diskUtilLine({"listFilesystems", "-plist"}));
    if (!result.succeeded()) {
        qCWarning(lcVolumes, "The disk utility does not list its file systems: %s", qPrintable(result.failure));
        return false;
    }
    const QVariantList fileSystems = propertyListFromData(result.output).toList();
    return std::any_of(fileSystems.cbegin(), fileSystems.cend(), [&](const QVariant& entry) {
        const QVariantMap fileSystem = entry.toMap();
        return fileSystem.value("Personality").toString() == personality && fileSystem.value("Formattable").toBool();
    });
}

}  // namespace

QList<FormatChoice> formatChoices() {
    QList<FormatChoice> choices{{0, "ExFAT"}, {1, "MS-DOS FAT32"}};
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        choices.append({2, kHfsPlus});
        return choices;
    }
    if (diskUtilCanFormat(kHfsPlus)) choices.append({2, kHfsPlus});
    choices.append({3, "ext4"});
    return choices;
}

FormatType formatTypeForVolume(const VolumeObj& volume) {
    FormatType type;
    type.typeText = volume.diskType.contains("ntfs", Qt::CaseInsensitive) ? QString("MS-DOS FAT32") : volume.diskType;
    type.fixed = volume.diskType.contains("apfs", Qt::CaseInsensitive) || volume.diskType.contains("ntfs", Qt::CaseInsensitive);
    return type;
}

FormatCase formatCaseForVolume(const VolumeObj& volume) {
    if (volume.diskType.contains("ntfs", Qt::CaseInsensitive)) return FormatCase::EraseNtfsAsFat32;
    if (volume.diskType.contains("apfs", Qt::CaseInsensitive)) return FormatCase::ReformatInPlace;
    return FormatCase::EraseWithChosenType;
}

}  // namespace velmora
