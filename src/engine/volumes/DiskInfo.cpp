#include "engine/volumes/DiskInfo.h"

#include "engine/platform/PropertyList.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/ShellRunners.h"

#include <QMutex>

namespace velmora {

QVariantMap getDisjInfo(const char* name, DiskInfoScreen screen) {
    if (!name) return {};
    // Each screen's runner writes one fixed file: a scan in the background and a
    // query on the user-interface thread must not read each other's output.
    static QMutex outputFileLocks[3];
    QMutexLocker lock(&outputFileLocks[int(screen)]);
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
