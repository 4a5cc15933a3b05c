#include "engine/uninstall/UninstallSession.h"

#include "engine/erase/AsMDeleteExecutor.h"
#include "engine/platform/NativePath.h"
#include "engine/uninstall/PackageManagerApps.h"
#include "engine/uninstall/RunningApplications.h"
#include "engine/volumes/CommUti.h"

#include <QMetaObject>
#include <QThread>
#include <QtConcurrent/QtConcurrentRun>
#include <sys/stat.h>

namespace velmora {
namespace {

bool isManaged(const AMAppItem& item) { return item.kind == AppKind::Flatpak || item.kind == AppKind::Snap; }

bool exists(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0;
}

bool isInside(const QString& path, const QString& folder) { return path == folder || path.startsWith(folder + "/"); }

}  // namespace

UninstallSession::UninstallSession(QList<AMAppItemList> allRelaltedFiles, QObject* parent)
    : QObject(parent), m_allRelaltedFiles(std::move(allRelaltedFiles)) {}

UninstallSession::~UninstallSession() {
    m_deleteExecutor.reset();  // waits for its batch
    while (m_managerJobs.load(std::memory_order_relaxed) > 0) QThread::msleep(5);
}

void UninstallSession::tickPreTicked(bool includePossible) {
    m_selectDeletePath.clear();
    for (const AMAppItemList& group : m_allRelaltedFiles)
        for (qsizetype i = 0; i < group.size(); ++i) {
            const AMAppItem& item = *group[i];
            if (i == 0 || item.preTicked || (includePossible && item.isPossibleMatch && item.sharedWith.isEmpty()))
                m_selectDeletePath.append(group[i]);
        }
}

bool UninstallSession::isTicked(const AMAppItemPtr& item) const { return m_selectDeletePath.contains(item); }

UninstallSession::TickState UninstallSession::groupState(int group) const {
    const AMAppItemList& records = m_allRelaltedFiles.at(group);
    const qsizetype ticked = std::count_if(records.begin(), records.end(), [this](const AMAppItemPtr& item) { return isTicked(item); });
    if (records.isEmpty() || ticked == 0) return TickState::No;
    return ticked == records.size() ? TickState::Yes : TickState::Election;
}

void UninstallSession::selectRemoveLanguage(int group, int row) {
    const AMAppItemList& records = m_allRelaltedFiles.at(group);
    if (row >= 0) {
        const AMAppItemPtr& item = records.at(row);
        if (!m_selectDeletePath.removeOne(item)) m_selectDeletePath.append(item);
        return;
    }
    if (groupState(group) == TickState::Yes) {
        for (const AMAppItemPtr& item : records) m_selectDeletePath.removeOne(item);
        return;
    }
    for (const AMAppItemPtr& item : records)
        if (!isTicked(item)) m_selectDeletePath.append(item);
}

QString UninstallSession::groupSizeText(int group) const {
    quint64 total = 0;
    for (const AMAppItemPtr& item : m_allRelaltedFiles.at(group)) total += CommUti::volSpaceFromString(item->size);
    return CommUti::convertVolSpace(qint64(total));
}

QStringList UninstallSession::runningApplications() const { return runningApplicationsOf(m_allRelaltedFiles); }

QStringList UninstallSession::runningApplicationsOf(const QList<AMAppItemList>& groups) {
    const QStringList executables = RunningApplications::runningExecutables();
    QStringList names;
    for (const AMAppItemList& group : groups)
        if (!group.isEmpty() && RunningApplications::isRunning(*group.first(), executables))
            names.append(displayPath(group.first()->name));
    return names;
}

QString UninstallSession::endMessage(const QString& sizeText) {
    return QString("Velmora Data Eraser has successfully removed the selected application(s) and all associated files. "
                   "Free up %1 MB disk space.").arg(sizeText);
}

QString UninstallSession::closingMessage() const {
    const QString sizeText = CommUti::convertVolSpace(m_totalSize);
    if (m_failures.isEmpty()) return endMessage(sizeText);
    return QString("Velmora Data Eraser removed %1 of %2 selected item(s); %3 could not be removed. Free up %4 MB disk space.")
        .arg(m_allSelectCount - m_failures.size()).arg(m_allSelectCount).arg(m_failures.size()).arg(sizeText);
}

int UninstallSession::percentDone(int deleteCount, int allSelectCount) {
    return allSelectCount > 0 ? deleteCount / allSelectCount * 100 : 0;
}

void UninstallSession::doRemove() {
    if (m_selectDeletePath.isEmpty() || m_removing) return;
    m_selectedRelatedFiles = m_selectDeletePath;
    m_deleteCount = 0;
    m_totalSize = 0;
    m_isFail = false;
    m_failures.clear();
    m_allSelectCount = int(m_selectedRelatedFiles.size());
    m_removing = true;

    // Each path once, in ticked order; a path inside another ticked folder goes with it.
    AMAppItemList managed;
    QStringList paths;
    for (const AMAppItemPtr& item : m_selectedRelatedFiles) {
        if (isManaged(*item)) {
            managed.append(item);
        } else if (!paths.contains(item->path)) {
            paths.append(item->path);
        }
    }
    QList<QUrl> urls;
    for (const QString& path : paths) {
        const bool covered = std::any_of(paths.begin(), paths.end(), [&path](const QString& other) {
            return other != path && isInside(path, other);
        });
        if (!covered) urls.append(QUrl::fromLocalFile(path));
    }
    if (!m_deleteExecutor) {
        m_deleteExecutor = std::make_unique<AsMDeleteExecutor>();
        connect(m_deleteExecutor.get(), &AsMDeleteExecutor::deleteRelatedFile, this,
                [this](const QUrl& url) { recordDone(url.toLocalFile(), true, {}); }, Qt::QueuedConnection);
        connect(m_deleteExecutor.get(), &AsMDeleteExecutor::deleteRelatedFileFail, this, [this](const QUrl& url) {
            recordDone(url.toLocalFile(), false, "it could not be removed, also not with administrator rights");
        }, Qt::QueuedConnection);
    }
    removeWithManagers(managed);
    if (!urls.isEmpty()) m_deleteExecutor->executeDelete(urls);
}

void UninstallSession::removeWithManagers(const AMAppItemList& managed) {
    if (managed.isEmpty()) return;
    m_managerJobs.fetch_add(1);
    (void)QtConcurrent::run([this, managed] {
        for (const AMAppItemPtr& item : managed) {
            QString reason;
            const bool removed = PackageManagerApps::removeApplication(*item, &reason);
            QMetaObject::invokeMethod(this, [this, item, removed, reason] { managerDone(item, removed, reason); },
                                      Qt::QueuedConnection);
        }
        m_managerJobs.fetch_sub(1);
    });
}

void UninstallSession::managerDone(const AMAppItemPtr& item, bool removed, const QString& reason) {
    ++m_deleteCount;
    if (removed) {
        m_totalSize += qint64(CommUti::volSpaceFromString(item->size));
        emit recordRemoved(item);
    } else {
        m_isFail = true;
        m_failures.append({item, reason});
        emit recordFailed(item, reason);
    }
    reportProgress(item->path);
}

void UninstallSession::recordDone(const QString& path, bool removed, const QString& reason) {
    if (!m_removing) return;
    // The executor's word is checked: what is still there was not removed.
    if (removed && exists(path)) removed = false;
    const QString why = removed ? QString() : reason.isEmpty() ? QString("it is still there") : reason;
    bool sizeCounted = false;
    for (const AMAppItemPtr& item : m_selectedRelatedFiles) {
        if (isManaged(*item) || !isInside(item->path, path) || m_finished.contains(item)) continue;
        m_finished.append(item);
        ++m_deleteCount;
        if (removed) {
            // A path listed twice frees its space once.
            if (item->path == path && !sizeCounted) m_totalSize += qint64(CommUti::volSpaceFromString(item->size));
            sizeCounted = sizeCounted || item->path == path;
            emit recordRemoved(item);
        } else {
            m_isFail = true;
            m_failures.append({item, why});
            emit recordFailed(item, why);
        }
    }
    reportProgress(path);
}

void UninstallSession::reportProgress(const QString& path) {
    const int percent = percentDone(m_deleteCount, m_allSelectCount);
    if (percent >= 100) emit changeLabel(closingMessage());
    emit changeProgressValue(percent, path);
    if (percent >= 100) {
        m_removing = false;
        m_finished.clear();
        emit removalFinished();
    }
}

void UninstallSession::uninstallEnd() {
    m_selectDeletePath.clear();
    m_selectedRelatedFiles.clear();
    m_allRelaltedFiles.clear();
}

}  // namespace velmora
