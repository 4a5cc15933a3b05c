#include "engine/inter/BrowserDeletion.h"

#include "engine/inter/BrowserCatalogue.h"
#include "engine/inter/BrowserFiles.h"
#include "engine/inter/ToGetDB.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"

#include <sys/stat.h>

namespace velmora::BrowserDeletion {
namespace {

using Status = CleanOutcome::Status;
using DatabaseDelete = bool (ToGetDB::*)(const QString&);

bool exists(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

bool isRegularFile(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isNonEmptyFile(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0;
}

// Collects the work on one category: what failed, whether there was anything to clean,
// and the text shown when all went well.
class Work {
public:
    Work(const CategoryTask& task, const CleanOptions& options) : m_task(task), m_options(options) {}

    // Removes one file or folder. In thorough mode a removed database takes its log,
    // journal and shared-memory files along, which hold its rows too.
    void remove(const QString& path) {
        const bool wasFile = isRegularFile(path);
        removeOne(path);
        if (m_options.thorough && wasFile)
            for (const char* companion : {"-wal", "-shm", "-journal"}) removeOne(path + companion);
    }

    void removeEntriesContaining(const QString& folder, const QString& part) {
        const QString prefix = folder.endsWith('/') ? folder : folder + "/";
        for (const QString& name : BrowserFiles::getAllFileWithPath(folder))
            if (name.contains(part)) remove(prefix + name);
    }

    // Open and delete. A database that was not there (or is an empty file) held nothing:
    // the open creates it, the failing statements are logged, and the category is skipped.
    void database(const QString& path, DatabaseDelete operation) {
        const bool existed = isNonEmptyFile(path);
        ToGetDB& db = ToGetDB::returnToGetDB();
        const bool done = (db.*operation)(path);
        if (!existed) {
            skip(QString("no database at %1").arg(displayPath(path)));
            return;
        }
        m_foundAny = true;
        if (!done) {
            m_failures.append(QString("%1: %2").arg(displayPath(path), db.lastError()));
            return;
        }
        if (m_options.thorough && !db.compactDatabase(path))
            m_failures.append(QString("%1: %2").arg(displayPath(path), db.lastError()));
    }

    // Why the category held nothing, when nothing else is found.
    void skip(const QString& reason) { m_skipped = reason; }

    CleanOutcome outcome(const QString& sizeAfterSuccess) const {
        CleanOutcome outcome{m_task.browserName, m_task.categoryName, Status::Cleaned, {}, sizeAfterSuccess, m_task.category};
        if (!m_failures.isEmpty()) {
            outcome.status = Status::Failed;
            outcome.reason = m_failures.join("; ");
            outcome.sizeAfter = currentValue();
        } else if (!m_foundAny) {
            outcome.status = Status::Skipped;
            outcome.reason = m_skipped.isEmpty() ? QString("nothing to clean") : m_skipped;
        }
        return outcome;
    }

private:
    void removeOne(const QString& path) {
        QString failure;
        if (!exists(path)) return;
        m_foundAny = true;
        if (BrowserFiles::deleteFileWithPath(path, &failure))
            qCInfo(lcInter, "---%s", qPrintable(displayPath(path)));
        else
            m_failures.append(failure);
    }

    // What the category holds now, for a failed category.
    QString currentValue() const {
        BrowerObj browser;
        browser.rules = m_task.rules;
        BrowerObj category;
        category.name = m_task.categoryName;
        category.urlStr = m_task.urlStr;
        category.parObj = &browser;
        return BrowserCatalogue::sizeTextOf(category);
    }

    const CategoryTask& m_task;
    const CleanOptions& m_options;
    QStringList m_failures;
    QString m_skipped;
    bool m_foundAny = false;  // whether the category held anything at all
};

const QString kNoBytes = "0 byte";
const QString kNoItems = "0 Item";

}  // namespace

CleanOutcome deleteGoogleWithBrower(const CategoryTask& task, const CleanOptions& options) {
    Work work(task, options);
    const QString path = BrowserFiles::pathWithUser(task.urlStr);
    const QString& category = task.categoryName;
    if (category == "Session") {
        work.removeEntriesContaining(path, "Session");
        return work.outcome(kNoBytes);
    }
    if (category == "Save Password") work.database(path, &ToGetDB::toDeletePasswordWith);
    else if (category == "Download History") work.database(path, &ToGetDB::toDeleteDownloadWith);
    else if (category == "Browsing History") work.database(path, &ToGetDB::toDeleteHistoryWith);
    else if (category == "Cookies") work.database(path, &ToGetDB::toDeleteGoogleCookiesWith);
    else {
        work.remove(path);
        return work.outcome(kNoBytes);
    }
    return work.outcome(kNoItems);
}

CleanOutcome deleteFirefoxWithBrower(const CategoryTask& task, const CleanOptions& options) {
    Work work(task, options);
    const QString profile = BrowserFiles::firefoxProfileWithPath(BrowserFiles::pathWithUser(task.urlStr));
    const QString& category = task.categoryName;
    // Without a profile no path is formed: an empty profile would name files at the root.
    if (profile.isEmpty()) {
        work.skip("no Firefox profile was found");
        return work.outcome(task.size);
    }
    if (category == "Caches") {
        work.removeEntriesContaining(profile, "cache");
        return work.outcome(kNoBytes);
    }
    if (category == "Cookies" || category == "Session") {
        work.remove(profile + (category == "Cookies" ? "/cookies.sqlite" : "/sessionstore.js"));
        return work.outcome(kNoBytes);
    }
    const QString places = profile + "/places.sqlite";
    if (category == "Browsing History") work.database(places, &ToGetDB::firefoxDeleteHistoryWith);
    else if (category == "Download History") work.database(places, &ToGetDB::firefoxDeleteDownloadWith);
    else if (category == "Save Password") work.database(places, &ToGetDB::firefoxDeletePasswordWith);
    else {
        work.skip("nothing is cleaned for this category");
        return work.outcome(task.size);
    }
    return work.outcome(kNoItems);
}

CleanOutcome deleteOpearWithBrower(const CategoryTask& task, const CleanOptions& options) {
    Work work(task, options);
    const QString path = BrowserFiles::pathWithUser(task.urlStr);
    const QString& category = task.categoryName;
    if (category == "Caches" || category == "Cookies") {
        work.remove(path);
        return work.outcome(kNoBytes);
    }
    if (category == "Session") {
        work.removeEntriesContaining(path, "Session");
        return work.outcome(kNoBytes);
    }
    if (category == "Browsing History") work.database(path, &ToGetDB::operaDeleteHistoryWith);
    else if (category == "Download History") work.database(path, &ToGetDB::operaDeleteDownloadWith);
    else if (category == "Save Password") work.database(path, &ToGetDB::operaDeletePasswordWith);
    else {
        work.skip("nothing is cleaned for this category");
        return work.outcome(task.size);
    }
    return work.outcome(kNoItems);
}

CleanOutcome deleteSafariWithBrower(const CategoryTask& task, const CleanOptions& options) {
    Work work(task, options);
    const QString path = BrowserFiles::pathWithUser(task.urlStr);
    const QString& category = task.categoryName;
    if (category == "Caches") {
        work.remove(path + "Metadata");
        work.remove(path + "com.apple.Safari");
        return work.outcome(kNoBytes);
    }
    if (category == "Browsing History") {
        work.database(path, &ToGetDB::safariDeleteHistoryWith);
        work.remove(BrowserFiles::pathWithUser("/Users/%@/Library/Safari/RecentlyClosedTabs.plist"));
        return work.outcome(kNoItems);
    }
    if (category == "Downloads History") {
        work.remove(BrowserFiles::pathWithUser("/Users/%@/Library/Safari/Downloads.plist"));
        return work.outcome(kNoItems);
    }
    if (category == "Cookies") {
        // Only the local-storage folders go, and the shown text stays as it was.
        work.remove(BrowserFiles::pathWithUser("/Users/%@/Library/Safari/LocalStorage/"));
        work.remove(BrowserFiles::pathWithUser("/Users/%@/Library/WebKit/LocalStorage/"));
        return work.outcome(task.size);
    }
    work.remove(path);
    return work.outcome(kNoBytes);
}

CleanOutcome deleteCategory(const CategoryTask& task, const CleanOptions& options) {
    switch (task.rules) {
    case BrowserRules::GoogleChrome: return deleteGoogleWithBrower(task, options);
    case BrowserRules::Firefox: return deleteFirefoxWithBrower(task, options);
    case BrowserRules::Opera: return deleteOpearWithBrower(task, options);
    case BrowserRules::Safari: return deleteSafariWithBrower(task, options);
    case BrowserRules::None: break;
    }
    return {task.browserName, task.categoryName, CleanOutcome::Status::Skipped, "no rules for this browser", task.size, task.category};
}

}  // namespace velmora::BrowserDeletion
