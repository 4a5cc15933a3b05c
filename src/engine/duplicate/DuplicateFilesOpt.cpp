#include "engine/duplicate/DuplicateFilesOpt.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PathNames.h"

namespace velmora {

DuplicateFilesOpt::DuplicateFilesOpt() = default;
DuplicateFilesOpt::~DuplicateFilesOpt() = default;

bool DuplicateFilesOpt::beginSearchAtPath(const QString& path, quint64 limitSize) {
    if (m_search) {
        qCInfo(lcDuplicate, "error need reinit");
        return false;
    }
    qCInfo(lcDuplicate, " -INFO:search Path:%s  limitedsize:%llu", qUtf8Printable(path), limitSize);
    {
        QMutexLocker lock(&m_lastPathMutex);
        m_lastPath = path;
    }
    m_search = std::make_unique<duplicateFind>();
    m_search->setSearchOption(m_option.searchHiddenFile, m_option.searchSystemDirectory);
    m_activeSearch.store(m_search.get());
    return m_search->searchDuplicateFileAtPath(path, limitSize);
}

int DuplicateFilesOpt::getProgress() const {
    const duplicateFind* search = m_activeSearch.load();
    return search ? search->getProgress() : 0;
}

void DuplicateFilesOpt::stopSearch() {
    if (duplicateFind* search = m_activeSearch.load()) search->stopSearch();
}

QString DuplicateFilesOpt::getCurrentSearchFile() {
    const duplicateFind* search = m_activeSearch.load();
    const QString current = search ? search->getCurrentSearchPath() : QString();
    QMutexLocker lock(&m_lastPathMutex);
    if (!current.isEmpty()) m_lastPath = current;
    return m_lastPath;
}

namespace {

SimpleTreeNode::Pointer makeLeaf(const QString& path, quint64 size, const QDateTime& modified,
                                 const FileIdentity& identity) {
    SimpleNodeData data = SimpleNodeData::leafDataWithName(path);
    data.fileSize = size;
    data.modificationDate = modified;
    data.identity = identity;
    return SimpleTreeNode::create(std::move(data));
}

SimpleTreeNode::Pointer makeLeaf(const fileAttrbItem& file) {
    return makeLeaf(file.filePathName, file.fileSize, file.ModificationDate, file.identity);
}

SimpleTreeNode::Pointer makeGroup(const QString& name, const QString& extension) {
    SimpleNodeData data = SimpleNodeData::groupDataWithName(name);
    data.extendName = extension;
    return SimpleTreeNode::create(std::move(data));
}

void appendLeaf(SimpleTreeNode& group, const SimpleTreeNode::Pointer& leaf) {
    group.data().fileSize += leaf->data().fileSize;
    group.appendChild(leaf);
}

}  // namespace

QStringList DuplicateFilesOpt::unreadablePaths() const {
    return m_search ? m_search->unreadablePaths() : QStringList();
}

bool DuplicateFilesOpt::getDuplicateFiles(SimpleTreeNode::Pointer& out) {
    if (!m_search) return false;
    const QList<QList<AppAttrbItem>>& appGroups = m_search->getAllAppDuplicateDir();
    if (m_search->duplicateGroupCount() == 0 && appGroups.isEmpty()) return false;

    SimpleTreeNode::Pointer root = makeGroup("Root", {});
    for (const QList<AppAttrbItem>& members : appGroups) {
        SimpleTreeNode::Pointer group = makeGroup(members.last().DirectoryName, "APP");
        for (const AppAttrbItem& bundle : members)
            appendLeaf(*group, makeLeaf(bundle.DirectoryPathName, bundle.DirectorySize, {}, bundle.identity));
        root->appendChild(group);
    }

    // The group's first file is placed last, after the others, and names it.
    for (qsizetype g = 0; g < m_search->duplicateGroupCount(); ++g) {
        const QList<fileAttrbItem> files = m_search->duplicateGroup(g);
        const fileAttrbItem& first = files.first();
        SimpleTreeNode::Pointer group = makeGroup(first.fileName, PathNames::pathExtension(first.fileName));
        for (qsizetype i = 1; i < files.size(); ++i) appendLeaf(*group, makeLeaf(files[i]));
        appendLeaf(*group, makeLeaf(first));
        root->appendChild(group);
    }
    out = root;
    return true;
}

}  // namespace velmora
