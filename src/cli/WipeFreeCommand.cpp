#include "cli/WipeFreeCommand.h"

#include "cli/Terminal.h"
#include "cli/VolumesCommand.h"
#include "engine/erase/EraserLevel.h"
#include "engine/volumes/FreeSpaceWipe.h"

#include <QEventLoop>
#include <QLoggingCategory>
#include <QTimer>
#include <atomic>
#include <csignal>

namespace velmora::cli {
namespace {

constexpr const char* kUsage = "usage: velmora-cli wipe-free [--yes] VOLUME   (a volume name, mount point or device node)";

std::atomic<bool> interrupted{false};

void onInterrupt(int) {
    interrupted = true;
    std::signal(SIGINT, SIG_DFL);  // a second Ctrl-C ends the program at once
}

}  // namespace

WipeOutcome runWipeUntilEnd(FreeSpaceWipe& wipe, const QString& title, const std::function<void()>& start) {
    WipeOutcome outcome;
    QEventLoop loop;
    ProgressBar bar(title);
    QObject::connect(&wipe, &FreeSpaceWipe::setRemoveProgress, &loop, [&bar](const QString& text, float percent) {
        bar.update(qMax(percent, 2.0f), text);
    });
    QObject::connect(&wipe, &FreeSpaceWipe::eraserEnded, &loop, [&](bool succeeded, const QString& text, bool) {
        outcome = {succeeded, text};
        loop.quit();
    });

    interrupted = false;
    std::signal(SIGINT, onInterrupt);
    QTimer interruptPoll;
    QObject::connect(&interruptPoll, &QTimer::timeout, &loop, [&wipe] {
        if (interrupted.exchange(false)) {
            printErr("\nvelmora-cli: cancelling...");
            wipe.cancelWipeSpaceButtonAction();
        }
    });
    interruptPoll.start(100);

    // The engine's info lines would bury the progress bar; warnings stay
    // (QT_LOGGING_RULES="default.info=true" brings them back).
    QLoggingCategory::setFilterRules("default.info=false");
    start();
    loop.exec();
    std::signal(SIGINT, SIG_DFL);
    bar.finish();
    if (outcome.succeeded && wipe.unreachableBytes() > 0)
        printErr("velmora-cli: " + FreeSpaceWipe::unreachableText(wipe.unreachableBytes()));
    return outcome;
}

int runWipeFreeCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    const std::optional<VolumeObj> volume = volumeOperand(args, kUsage);
    if (!volume) return 2;

    FreeSpaceWipe wipe;
    wipe.selectEraserType = 1;
    wipe.selectVolumeObj = *volume;
    if (wipe.wipeButtonAction() == FreeSpaceWipe::WipeStart::ShowNTFSWindow) {
        printErr(QString("velmora-cli: \"%1\" is an NTFS volume, which this system cannot write: its free space "
                         "cannot be wiped (erase-drive erases it as FAT32 instead)").arg(printable(volume->volumeName)));
        return 1;
    }
    const int passes = FreeSpaceWipe::getEraserTimes();
    const QString question = QString("Overwrite the free space of \"%1\" (%2 free, mounted at %3) with %4, %5 %6?")
                                 .arg(printable(volume->volumeName), volume->volumeFreeSize, printable(volume->volumeMountPoint),
                                      EraserLevel::displayName(passes), QString::number(passes),
                                      QString(passes > 1 ? "passes" : "pass"));
    if (!yes && !confirm(question)) {
        printErr("velmora-cli: nothing wiped");
        return 1;
    }

    if (!wipe.pinSelectedVolume()) {
        printOut("Failed  Erase Free Space:" + printable(volume->volumeName));
        printErr("velmora-cli: " + printableMessage(wipe.errorString()));
        return 1;
    }
    const WipeOutcome outcome = runWipeUntilEnd(wipe, "Wiping", [&wipe] {
        wipe.setEraserTime();
        wipe.doFreeSpaceAction();
    });
    printOut(QString("%1  Erase Free Space:%2").arg(outcome.succeeded ? "Erased" : "Failed", printable(volume->volumeName)));
    if (!outcome.succeeded) printErr("velmora-cli: " + printableMessage(outcome.text));
    // What exactly went wrong (a fill folder that is a link or not ours), as the page says it.
    if (!outcome.succeeded && !wipe.failureDetail().isEmpty()) printErr("velmora-cli: " + printableMessage(wipe.failureDetail()));
    return outcome.succeeded ? 0 : 1;
}

}  // namespace velmora::cli
