#include "engine/erase/RemoveFileAndFolder.h"

#include "engine/erase/EraserLevel.h"
#include "engine/erase/FileDeletion.h"
#include "engine/erase/SecureRemoveTask.h"

#include <QDebug>
#include <QFile>
#include <QProcess>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

// A folder that cannot be read counts as holding entries: it cannot be shown empty.
bool folderHasEntries(const QString& path) {
    DIR* folder = opendir(QFile::encodeName(path).constData());
    if (!folder) return true;
    bool hasEntries = false;
    while (const dirent* entry = readdir(folder)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") {
            hasEntries = true;
            break;
        }
    }
    closedir(folder);
    return hasEntries;
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
    const QByteArray name = QFile::encodeName(path);
    // Non-blocking, so that a named pipe without a reader cannot hang the engine.
    const int fd = open(name.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd >= 0) {
        close(fd);
        return true;
    }
    if (errno != EACCES) return true;
    return chmod(name.constData(), 0600) == 0;
}

void RemoveFileAndFolder::benginToTraskWithArr(const FileObjList& files) {
    m_index = 0;
    m_results.clear();
    m_allFilesArr = files;
    m_cancelled = false;
    if (files.isEmpty()) {
        QMetaObject::invokeMethod(this, &RemoveFileAndFolder::doneErasing, Qt::QueuedConnection);
        return;
    }
    emit removeProgress(files.size() == 1 ? 80.0f : 0.0f, files.first().url, 0);
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
    qInfo("-------::%s", qUtf8Printable(file.url));
    // Links are never followed: a link to a folder is erased as the link itself.
    struct stat info;
    const bool isFolder = lstat(QFile::encodeName(file.url).constData(), &info) == 0 && S_ISDIR(info.st_mode);
    if (!isFolder) {
        if (file.size != 0)
            launchSecureRemove(file);
        else
            removeDirectly(file);
    } else {
        removeFolder(file, !folderHasEntries(file.url));
    }
}

void RemoveFileAndFolder::launchSecureRemove(FileObj& file) {
    const QString options = EraserLevel::optionString(getEraserTimes(), file.isSSD);
    m_task = startSecureRemoveTask(this, options, file.url, [this] { doneErasing(); });

    // The verdict is a forecast taken while the tool runs; the page decides the
    // final result by whether the path still exists.
    if (FileDeletion::isDeletableFileAtPath(file.url) && checkPermissions(file.url)) {
        file.failStr = "Success";
    } else {
        qWarning("--没有权限--------%s", qUtf8Printable(file.url));
        file.failStr = "Fail";
        emit haveFailEraser();
    }
    m_results.append(file);
}

void RemoveFileAndFolder::removeDirectly(FileObj& file) {
    // Nothing to overwrite: an empty file is unlinked without the tool.
    if (FileDeletion::removeItemAtPath(file.url)) {
        qInfo("rm file sec %s", qUtf8Printable(file.url));
        file.failStr = "Success";
    } else {
        qWarning("rm file fail %s", qUtf8Printable(file.url));
        file.failStr = "Fail";
    }
    m_results.append(file);
    finishAfterDirectStep();
}

void RemoveFileAndFolder::removeFolder(FileObj& file, bool isEmpty) {
    if ((file.isDir && isEmpty) || file.url.endsWith(".app")) {
        // An application bundle goes whole, without overwriting, and counts as done.
        FileDeletion::removeItemAtPath(file.url);
        file.failStr = "Success";
    } else {
        file.failStr = "Fail";
        emit haveFailEraser();
    }
    m_results.append(file);
    finishAfterDirectStep();
}

void RemoveFileAndFolder::finishAfterDirectStep() {
    // Through the event loop, so that a long run of direct steps neither deepens
    // the stack nor blocks the thread.
    QMetaObject::invokeMethod(this, &RemoveFileAndFolder::doneErasing, Qt::QueuedConnection);
}

void RemoveFileAndFolder::doneErasing() {
    ++m_index;
    if (m_task) {
        m_task->disconnect(this);
        m_task->deleteLater();
        m_task = nullptr;
    }
    if (m_index < m_allFilesArr.size() && !m_cancelled) {
        const int progress = m_index * 100 / int(m_allFilesArr.size());
        emit removeProgress(progress == 100 ? 98.0f : float(progress), m_allFilesArr.at(m_index).url, m_index);
        runTaskWithPath();
        return;
    }
    ::sync();
    emit removeObjEnd(m_results);
}

}  // namespace velmora
