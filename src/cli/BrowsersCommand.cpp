#include "cli/BrowsersCommand.h"

#include "cli/Terminal.h"
#include "engine/inter/BrowserCatalogue.h"
#include "engine/inter/BrowserCleanJob.h"
#include "engine/inter/BrowserTicks.h"
#include "engine/inter/FullDiskAccessAuthorizer.h"
#include "engine/inter/RunningBrowsers.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QThread>

namespace velmora::cli {
namespace {

constexpr const char* kBrowsersUsage = "usage: velmora-cli browsers [--json]";
constexpr const char* kCleanUsage = "usage: velmora-cli clean-browsers [--yes] [--thorough] [--close] [BROWSER[/CATEGORY]...]";

QString tickText(int state) { return state == 1 ? "[x]" : state == 2 ? "[-]" : "[ ]"; }

// A warning when a profile folder cannot be read: its categories then show nothing.
void warnAboutAccess() {
    FullDiskAccessAuthorizer& access = FullDiskAccessAuthorizer::sharedInstance();
    if (access.needsPanel())
        printErr(QString("velmora-cli: cannot read %1: %2").arg(printable(access.unreadableFolder()), printableMessage(access.unreadableReason())));
}

BrowerObjPtr findByName(const BrowserArr& list, const QString& name) {
    for (const BrowerObjPtr& entry : list)
        if (entry->name == name) return entry;
    return nullptr;
}

// Ticks what the operands name and nothing else; false (with the message printed) for
// a name that is not listed.
bool tickOperands(const BrowserArr& browserArr, const QStringList& operands) {
    for (const BrowerObjPtr& browser : browserArr) {
        browser->isSelect = 0;
        for (const BrowerObjPtr& category : browser->chrArr) category->isSelect = 0;
    }
    for (const QString& operand : operands) {
        const qsizetype slash = operand.indexOf('/');
        const BrowerObjPtr browser = findByName(browserArr, operand.left(slash));
        if (!browser) {
            printErr(QString("velmora-cli: no browser \"%1\" is installed (see velmora-cli browsers)").arg(printable(operand.left(slash))));
            return false;
        }
        if (slash < 0) {
            browser->isSelect = 0;
            BrowserTicks::selectBrower(*browser);
            continue;
        }
        const BrowerObjPtr category = findByName(browser->chrArr, operand.mid(slash + 1));
        if (!category) {
            printErr(QString("velmora-cli: %1 has no category \"%2\"").arg(printable(browser->name), printable(operand.mid(slash + 1))));
            return false;
        }
        category->isSelect = 1;
        BrowserTicks::updateBrowserState(*browser);
    }
    return true;
}

int tickedCategories(const BrowserArr& browserArr) {
    int count = 0;
    for (const BrowerObjPtr& browser : browserArr)
        for (const BrowerObjPtr& category : browser->chrArr) count += browser->isSelect != 0 && category->isSelect == 1;
    return count;
}

QString statusText(CleanOutcome::Status status) {
    switch (status) {
    case CleanOutcome::Status::Cleaned: return "Cleaned";
    case CleanOutcome::Status::Skipped: return "Skipped";
    case CleanOutcome::Status::Failed: return "Failed";
    }
    return {};
}

}  // namespace

int runBrowsersCommand(QStringList args) {
    const bool json = takeFlag(args, "--json");
    if (!args.isEmpty()) {
        printErr(kBrowsersUsage);
        return 2;
    }
    warnAboutAccess();
    const BrowserArr browserArr = BrowserCatalogue::scan();
    if (json) {
        QJsonArray browsers;
        for (const BrowerObjPtr& browser : browserArr) {
            QJsonArray categories;
            for (const BrowerObjPtr& category : browser->chrArr)
                categories.append(QJsonObject{{"name", category->name}, {"isSelect", category->isSelect}, {"size", category->size}});
            browsers.append(QJsonObject{{"name", browser->name}, {"isSelect", browser->isSelect}, {"categories", categories}});
        }
        printJson(QJsonDocument(browsers));
        return 0;
    }
    if (browserArr.isEmpty()) printOut("No browser is installed.");
    for (const BrowerObjPtr& browser : browserArr) {
        printOut(QString("%1 %2").arg(tickText(browser->isSelect), printable(browser->name)));
        for (const BrowerObjPtr& category : browser->chrArr)
            printOut(QString("    %1 %2 %3").arg(tickText(category->isSelect), printable(category->name).leftJustified(20), category->size));
    }
    return 0;
}

int runCleanBrowsersCommand(QStringList args) {
    const bool yes = takeFlag(args, "--yes");
    const bool thorough = takeFlag(args, "--thorough");
    const bool close = takeFlag(args, "--close");
    for (const QString& arg : args) {
        if (arg.startsWith("--")) {
            printErr(kCleanUsage);
            return 2;
        }
    }
    warnAboutAccess();
    const BrowserArr browserArr = BrowserCatalogue::scan();
    if (!args.isEmpty() && !tickOperands(browserArr, args)) return 2;
    if (tickedCategories(browserArr) == 0) {
        printOut("Nothing to clean: no browser category is ticked.");
        return 0;
    }

    const QList<RunningBrowser> running = RunningBrowsers::checkOpenBrower(browserArr);
    if (!running.isEmpty()) {
        if (!close) {
            printErr(QString("velmora-cli: %1 is running; close it or pass --close").arg(printable(RunningBrowsers::joinedNames(running))));
            return 1;
        }
        QString failure;
        if (!RunningBrowsers::closeBrowsers(running, &failure)) {
            printErr("velmora-cli: " + printableMessage(failure));
            return 1;
        }
        // The browser writes its last state on the way out; give it the second it takes.
        QThread::sleep(1);
    }

    QStringList names;
    for (const BrowerObjPtr& browser : browserArr)
        if (browser->isSelect != 0) names.append(printable(browser->name));
    const QString question = QString("Clean %1 categor%2 of %3%4?")
                                 .arg(tickedCategories(browserArr)).arg(tickedCategories(browserArr) == 1 ? "y" : "ies")
                                 .arg(names.join(", "), thorough ? " thoroughly" : "");
    if (!yes && !confirm(question)) {
        printErr("velmora-cli: nothing was cleaned");
        return 1;
    }

    const QList<CleanOutcome> outcomes = BrowserCleanJob::cleanNow(browserArr, {thorough});
    QStringList failed;
    for (const CleanOutcome& outcome : outcomes) {
        const QString what = printable(outcome.browserName) + " / " + printable(outcome.categoryName);
        QString line = QString("%1 %2").arg(statusText(outcome.status).leftJustified(8), what);
        if (!outcome.sizeAfter.isEmpty()) line += "  (" + outcome.sizeAfter + ")";
        if (!outcome.reason.isEmpty()) line += ": " + printableMessage(outcome.reason);
        printOut(line);
        if (outcome.status == CleanOutcome::Status::Failed) failed.append(what);
    }
    if (!failed.isEmpty()) {
        printErr("velmora-cli: not cleaned: " + failed.join(", "));
        return 1;
    }
    return 0;
}

}  // namespace velmora::cli
