#include "engine/volumes/DiskInfo.h"

#include "engine/platform/PropertyList.h"
#include "engine/volumes/DiskUtilLine.h"
#include "engine/volumes/ShellRunners.h"

namespace velmora {

QVariantMap getDisjInfo(const char* name, DiskInfoScreen screen) {
    if (!name) return {};
    const CommandLine query = diskUtilLine({"info", "-plist", QString::fromUtf8(name)});
    CommandResult result;
    switch (screen) {
    case DiskInfoScreen::WipeDisk: result = execCommand(query); break;
    case DiskInfoScreen::SelectDisk: result = diskExecCommand(query); break;
    case DiskInfoScreen::RepairDisk: result = aepairExecCommand(query); break;
    }
    if (!result.succeeded()) return {};
    // From the result, not the file: the runner's next run may replace that at once.
    const QVariant info = propertyListFromData(result.output);
    return info.typeId() == QMetaType::QVariantMap ? info.toMap() : QVariantMap{};
}

}  // namespace velmora
