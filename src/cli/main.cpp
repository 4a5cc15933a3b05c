// velmora-cli: the application's tools for scripts and terminals, on the same
// engine and the same history as the desktop application.
#include "cli/HistoryCommand.h"
#include "cli/BrowsersCommand.h"
#include "cli/CopyCommand.h"
#include "cli/CheckUpdateCommand.h"
#include "cli/DiskToolCommands.h"
#include "cli/DupesCommand.h"
#include "cli/EraseCommand.h"
#include "cli/EraseDriveCommand.h"
#include "cli/LevelCommand.h"
#include "cli/Terminal.h"
#include "cli/UninstallCommands.h"
#include "cli/VolumesCommand.h"
#include "cli/WipeFreeCommand.h"
#include "engine/erase/EraserLevel.h"
#include "engine/platform/NativePath.h"

#include <QCoreApplication>
#include <functional>

namespace {

struct Command {
    const char* name;
    const char* usage;
    std::function<int(QStringList)> run;
};

// One line per command.
const Command kCommands[] = {
    {"erase", "erase [--yes] PATH...            erase files and folders beyond recovery", velmora::cli::runEraseCommand},
    {"level", "level [--json] [1|2|3|7|35]      show or set the erasure level", velmora::cli::runLevelCommand},
    {"dupes", "dupes [--hidden] [--system] [--json] [--delete [--yes]] DIR   find duplicate files and remove all but one copy", velmora::cli::runDupesCommand},
    {"volumes", "volumes [--json]                 list the mounted volumes", velmora::cli::runVolumesCommand},
    {"wipe-free", "wipe-free [--yes] VOLUME         overwrite the free space of a volume (name, mount point or device)", velmora::cli::runWipeFreeCommand},
    {"erase-drive", "erase-drive [--yes] VOLUME       reformat a volume and overwrite all of it", velmora::cli::runEraseDriveCommand},
    {"format", "format [--yes] [--json] VOLUME TYPE [NAME]   erase a volume with a new file system (exfat, fat32, hfs+, ext4)", velmora::cli::runFormatCommand},
    {"rename", "rename VOLUME NAME               rename a volume", velmora::cli::runRenameCommand},
    {"eject", "eject VOLUME                     eject the disk that holds a volume", velmora::cli::runEjectCommand},
    {"check-update", "check-update [--json]            compare this build with the newest release", velmora::cli::runCheckUpdateCommand},
    {"copy", "copy [--yes] [--verify] [--json] SOURCE DEST [--only PATH...]   copy a volume or folder (or the items picked under it) into a dated folder VLclone(...) on another", velmora::cli::runCopyCommand},
    {"history", "history [--type WipeFile|WipeVolume] [--json] | delete KEY | clear [--yes] | export KEY FILE   the erasure history", velmora::cli::runHistoryCommand},
    {"browsers", "browsers [--json]                list the installed browsers and what each keeps", velmora::cli::runBrowsersCommand},
    {"clean-browsers", "clean-browsers [--yes] [--thorough] [--close] [BROWSER[/CATEGORY]...]   clean browsing data (default: the ticked categories)", velmora::cli::runCleanBrowsersCommand},
    {"apps", "apps [--json] [--tab applications|widgets|plugins]   list what the uninstaller can remove", velmora::cli::runAppsCommand},
    {"related", "related [--json] APP              list an application's related files (APP: a path or a name from apps)", velmora::cli::runRelatedCommand},
    {"uninstall", "uninstall [--yes] [--include-possible] [--json] APP...   remove applications with their pre-ticked related files", velmora::cli::runUninstallCommand},
};

// On standard output when asked for with --help, on standard error after a usage error.
void printUsage(void (*print)(const QString&)) {
    print("usage: velmora-cli COMMAND [ARGS]\n       velmora-cli --help | --version\n\ncommands:");
    for (const Command& command : kCommands) print(QString("  ") + command.usage);
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName("Velmora");
    QCoreApplication::setApplicationName("Velmora Data Eraser");
    // Operands are file names, which are bytes: taken from argv as they are, not through
    // QCoreApplication::arguments(), which loses every byte that is not UTF-8.
    QStringList args;
    for (int i = 1; i < argc; ++i) args.append(velmora::pathFromNative(argv[i]));
    if (args.isEmpty() || args.first() == "--help" || args.first() == "-h") {
        printUsage(args.isEmpty() ? velmora::cli::printErr : velmora::cli::printOut);
        return args.isEmpty() ? 2 : 0;
    }
    if (args.first() == "--version") {
        velmora::cli::printOut(QString("velmora-cli (Velmora Data Eraser) %1").arg(VELMORA_VERSION));
        return 0;
    }
    velmora::EraserLevel::writeDefaultIfUnset();
    const QString name = args.takeFirst();
    for (const Command& command : kCommands)
        if (name == command.name) return command.run(args);
    velmora::cli::printErr(QString("velmora-cli: unknown command \"%1\"").arg(name));
    printUsage(velmora::cli::printErr);
    return 2;
}
