#include "cli/VolumesCommand.h"

#include "cli/Terminal.h"
#include "engine/volumes/VolumeScanner.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace velmora::cli {
namespace {

constexpr const char* kUsage = "usage: velmora-cli volumes [--json]";

QJsonObject toJson(const VolumeObj& volume) {
    return {{"name", volume.volumeName},
            {"device", volume.volumePath},
            {"mountPoint", volume.volumeMountPoint},
            {"fileSystem", volume.volumeType},
            {"totalBytes", volume.volumeTotalSizeNum},
            {"freeBytes", volume.volumeFreeSizeNum}};
}

// A path as the mount table writes it: absolute, clean, links resolved when possible.
QString normalisedPath(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(QFileInfo(path).absoluteFilePath()) : canonical;
}

}  // namespace

int runVolumesCommand(QStringList args) {
    const bool json = takeFlag(args, "--json");
    if (!args.isEmpty()) {
        printErr(kUsage);
        return 2;
    }
    const VolumeList volumes = VolumeScanner().scanAllVolumes();
    if (json) {
        QJsonArray list;
        for (const VolumeObj& volume : volumes) list.append(toJson(volume));
        printJson(QJsonDocument(list));
        return 0;
    }
    printOut(QString("%1 %2 %3 %4 %5 %6")
                 .arg("NAME", -16).arg("DEVICE", -16).arg("FILE SYSTEM", -14)
                 .arg("TOTAL BYTES", 16).arg("FREE BYTES", 16).arg("MOUNT POINT"));
    for (const VolumeObj& volume : volumes) {
        // One pass of arg(): a name holding "%2" is not taken for a place of the next value.
        printOut(QString("%1 %2 %3 %4 %5 %6")
                     .arg(printable(volume.volumeName).leftJustified(16), printable(volume.volumePath).leftJustified(16),
                          printable(volume.volumeType).leftJustified(14),
                          QString::number(volume.volumeTotalSizeNum).rightJustified(16),
                          QString::number(volume.volumeFreeSizeNum).rightJustified(16),
                          printable(volume.volumeMountPoint)));
    }
    return 0;
}

// The listed volume an argument names: its mount point, its device node or its
// name. Empty, with *error set, when none or several match.
static std::optional<VolumeObj> volumeForArgument(const QString& argument, QString* error) {
    const VolumeList volumes = VolumeScanner().scanAllVolumes();
    if (argument.startsWith('/') || argument.startsWith('.')) {
        const QString path = normalisedPath(argument);
        for (const VolumeObj& volume : volumes)
            if (path == volume.volumeMountPoint || path == normalisedPath(volume.volumePath)) return volume;
        *error = QString("\"%1\" is neither the mount point nor the device of a listed volume (see velmora-cli volumes)").arg(argument);
        return std::nullopt;
    }
    VolumeList named;
    for (const VolumeObj& volume : volumes)
        if (volume.volumeName == argument) named.append(volume);
    if (named.size() == 1) return named.first();
    *error = named.isEmpty()
                 ? QString("no volume is named \"%1\" (see velmora-cli volumes)").arg(argument)
                 : QString("%1 volumes are named \"%2\": give its mount point or device instead").arg(named.size()).arg(argument);
    return std::nullopt;
}

std::optional<VolumeObj> volumeOperand(const QStringList& args, const char* usage) {
    if (args.size() != 1 || args.first().startsWith("--")) {
        printErr(usage);
        return std::nullopt;
    }
    QString error;
    std::optional<VolumeObj> volume = volumeForArgument(args.first(), &error);
    if (!volume) printErr("velmora-cli: " + printable(error));
    return volume;
}

}  // namespace velmora::cli
