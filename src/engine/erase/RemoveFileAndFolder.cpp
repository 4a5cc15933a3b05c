#include "engine/erase/RemoveFileAndFolder.h"

#include "engine/erase/EraseList.h"
#include "engine/erase/EraserLevel.h"
#include "engine/erase/FileDeletion.h"
#include "engine/erase/SecureRemoveTask.h"
#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"
#include "srm/NoFollowPath.h"

#include <QDebug>
#include <QFutureWatcher>
#include <QProcess>
#include <QStringList>
#include <QtConcurrent>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr qsizetype kMaxToolErrors = 2048;

// The bundle rule (an application removed whole, without overwriting) belongs to
// macOS; elsewhere a folder named ".app" is erased like any folder.
bool isApplicationBundle(const QString& path) {
#ifdef Q_OS_MACOS
    return path.endsWith(".app");
#else
    Q_UNUSED(path);
    return false;
#endif
}

bool isPinnedAs(const FileObj& file, const struct stat& now) {
    if (file.device == 0 && file.inode == 0) return true;
    return quint64(now.st_dev) == file.device && quint64(now.st_ino) == file.inode;
}

// The tool's own words ("srm: PATH: reason" lines, each ended by NUL), the first few
// joined; the path is left out where it is the item's own.
QString reasonFromToolErrors(const QByteArray& errors, const QString& path) {
    const QByteArray ownPrefix = "srm: " + nativePath(path) + ": ";
    QStringList reasons;
    for (QByteArray line : errors.split('\0')) {
        if (line.startsWith(ownPrefix)) line.remove(0, ownPrefix.size());
        else if (line.startsWith("srm: ")) line.remove(0, 5);
        if (!line.trimmed().isEmpty() && reasons.size() < 3) reasons.append(pathFromNative(line.trimmed()));
    }
    return reasons.join("; ");
}

// Unlinks an empty file without the tool, but only while it really is one: a regular
// file with one link and no data, checked on the open file right before the unlink
// and again after it. Answers false, with nothing removed, when that cannot be shown
// before the unlink; *failure is set when something went wrong after it.
bool unlinkIfEmpty(const QString& path, const FileObj& file, QString* failure) {
    const QByteArray name = nativePath(path);
    const qsizetype slash = name.lastIndexOf('/');
    if (slash < 0) return false;
    const int folderFd = openFolderNoFollow(slash == 0 ? std::string("/") : name.left(slash).toStdString());
    if (folderFd < 0) return false;
    const QByteArray leaf = name.mid(slash + 1);
    const int fd = openat(folderFd, leaf.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat before;
    bool unlinked = false;
    if (fd >= 0 && fstat(fd, &before) == 0 && S_ISREG(before.st_mode) && before.st_size == 0 &&
        before.st_nlink == 1 && isPinnedAs(file, before)) {
        struct stat atName;
        // The name must still lead to the file that was checked.
        if (fstatat(folderFd, leaf.constData(), &atName, AT_SYMLINK_NOFOLLOW) == 0 && atName.st_dev == before.st_dev &&
            atName.st_ino == before.st_ino) {
            unlinked = unlinkat(folderFd, leaf.constData(), 0) == 0;
            if (!unlinked) *failure = QString("cannot remove it: %1").arg(qt_error_string(errno));
            struct stat after;
            if (unlinked && fstat(fd, &after) == 0 && after.st_size != 0)
                *failure = "data was written to it while it was being removed; that data was not overwritten";
        }
    }
    if (fd >= 0) close(fd);
    close(folderFd);
    return unlinked || !failure->isEmpty();
}

}  // namespace

RemoveFileAndFolder::RemoveFileAndFolder(QObject* parent) : QObject(parent) {}

RemoveFileAndFolder::~RemoveFileAndFolder() {
    // The tool must not report its end to an engine that is gone.
    if (m_task) {
        m_task->disconnect(this);
        delete m_task;
    }
}

int RemoveFileAndFolder::getEraserTimes() { return EraserLevel::clamped(); }

