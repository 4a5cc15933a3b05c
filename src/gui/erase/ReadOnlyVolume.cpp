#include "gui/erase/ReadOnlyVolume.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

namespace velmora::ReadOnlyVolume {
namespace {

// The kernel's removable flag of the volume's disk; a partition inherits it
// from the disk that holds it.
bool isRemovableDevice(const QString& device) {
    if (!device.startsWith("/dev/")) return false;
    const QString node = QFileInfo("/sys/class/block/" + QFileInfo(device).fileName()).canonicalFilePath();
    if (node.isEmpty()) return false;
    for (const QString& folder : {node, QFileInfo(node).path()}) {
        QFile flag(folder + "/removable");
        if (flag.open(QIODevice::ReadOnly)) return flag.readAll().trimmed() == "1";
    }
    return false;
}

}  // namespace

bool isRefusedFileSystemType(const QString& type) {
    return type.contains("ntfs") || type.contains("NTFS") || type.toLower().contains("lifs");
}

bool contains(const QString& path) {
    // Qt's storage lookup takes text only: a path with a name that is not text is looked
    // up by the folder above that name, on the same volume unless that name is a mount point.
    QString lookedUp = path;
    while (hasNonTextBytes(lookedUp) && lookedUp.lastIndexOf('/') > 0) lookedUp.truncate(lookedUp.lastIndexOf('/'));
    const QStorageInfo volume(hasNonTextBytes(lookedUp) ? QString("/") : lookedUp);
    const QString type = QString::fromUtf8(volume.fileSystemType());
    qCInfo(lcErase, "Result:%i Volume: %s, Removable:%i, W:%i, Unmountable:%i, Desc:%s, type:%s", volume.isValid(),
          qUtf8Printable(volume.rootPath()), isRemovableDevice(QString::fromUtf8(volume.device())),
          volume.isValid() && !volume.isReadOnly(), volume.isValid() && !volume.isRoot(),
          qUtf8Printable(volume.displayName()), qUtf8Printable(type));
    return isRefusedFileSystemType(type);
}

}  // namespace velmora::ReadOnlyVolume
