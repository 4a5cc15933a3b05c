#include "cli/LevelCommand.h"

#include "cli/Terminal.h"
#include "engine/erase/EraserLevel.h"

#include <QJsonObject>

namespace velmora::cli {

int runLevelCommand(QStringList args) {
    const bool json = takeFlag(args, "--json");
    if (args.size() > 1) {
        printErr("usage: velmora-cli level [--json] [1|2|3|7|35]");
        return 2;
    }
    if (args.size() == 1) {
        const int level = args.first().toInt();
        if (level != 1 && level != 2 && level != 3 && level != 7 && level != 35) {
            printErr(QString("velmora-cli: unknown erasure level \"%1\" (choose 1, 2, 3, 7 or 35)").arg(args.first()));
            return 2;
        }
        EraserLevel::store(level);
    }
    const int level = EraserLevel::clamped();
    if (json)
        printJson(QJsonDocument(QJsonObject{{"EraserTimes", level}, {"name", EraserLevel::displayName(level)}}));
    else
        printOut(QString("%1 (%2 pass%3)").arg(EraserLevel::displayName(level)).arg(level).arg(level > 1 ? "es" : ""));
    return 0;
}

}  // namespace velmora::cli
