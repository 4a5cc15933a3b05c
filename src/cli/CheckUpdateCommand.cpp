#include "cli/CheckUpdateCommand.h"

#include "cli/Terminal.h"
#include "engine/update/KxLinkUrl.h"
#include "engine/update/UpdateCheck.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velmora::cli {

int runCheckUpdateCommand(QStringList args) {
    const bool json = takeFlag(args, "--json");
    if (!args.isEmpty()) {
        printErr("usage: velmora-cli check-update [--json]");
        return 2;
    }
    const QString address = KxLinkUrl::GetUrl("IniURL");
    const UpdateList list = UpdateCheck::fetchUpdateList();
    const qint64 localBuild = UpdateCheck::localVersionCheck();
    if (!list.fetched) {
        if (json)
            printJson(QJsonDocument(QJsonObject{{"fetched", false}, {"localBuild", localBuild},
                                                {"updateList", address}, {"failure", list.failure}}));
        else
            printErr(QString("velmora-cli: the update list could not be read from \"%1\": %2")
                         .arg(printable(address), printableMessage(list.failure)));
        return 1;
    }

    const qint64 remoteBuild = UpdateCheck::integerValue(list.dictionary.value("VersionCheck"));
    const bool newer = UpdateCheck::isNewer(list.dictionary);
    const QString version = list.dictionary.value("Version").toString();
    const QStringList notes = newer ? UpdateCheck::numberedNotes(UpdateCheck::notesOf(list.dictionary)) : QStringList();
    if (json) {
        printJson(QJsonDocument(QJsonObject{{"fetched", true},
                                            {"localBuild", localBuild},
                                            {"remoteBuild", remoteBuild},
                                            {"updateAvailable", newer},
                                            {"version", version},
                                            {"notes", QJsonArray::fromStringList(notes)},
                                            {"updateURL", KxLinkUrl::GetUrl("UpdateURL")}}));
        return 0;
    }
    printOut(QString("Local build:  %1").arg(localBuild));
    printOut(QString("Remote build: %1").arg(remoteBuild));
    if (!newer) {
        printOut("Velmora Data Eraser is up to date.");
        return 0;
    }
    printOut(QString("Velmora Data Eraser %1 has been released.").arg(printable(version)));
    printOut("What's new:");
    for (const QString& note : notes) printOut("  " + printableMessage(note));
    printOut(QString("Download: %1").arg(printable(KxLinkUrl::GetUrl("UpdateURL"))));
    return 0;
}

}  // namespace velmora::cli
