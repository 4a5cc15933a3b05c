#include "cli/DiskToolCommands.h"

#include "cli/Terminal.h"
#include "cli/VolumesCommand.h"
#include "engine/volumes/DiskTool.h"
#include "engine/volumes/FormatChoices.h"

#include <QEventLoop>
#include <QJsonObject>
#include <QLoggingCategory>
#include <functional>

namespace velmora::cli {
namespace {

constexpr const char* kFormatUsage =
    "usage: velmora-cli format [--yes] [--json] VOLUME TYPE [NAME]   (TYPE: exfat, fat32, hfs+ or ext4)";
constexpr const char* kRenameUsage = "usage: velmora-cli rename VOLUME NAME";
constexpr const char* kEjectUsage = "usage: velmora-cli eject VOLUME";

struct ActionOutcome {
    bool succeeded = false;
    QString message;
    QString volumeName;
};

// Starts the action and waits for its end.
ActionOutcome runToEnd(const std::function<void(DiskTool&)>& start) {
    QLoggingCategory::setFilterRules("default.info=false");
    DiskTool tool;
    ActionOutcome outcome;
    QEventLoop loop;
    QObject::connect(&tool, &DiskTool::finished, &loop,
                     [&](DiskTool::Action, bool succeeded, const QString& message, const QString& volumeName) {
                         outcome = {succeeded, message, volumeName};
                         loop.quit();
                     });
    start(tool);
    loop.exec();
    return outcome;
}

int report(const ActionOutcome& outcome) {
    if (outcome.succeeded) printOut(printableMessage(outcome.message));
    else printErr("velmora-cli: " + printableMessage(outcome.message));
    return outcome.succeeded ? 0 : 1;
}

// The disk tool works on the listed volume with its file system as diskType.
std::optional<VolumeObj> diskToolVolume(const QString& argument, const char* usage) {
    std::optional<VolumeObj> volume = volumeOperand({argument}, usage);
    if (volume) volume->diskType = volume->volumeType;
    return volume;
}

bool refuseStartupVolume(const VolumeObj& volume, const char* action) {
    if (volume.volumeMountPoint != "/") return false;
    printErr(QString("velmora-cli: \"%1\" is the startup volume: it cannot be %2 while the system runs from it")
                 .arg(printable(volume.volumeName), action));
    return true;
}

// The type text a TYPE argument names, ignoring case; empty for none.
QString typeTextFor(const QString& argument) {
    const QString type = argument.toLower();
    if (type == "exfat") return "ExFAT";
    if (type == "fat32" || type == "ms-dos fat32") return "MS-DOS FAT32";
    if (type == "hfs+" || type == "journaled hfs+") return "Journaled HFS+";
    if (type == "ext4") return "ext4";
    return {};
}

}  // namespace

int runFormatCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    const bool json = takeFlag(args, "--json");
    if (args.size() < 2 || args.size() > 3 || args.first().startsWith("--")) {
        printErr(kFormatUsage);
        return 2;
    }
    const std::optional<VolumeObj> volume = diskToolVolume(args[0], kFormatUsage);
    if (!volume) return 2;
    const QString name = args.value(2);
    const FormatType fixedType = formatTypeForVolume(*volume);
    QString typeText = typeTextFor(args[1]);
    if (fixedType.fixed && args[1].compare(fixedType.typeText, Qt::CaseInsensitive) == 0) typeText = fixedType.typeText;
    if (typeText.isEmpty()) {
        printErr(QString("velmora-cli: unknown file system \"%1\"").arg(printable(args[1])));
        printErr(kFormatUsage);
        return 2;
    }
    if (refuseStartupVolume(*volume, "formatted")) return 1;

    QString question;
    if (fixedType.fixed) {
        if (typeText != fixedType.typeText) {
            printErr(QString("velmora-cli: \"%1\" is a %2 volume, which is formatted as %3 only (TYPE %3)")
                         .arg(printable(volume->volumeName), printable(volume->diskType), fixedType.typeText));
            return 1;
        }
        question = formatCaseForVolume(*volume) == FormatCase::ReformatInPlace
                       ? QString("Erase ALL data on \"%1\" (%2) and reformat it in place, keeping its name and format?")
                       : QString("Erase ALL data on the NTFS volume \"%1\" (%2) and format it as MS-DOS FAT32 named NEW?");
        question = question.arg(printable(volume->volumeName), printable(volume->volRootDir));
    } else {
        const QList<FormatChoice> choices = formatChoices();
        const bool offered = std::any_of(choices.cbegin(), choices.cend(),
                                         [&](const FormatChoice& choice) { return choice.typeText == typeText; });
        if (!offered) {
            printErr(QString("velmora-cli: %1 volumes cannot be made on this system").arg(typeText));
            return 1;
        }
        question = QString("Erase ALL data on \"%1\" (%2, mounted at %3) and format it as %4 named \"%5\"?")
                       .arg(printable(volume->volumeName), printable(volume->volRootDir),
                            printable(volume->volumeMountPoint), typeText,
                            printable(name.isEmpty() || name == " " ? QString("NEW") : name));
    }
    if (!yes && !confirm(question)) {
        printErr("velmora-cli: nothing formatted");
        return 1;
    }

    const ActionOutcome outcome =
        runToEnd([&](DiskTool& tool) { tool.formatVolume(*volume, name, typeText); });
    if (json) {
        printJson(QJsonDocument(QJsonObject{{"volume", volume->volumeName},
                                            {"device", volume->volRootDir},
                                            {"type", typeText},
                                            {"succeeded", outcome.succeeded},
                                            {"name", outcome.volumeName},
                                            {"message", outcome.message}}));
        return outcome.succeeded ? 0 : 1;
    }
    return report(outcome);
}

int runRenameCommand(QStringList args) {
    if (args.size() != 2 || args.first().startsWith("--") || args[1].isEmpty()) {
        printErr(kRenameUsage);
        return 2;
    }
    const std::optional<VolumeObj> volume = diskToolVolume(args[0], kRenameUsage);
    if (!volume) return 2;
    if (refuseStartupVolume(*volume, "renamed")) return 1;
    return report(runToEnd([&](DiskTool& tool) { tool.renameVolume(*volume, args[1]); }));
}

int runEjectCommand(QStringList args) {
    if (args.size() != 1 || args.first().startsWith("--")) {
        printErr(kEjectUsage);
        return 2;
    }
    const std::optional<VolumeObj> volume = diskToolVolume(args[0], kEjectUsage);
    if (!volume) return 2;
    if (refuseStartupVolume(*volume, "ejected")) return 1;
    if (!volume->bCanEject) {
        printErr(QString("velmora-cli: \"%1\" is not on an ejectable disk").arg(printable(volume->volumeName)));
        return 1;
    }
    return report(runToEnd([&](DiskTool& tool) { tool.ejectVolume(*volume); }));
}

}  // namespace velmora::cli
