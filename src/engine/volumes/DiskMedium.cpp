#include "engine/volumes/DiskMedium.h"

#include "engine/platform/LogCategories.h"
#include "engine/volumes/DiskInfo.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <sys/stat.h>
#ifndef Q_OS_MACOS
#include <sys/sysmacros.h>
#endif

namespace velmora {
namespace {

#ifndef Q_OS_MACOS
// The sysfs folder of the whole disk under the volume that holds the path
// (a partition's parent), or empty when the volume is not on a block device.
QString wholeDiskFolderOf(const QString& path) {
    const QByteArray deviceNode = QStorageInfo(path).device();
    struct stat device;
    if (!deviceNode.startsWith("/dev/") || ::stat(deviceNode.constData(), &device) != 0 || !S_ISBLK(device.st_mode)) return {};
    QString folder = QFileInfo(QString("/sys/dev/block/%1:%2").arg(major(device.st_rdev)).arg(minor(device.st_rdev))).canonicalFilePath();
    if (QFileInfo::exists(folder + "/partition")) folder = QFileInfo(folder).absolutePath();
    return folder;
}

QByteArray sysfsValue(const QString& file) {
    QFile value(file);
    return value.open(QIODevice::ReadOnly) ? value.readAll().trimmed() : QByteArray();
}
#else
QVariantMap infoOfVolumeAt(const QString& path) {
    const QByteArray deviceNode = QStorageInfo(path).device();
    if (!deviceNode.startsWith("/dev/")) return {};
    return getDisjInfo(deviceNode.mid(5).constData(), DiskInfoScreen::WipeDisk);
}
#endif

}  // namespace

bool isSolidState(const QString& path) {
#ifdef Q_OS_MACOS
    return infoOfVolumeAt(path).value("SolidState").toBool();
#else
    const QString disk = wholeDiskFolderOf(path);
    if (disk.isEmpty()) {
        qCWarning(lcVolumes, "Error while getting parent service entry");
        return false;
    }
    return sysfsValue(disk + "/queue/rotational") == "0";
#endif
}

bool isRemovableMedium(const QString& path) {
#ifdef Q_OS_MACOS
    return infoOfVolumeAt(path).value("Removable").toBool();
#else
    const QString disk = wholeDiskFolderOf(path);
    return !disk.isEmpty() && sysfsValue(disk + "/removable") == "1";
#endif
}

}  // namespace velmora
