#include "cli/EraseDriveCommand.h"

#include "cli/Terminal.h"
#include "cli/VolumesCommand.h"
#include "cli/WipeFreeCommand.h"
#include "engine/erase/EraserLevel.h"
#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/WholeDriveErase.h"

namespace velmora::cli {
namespace {

constexpr const char* kUsage = "usage: velmora-cli erase-drive [--yes] VOLUME   (a volume name, mount point or device node)";

}  // namespace

int runEraseDriveCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    const std::optional<VolumeObj> volume = volumeOperand(args, kUsage);
    if (!volume) return 2;

    FreeSpaceWipe wipe;
    wipe.selectEraserType = 2;
    wipe.selectVolumeObj = *volume;
    if (wipe.wipeButtonAction() == FreeSpaceWipe::WipeStart::ShowSystemEraser) {
        printErr(QString("velmora-cli: \"%1\" is the startup volume and cannot be erased while the system runs from it; "
                         "use \"Erase Files\" and \"Erase Free Space\" (velmora-cli erase, wipe-free) on it instead")
                     .arg(printable(volume->volumeName)));
        return 1;
    }
    const int passes = FreeSpaceWipe::getEraserTimes();
    const QString question = QString("Erase ALL data on \"%1\" (%2, %3, mounted at %4) beyond recovery with %5?")
                                 .arg(printable(volume->volumeName), printable(volume->volumePath), printable(volume->volumeType),
                                      printable(volume->volumeMountPoint),
                                      EraserLevel::displayName(passes));
    if (!yes && !confirm(question)) {
        printErr("velmora-cli: nothing erased");
        return 1;
    }

    printErr(QString("Reformatting %1 ...").arg(printable(volume->volumePath)));
    WholeDriveErase erase(&wipe);
    const WipeOutcome outcome = runWipeUntilEnd(wipe, "Erasing", [&erase] { erase.makeSureToWipeSelectVolume(); });
    printOut(QString("%1  Erase Hard Drive:%2").arg(outcome.succeeded ? "Erased" : "Failed", printable(volume->volumeName)));
    if (!outcome.succeeded) printErr("velmora-cli: " + printableMessage(outcome.text));
    return outcome.succeeded ? 0 : 1;
}

}  // namespace velmora::cli
