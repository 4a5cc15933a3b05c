#include "engine/volumes/DiskInfo.h"

#include "engine/platform/PropertyList.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/ShellRunners.h"

namespace velmora {

QVariantMap getDisjInfo(const char* name, DiskInfoScreen screen) {
    if (!name) return {};
    QString outputPath;
    switch (screen) {
    case DiskInfoScreen::WipeDisk:
        outputPath = execCommand(diskUtilLine(64, "diskutil info -plist %s", name).constData());
        break;
    case DiskInfoScreen::SelectDisk:
        outputPath = diskExecCommand(diskUtilLine(64, "diskutil info -plist %s", name).constData());
        break;
    case DiskInfoScreen::RepairDisk:
        outputPath = aepairExecCommand(diskUtilLine(128, "diskutil info -plist \"%s\"", name).constData());
        break;
    }
    const QVariant info = propertyListFromFile(outputPath);
    return info.typeId() == QMetaType::QVariantMap ? info.toMap() : QVariantMap{};
}

}  // namespace velmora
