#include "engine/copy/EumeRoot.h"

#include "engine/copy/UniqueFd.h"
#include "engine/platform/NativePath.h"
#include "srm/NoFollowPath.h"

#include <QThread>
#include <QtConcurrent>
#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace velmora {

EumeRoot::EumeRoot(QObject* parent) : QObject(parent) {}

EumeRoot::~EumeRoot() {
    stopScan();
    for (QFuture<void>& task : m_tasks) task.waitForFinished();
}

const QStringList& EumeRoot::neverListedNames() {
    static const QStringList names{".DS_Store", ".Trashes", ".Trash", ".vol", ".fseventsd", ".Spotlight-V100",
                                   ".Volumes", ".Volume"};
    return names;
}

void EumeRoot::eumeAllRootFileNodeWithRootArr(FileNodeList* rootArr, const QString& rootPath, bool measureFolders) {
    m_rootArr = rootArr;
    startRootListing(rootPath, measureFolders);
}

void EumeRoot::eumeRootListNode(const QString& path) { startRootListing(path, false); }

void EumeRoot::getRootNodeListWithPath(const QString& path) { startRootListing(path, true); }

void EumeRoot::track(QFuture<void> task) {
    m_tasks.removeIf([](const QFuture<void>& done) { return done.isFinished(); });
    m_tasks.append(task);
}

bool EumeRoot::isScanning() const {
    return std::any_of(m_tasks.begin(), m_tasks.end(), [](const QFuture<void>& task) { return !task.isFinished(); });
}

