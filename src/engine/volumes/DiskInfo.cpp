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
    const CommandLine query = diskUtilLine({"info", "-plist", QString::fromUtf8(name)});
    CommandResult result;
    switch (screen) {
    case DiskInfoScreen::WipeDisk: result = execCommand(query); break;
    case DiskInfoScreen::SelectDisk: result = diskExecCommand(query); break;
    case DiskInfoScreen::RepairDisk: result = aepairExecCommand(query); break;
    }
    if (!result.succeeded()) return {};
    const QVariant info = propertyListFromFile(result.outputPath);
    return info.typeId() == QMetaType::QVariantMap ? info.toMap() : QVariantMap{};
}

}  // namespace velmora