bool RemoveFileAndFolder::checkPermissions(const QString& path) {
    // Non-blocking, so that a named pipe without a reader cannot hang the engine.
    const int fd = openLongPath(nativePath(path), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (fd >= 0) {
        close(fd);
        return true;
    }
    if (errno != EACCES) return true;
    return FileDeletion::addOwnerWrite(path);
}

void RemoveFileAndFolder::benginToTraskWithArr(const FileObjList& files) {
    m_index = 0;
    m_results.clear();
    m_allFilesArr = files;
    m_cancelled = false;
    m_itemCounts.clear();
    m_itemTotal = 0;
    m_itemsDone = 0;
    ++m_runNumber;
    if (files.isEmpty()) {
        QMetaObject::invokeMethod(this, &RemoveFileAndFolder::doneErasing, Qt::QueuedConnection);
        return;
    }
    // Counting walks every chosen folder, which takes long for a large one: it runs on a
    // worker thread, so that the thread of the engine (the window's) keeps answering.
    m_counting = true;
    const int run = m_runNumber;
    auto* counter = new QFutureWatcher<QList<int>>(this);
    connect(counter, &QFutureWatcher<QList<int>>::finished, this, [this, counter, run] {
        counter->deleteLater();
        if (run == m_runNumber) startCountedRun(counter->result());
    });
    counter->setFuture(QtConcurrent::run([files] {
        QList<int> counts;
        counts.reserve(files.size());
        for (const FileObj& file : files) counts.append(EraseList::itemCount(file));
        return counts;
    }));
}

void RemoveFileAndFolder::startCountedRun(const QList<int>& counts) {
    m_counting = false;
    m_itemCounts = counts;
    for (int count : counts) m_itemTotal += count;
    if (m_cancelled) {
        // Cancelled while counting: no item was touched.
        emit removeObjEnd(m_results);
        return;
    }
    emit removeProgress(m_itemTotal == 1 ? 80.0f : 0.0f, m_allFilesArr.first().url, 0);
    runTaskWithPath();
}

void RemoveFileAndFolder::isCancel() {
    m_cancelled = true;
    // Its end arrives through finished, which finishes the run.
    if (m_task) m_task->terminate();
}

void RemoveFileAndFolder::runTaskWithPath() {
    if (m_index >= m_allFilesArr.size()) return;
    FileObj file = m_allFilesArr.at(m_index);
    m_itemsInRecord = 0;
    qCInfo(lcErase, "-------::%s", qUtf8Printable(file.url));
    // What is there now decides, not what was listed; links are never followed.
    struct stat info;
    if (statWithoutFollowing(nativePath(file.url), &info) != 0) {
        finishDirectStep(file, "it was no longer there when the erase reached it");
    } else if (!isPinnedAs(file, info)) {
        finishDirectStep(file, "it was replaced after the erase was confirmed; left alone");
    } else if (S_ISDIR(info.st_mode) && !file.isDir) {
        finishDirectStep(file, "it is a folder, but was not chosen as one; left alone");
    } else if (S_ISDIR(info.st_mode) && isApplicationBundle(file.url)) {
        removeBundle(file);
    } else if (S_ISREG(info.st_mode) && info.st_size == 0 && info.st_nlink == 1) {
        removeEmptyFile(file);
    } else {
        m_recordIsLink = S_ISLNK(info.st_mode);
        launchSecureRemove(file);
    }
}

void RemoveFileAndFolder::launchSecureRemove(FileObj& file) {
    m_toolOutput.clear();
    m_toolErrors.clear();
    m_toolRemovedALink = false;
    const QString options = EraserLevel::optionString(getEraserTimes(), file.isSSD);
    m_task = startSecureRemoveTask(this, options, file.url,
                                   [this](bool exitedNormally, int exitCode) { toolEnded(exitedNormally, exitCode); });
    connect(m_task, &QProcess::readyReadStandardOutput, this, &RemoveFileAndFolder::readToolProgress);
    connect(m_task, &QProcess::readyReadStandardError, this, [this] {
        const QByteArray errors = m_task->readAllStandardError();
        m_toolErrors.append(errors.left(kMaxToolErrors - m_toolErrors.size()));
    });

    // A forecast taken while the tool runs; the verdict comes when it ends.
    if (!FileDeletion::isDeletableFileAtPath(file.url) || !checkPermissions(file.url)) {
        qCWarning(lcErase, "--没有权限--------%s", qUtf8Printable(file.url));
        emit haveFailEraser();
    }
    m_results.append(file);
}

void RemoveFileAndFolder::readToolProgress() {
    m_toolOutput.append(m_task->readAllStandardOutput());
    // Inside a folder the tool reports each item it removed (lines ended by NUL, so a
    // name may hold a line break); the record's own end is reported by doneErasing.
    // The lines read are dropped at once at the end, not one by one.
    qsizetype start = 0;
    for (qsizetype end = m_toolOutput.indexOf('\0'); end >= 0;
         start = end + 1, end = m_toolOutput.indexOf('\0', start)) {
        const QByteArray line = m_toolOutput.mid(start, end - start);
        if (!line.startsWith("removed ")) continue;
        if (line == "removed " + nativePath(m_results.last().url) + " (symbolic link; its target is untouched)")
            m_toolRemovedALink = true;
        ++m_itemsInRecord;
        if (m_cancelled || m_itemsInRecord >= m_itemCounts.at(m_index)) continue;
        const int done = m_itemsDone + m_itemsInRecord;
        emit removeProgress(progressFor(done), pathFromNative(line.mid(8)), done);
    }
    m_toolOutput.remove(0, start);
}

void RemoveFileAndFolder::toolEnded(bool exitedNormally, int exitCode) {
    FileObj& file = m_results.last();
    if (m_task) m_toolErrors.append(m_task->readAllStandardError().left(kMaxToolErrors - m_toolErrors.size()));
    const QString toolSaid = reasonFromToolErrors(m_toolErrors, file.url);
    QString failure;
    if (!exitedNormally)
        failure = exitCode == -1 && m_task && m_task->error() == QProcess::FailedToStart
                      ? "the secure-remove tool could not be started"
                      : "the secure-remove tool was stopped before it was done";
    else if (exitCode != 0)
        failure = toolSaid.isEmpty() ? QString("the secure-remove tool failed (status %1)").arg(exitCode) : toolSaid;
    else if (itemExists(file.url))
        failure = "it is still there after the secure-remove tool ended";
    else if (m_toolRemovedALink && !m_recordIsLink)
        // Swapped for a link after the last check: only the link went, the data did not.
        failure = "it was replaced by a link just before it was erased; only the link was removed";
    file.failStr = failure.isEmpty() ? "Success" : "Fail";
    file.failReason = failure;
    if (!failure.isEmpty()) {
        qCInfo(lcErase, "erase failed: %s: %s", qUtf8Printable(file.url), qUtf8Printable(failure));
        emit haveFailEraser();
    }
    doneErasing();
}

void RemoveFileAndFolder::removeEmptyFile(FileObj& file) {
    QString failure;
    if (!unlinkIfEmpty(file.url, file, &failure)) {
        // Not provably an empty file with one name: the tool handles it like any file.
        launchSecureRemove(file);
        return;
    }
    if (failure.isEmpty())
        qCInfo(lcErase, "rm file sec %s", qUtf8Printable(file.url));
    else
        qCWarning(lcErase, "rm file fail %s", qUtf8Printable(file.url));
    finishDirectStep(file, failure);
}

void RemoveFileAndFolder::removeBundle(FileObj& file) {
    // An application bundle goes whole, without overwriting.
    const bool removed = FileDeletion::removeItemAtPath(file.url) && !itemExists(file.url);
    finishDirectStep(file, removed ? QString() : "the application bundle could not be removed");
}

void RemoveFileAndFolder::finishDirectStep(FileObj& file, const QString& failure) {
    file.failStr = failure.isEmpty() ? "Success" : "Fail";
    file.failReason = failure;
    if (!failure.isEmpty()) emit haveFailEraser();
    m_results.append(file);
    // Through the event loop, so that a long run of direct steps neither deepens
    // the stack nor blocks the thread.
    QMetaObject::invokeMethod(this, &RemoveFileAndFolder::doneErasing, Qt::QueuedConnection);
}

float RemoveFileAndFolder::progressFor(int itemsDone) const {
    const int progress = itemsDone * 100 / m_itemTotal;
    return progress == 100 ? 98.0f : float(progress);
}

void RemoveFileAndFolder::doneErasing() {
    if (m_index < m_itemCounts.size()) m_itemsDone += m_itemCounts.at(m_index);
    ++m_index;
    if (m_task) {
        m_task->disconnect(this);
        m_task->deleteLater();
        m_task = nullptr;
    }
    if (m_index < m_allFilesArr.size() && !m_cancelled) {
        emit removeProgress(progressFor(m_itemsDone), m_allFilesArr.at(m_index).url, m_itemsDone);
        runTaskWithPath();
        return;
    }
    // What was removed reaches the disk before the run reports its end. The flush can
    // take long after many removals, so it runs on a worker thread.
    auto* flush = new QFutureWatcher<void>(this);
    connect(flush, &QFutureWatcher<void>::finished, this, [this, flush] {
        flush->deleteLater();
        emit removeObjEnd(m_results);
    });
    flush->setFuture(QtConcurrent::run([] { ::sync(); }));
}

}  // namespace velmora
