#include "engine/copy/DoCopyFiles.h"

#include "engine/copy/CopyVerifier.h"
#include "engine/copy/TreeCopier.h"
#include "engine/duplicate/PathNames.h"
#include "engine/platform/NativePath.h"
#include "srm/NoFollowPath.h"

#include <QSet>
#include <QThread>
#include <QThreadPool>
#include <fcntl.h>
#include <sys/stat.h>

namespace velmora {

// A destination folder of a task, and the source folder whose attributes it takes
// when the task that fills it ends (none for the dated folder itself).
struct DoCopyFiles::Folder {
    UniqueFd fd;
    QByteArray path;
    FileNodePtr source;
};

DoCopyFiles::DoCopyFiles(QObject* parent) : QObject(parent) {}

DoCopyFiles::~DoCopyFiles() {
    setIsCancel(true);
    while (m_copyRunning.load()) QThread::msleep(10);
}

bool DoCopyFiles::setSourceRoot(const QString& path, QString* error) {
    m_sourceRootPath = nativePath(path);
    while (m_sourceRootPath.size() > 1 && m_sourceRootPath.endsWith('/')) m_sourceRootPath.chop(1);
    m_sourceRoot.reset(openLongPath(m_sourceRootPath, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!m_sourceRoot.valid() && error) *error = QString("%1: %2").arg(displayPath(path), reasonOf(errno));
    return m_sourceRoot.valid();
}

void DoCopyFiles::doCopyFilesWithArr(const FileNodeList& arr, const QString& copyPath) {
    doCopyFilesWithArr(arr, UniqueFd(openLongPath(nativePath(copyPath), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), copyPath);
}

void DoCopyFiles::doCopyFilesWithArr(const FileNodeList& arr, UniqueFd copyFolder, const QString& copyPath) {
    m_isCancel = false;
    m_destinationLost = false;
    m_copyPath = copyPath;
    m_report.keepForVerification(m_verify);
    m_copyRunning.store(true);
    auto folder = std::make_shared<Folder>();
    folder->fd = std::move(copyFolder);
    folder->path = nativePath(copyPath);
    startTask(arr, folder);
}

void DoCopyFiles::startTask(const FileNodeList& arr, std::shared_ptr<Folder> destination) {
    m_pendingTasks.fetch_add(1);
    QThreadPool::globalInstance()->start([this, arr, destination] {
        copyArr(arr, destination);
        // The folder's own attributes last, now that everything in it is written.
        if (destination->source) applyFolderAttributes(*destination->source, *destination);
        taskEnded();
    });
}

void DoCopyFiles::copyArr(const FileNodeList& arr, const std::shared_ptr<Folder>& destination) {
    const qsizetype count = arr.size();
    for (qsizetype i = 0; i < count && !isCancel(); ++i) {
        if (i == 0) emit topCopyProgress(5);
        const FileNodePtr& node = arr.at(i);
        if (node->state == FileNode::PartlyTicked) {
            if (const std::shared_ptr<Folder> folder = makeFolderFor(*node, destination)) {
                doCopyFilesWithChiNode(node->children, folder);
                applyFolderAttributes(*node, *folder);
            }
        } else if (node->state == FileNode::Ticked) {
            toCopyFileWithNode(*node, destination);
        }
        const int progress = int(((i + 1) * 100) / count);
        emit topCopyProgress(progress < 6 ? 5 : progress);
    }
}

void DoCopyFiles::doCopyFilesWithChiNode(const FileNodeList& children, const std::shared_ptr<Folder>& destination) {
    for (const FileNodePtr& child : children) {
        if (isCancel()) return;
        if (child->state == FileNode::PartlyTicked) {
            if (std::shared_ptr<Folder> folder = makeFolderFor(*child, destination)) {
                folder->source = child;
                startTask(child->children, folder);
            }
        } else if (child->state == FileNode::Ticked) {
            toCopyFileWithNode(*child, destination);
        }
    }
}

UniqueFd DoCopyFiles::openParentInSource(const FileNode& node, QByteArray& name, QString* failure) const {
    const QByteArray path = nativePath(node.path);
    const QByteArray prefix = m_sourceRootPath == "/" ? QByteArray("/") : m_sourceRootPath + '/';
    if (!path.startsWith(prefix) || path.size() == prefix.size()) {
        *failure = "lies outside the source: not copied";
        return UniqueFd();
    }
    QList<QByteArray> components = path.mid(prefix.size()).split('/');
    components.removeAll(QByteArray());
    name = components.takeLast();
    UniqueFd folder(fcntl(m_sourceRoot.get(), F_DUPFD_CLOEXEC, 0));
    for (const QByteArray& component : components) {
        UniqueFd inner(openat(folder.get(), component.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!inner.valid()) {
            *failure = "could not be reached without following a link: " + reasonOf(errno);
            return UniqueFd();
        }
        if (!onSameMount(folder.get(), inner.get())) {
            *failure = "lies on another volume: not copied";
            return UniqueFd();
        }
        folder = std::move(inner);
    }
    return folder;
}

void DoCopyFiles::applyFolderAttributes(const FileNode& node, const Folder& destination) {
    if (isCancel()) return;
    QByteArray name;
    QString failure;
    const UniqueFd parent = openParentInSource(node, name, &failure);
    if (!parent.valid()) return;
    const UniqueFd source(openat(parent.get(), name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!source.valid() || fstat(source.get(), &status) != 0) return;
    TreeCopier(m_report, m_isCancel).applyAttributes(source.get(), destination.fd.get(), status, nativePath(node.path));
}

std::shared_ptr<DoCopyFiles::Folder> DoCopyFiles::makeFolderFor(const FileNode& node,
                                                                 const std::shared_ptr<Folder>& destination) {
    if (!destinationStillThere(*destination)) return nullptr;
    QString name = node.name;
    if (mkdirat(destination->fd.get(), nativePath(name).constData(), 0700) != 0) {
        // A name already taken by something else in the destination: the next free one.
        name = createFileWithPath(destination->fd.get(), node.name, node.name);
        if (mkdirat(destination->fd.get(), nativePath(name).constData(), 0700) != 0) {
            m_report.fail(node.path, "the folder could not be made: " + reasonOf(errno));
            return nullptr;
        }
    }
    auto folder = std::make_shared<Folder>();
    folder->fd.reset(openat(destination->fd.get(), nativePath(name).constData(),
                            O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    folder->path = destination->path + '/' + nativePath(name);
    if (!folder->fd.valid()) {
        m_report.fail(node.path, "the folder could not be opened: " + reasonOf(errno));
        return nullptr;
    }
    m_report.copiedItems.fetch_add(1, std::memory_order_relaxed);
    return folder;
}

bool DoCopyFiles::destinationStillThere(const Folder& destination) {
    struct stat status {};
    if (fstat(destination.fd.get(), &status) == 0 && status.st_nlink > 0) return true;
    // The destination folder is gone: nothing more can be copied.
    if (!m_destinationLost.exchange(true)) {
        setIsCancel(true);
        emit copyFileError();
    }
    return false;
}

void DoCopyFiles::toCopyFileWithNode(const FileNode& node, const std::shared_ptr<Folder>& destination) {
    if (isCancel()) return;
    emit topCopyFilePath(node.path);
    if (!destinationStillThere(*destination)) return;
    const QString name = createFileWithPath(destination->fd.get(), node.name, node.name);
    QByteArray sourceName;
    QString failure;
    const UniqueFd parent = openParentInSource(node, sourceName, &failure);
    if (!parent.valid()) {
        m_report.fail(node.path, failure);
        return;
    }
    const QByteArray destinationName = nativePath(name);
    TreeCopier(m_report, m_isCancel)
        .copyEntry(parent.get(), sourceName, nativePath(node.path), destination->fd.get(), destinationName,
                   destination->path + '/' + destinationName);
}

QString DoCopyFiles::createFileWithPath(int folderFd, const QString& normalName, const QString& fileName) {
    int error = 0;
    const std::vector<std::string> entries = folderEntries(folderFd, error);
    if (error != 0) return fileName;
    QSet<QString> present;
    for (const std::string& entry : entries) present.insert(pathFromNative(QByteArray::fromStdString(entry)));
    // The extension is not kept: a second "a.txt" becomes "a 1".
    const QString extension = PathNames::pathExtension(normalName);
    const QString stem = extension.isEmpty() ? normalName : normalName.left(normalName.size() - extension.size() - 1);
    QString candidate = fileName;
    for (int clash = 1; present.contains(candidate); ++clash) candidate = QString("%1 %2").arg(stem).arg(clash);
    return candidate;
}

QString DoCopyFiles::createFileWithPath(const QString& folder, const QString& normalName, const QString& fileName) {
    const UniqueFd fd(openLongPath(nativePath(folder), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.valid()) return fileName;
    return createFileWithPath(fd.get(), normalName, fileName);
}

void DoCopyFiles::taskEnded() {
    // A task starts the tasks of its nested folders before it ends, so the count reaches
    // zero only after the last one: that one verifies and hands the result over.
    if (m_pendingTasks.fetch_sub(1) == 1) {
        finish();
        m_copyRunning.store(false);
    }
}

void DoCopyFiles::finish() {
    CopyResult result;
    result.destinationFolder = m_copyPath;
    result.cancelled = isCancel() && !m_destinationLost.load();
    result.destinationLost = m_destinationLost.load();
    if (m_verify && !isCancel()) {
        CopyVerifier verifier(m_isCancel);
        result.mismatches = verifier.compare(m_report.copiedPairs());
        result.verifiedFiles = verifier.comparedFiles();
        result.verified = !isCancel();
    }
    result.copiedItems = copiedItems();
    result.copiedBytes = copiedBytes();
    result.failures = m_report.failures();
    result.notes = m_report.notes();
    QMetaObject::invokeMethod(this, [this, result] {
        m_result = result;
        emit copyEnded();
    }, Qt::QueuedConnection);
}

}  // namespace velmora