void EumeRoot::startRootListing(const QString& path, bool measureFolders) {
    // A listing still under way belongs to an earlier root: it ends, and what it still
    // hands over is dropped.
    stopScan();
    for (QFuture<void>& task : m_tasks) task.waitForFinished();
    m_stop = false;
    m_sizes.resume();
    m_toList = 0;
    m_listed = 0;
    const int generation = ++m_generation;
    track(QtConcurrent::run([this, path, measureFolders, generation] {
        struct stat status {};
        const UniqueFd probe(openLongPath(nativePath(path), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (!probe.valid() || fstat(probe.get(), &status) != 0) {
            endScanOf(generation);
            return;
        }
        if (!S_ISDIR(status.st_mode)) {
            // A file as the source: one node, measured.
            const qsizetype slash = path.lastIndexOf('/');
            auto node = std::make_shared<FileNode>(path, path.mid(slash + 1), false, nullptr);
            m_sizes.measure(*node);
            QMetaObject::invokeMethod(this, [this, node, generation] { addToRootArr(node, generation); }, Qt::QueuedConnection);
        } else {
            listFolder(path, nullptr, measureFolders, [this, generation](const FileNodePtr& node) {
                QMetaObject::invokeMethod(this, [this, node, generation] { addToRootArr(node, generation); },
                                          Qt::QueuedConnection);
            });
        }
        endScanOf(generation);
    }));
}

void EumeRoot::endScanOf(int generation) {
    QMetaObject::invokeMethod(this, [this, generation] {
        if (generation == m_generation) emit endScan();
    }, Qt::QueuedConnection);
}

void EumeRoot::addToRootArr(const FileNodePtr& node, int generation) {
    if (!m_rootArr || generation != m_generation) return;
    // Folders are appended as they are met and only placed by size when the array is sorted.
    if (node->isDirectory || m_rootArr->isEmpty())
        m_rootArr->append(node);
    else
        insertFileInRootArrWithFile(*m_rootArr, node);
    emit rootArrChanged();
}

bool EumeRoot::listFolder(const QString& folderPath, FileNode* father, bool measureFolders,
                          const std::function<void(const FileNodePtr&)>& take) {
    const UniqueFd folder(openLongPath(nativePath(folderPath), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.valid()) return true;
    int error = 0;
    std::vector<std::string> entries = folderEntries(folder.get(), error);
    std::erase_if(entries, [](const std::string& name) { return neverListedNames().contains(QString::fromStdString(name)); });
    m_toList = qint32(entries.size());
    const QString prefix = folderPath == "/" ? QString() : folderPath;
    for (const std::string& entry : entries) {
        waitWhilePaused();
        if (m_stop.load(std::memory_order_relaxed)) return false;
        struct stat status {};
        if (fstatat(folder.get(), entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            m_listed.fetch_add(1, std::memory_order_relaxed);
            continue;
        }
        const QString name = pathFromNative(QByteArray::fromStdString(entry));
        auto node = std::make_shared<FileNode>(prefix + '/' + name, name, S_ISDIR(status.st_mode), father);
        if (node->isDirectory) {
            const UniqueFd inner(openat(folder.get(), entry.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (inner.valid() && !onSameMount(folder.get(), inner.get())) {
                m_listed.fetch_add(1, std::memory_order_relaxed);
                continue;
            }
            if (measureFolders && inner.valid()) {
                quint64 total = 0;
                node->sizeKnown = NodeTreeOperator::sizeBelow(inner.get(), m_stop, total);
                node->size = total;
            }
        } else {
            node->size = S_ISREG(status.st_mode) ? quint64(status.st_size) : 0;
            node->sizeKnown = true;
        }
        if (father && father->state != FileNode::PartlyTicked) node->state = father->state;
        take(node);
        m_listed.fetch_add(1, std::memory_order_relaxed);
    }
    return true;
}

void EumeRoot::getNodeListWithFaterNode(FileNode* node, bool measureFolders) {
    if (!node || !node->isDirectory || node->childrenListed) return;
    FileNodeList children;
    listFolder(node->path, node, measureFolders, [&children](const FileNodePtr& child) { children.append(child); });
    node->children = children;
    node->childrenListed = true;
}

void EumeRoot::listChildrenInBackground(const FileNodePtr& node) {
    if (!node || !node->isDirectory || node->childrenListed) return;
    const QString path = node->path;
    const int fatherState = node->state;
    track(QtConcurrent::run([this, node, path, fatherState] {
        // The children are made against a copy of what the background may read; the
        // node itself is changed only on this object's thread.
        FileNode reading(path, node->name, true, nullptr);
        reading.state = fatherState;
        FileNodeList children;
        listFolder(path, &reading, true, [&children](const FileNodePtr& child) { children.append(child); });
        QMetaObject::invokeMethod(this, [this, node, children] {
            if (node->childrenListed) return;
            for (const FileNodePtr& child : children) {
                child->father = node.get();
                if (node->state != FileNode::PartlyTicked) child->state = node->state;
            }
            node->children = children;
            node->childrenListed = true;
            emit childrenListed(node.get());
        }, Qt::QueuedConnection);
    }));
}

void EumeRoot::insertFileInRootArrWithFile(FileNodeList& rootArr, const FileNodePtr& node) {
    for (qsizetype i = 0; i < rootArr.size(); ++i) {
        if (rootArr.at(i)->size <= node->size) {
            rootArr.insert(i, node);
            return;
        }
    }
    rootArr.append(node);
}

void EumeRoot::doRootArrSort(FileNodeList& rootArr) {
    std::stable_sort(rootArr.begin(), rootArr.end(),
                     [](const FileNodePtr& a, const FileNodePtr& b) { return a->size > b->size; });
}

float EumeRoot::getProgress() const {
    const qint32 toList = m_toList.load(std::memory_order_relaxed);
    if (toList == 0) return 0;
    return float(m_listed.load(std::memory_order_relaxed)) * 100.0f / float(toList);
}

void EumeRoot::pauseScan() { m_pause.store(!m_pause.load(std::memory_order_relaxed), std::memory_order_relaxed); }

void EumeRoot::stopScan() {
    m_stop = true;
    m_sizes.stop();
}

void EumeRoot::waitWhilePaused() const {
    while (m_pause.load(std::memory_order_relaxed) && !m_stop.load(std::memory_order_relaxed)) QThread::msleep(50);
}

}  // namespace velmora
