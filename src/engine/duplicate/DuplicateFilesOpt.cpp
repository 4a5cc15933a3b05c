#include "engine/duplicate/DuplicateFilesOpt.h"

#include "engine/duplicate/DuplicateLog.h"

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

QStringList DuplicateFilesOpt::unreadablePaths() const {
    return m_search ? m_search->unreadablePaths() : QStringList();
}

bool DuplicateFilesOpt::getDuplicateFiles(std::unique_ptr<DuplicateResults>& out) {
    if (!m_search) return false;
    const QList<QList<AppAttrbItem>>& appGroups = m_search->getAllAppDuplicateDir();
    if (m_search->duplicateGroupCount() == 0 && appGroups.isEmpty()) return false;

    auto results = std::make_unique<DuplicateResults>(m_search->listing());
    qsizetype bundleCount = 0;
    for (const QList<AppAttrbItem>& members : appGroups) bundleCount += members.size();
    results->reserve(appGroups.size() + m_search->duplicateGroupCount(), bundleCount + m_search->duplicateCopyCount());
    for (const QList<AppAttrbItem>& members : appGroups) {
        QList<DuplicateResults::Bundle> bundles;
        for (const AppAttrbItem& bundle : members)
            bundles.append({bundle.DirectoryPathName, bundle.DirectoryName, bundle.DirectorySize, bundle.identity});
        results->addBundleGroup(bundles);
    }
    // The group's first file is placed last, after the others, and names it.
    std::vector<quint32> copies;
    for (qsizetype g = 0; g < m_search->duplicateGroupCount(); ++g) {
        const std::vector<quint32> files = m_search->duplicateGroup(g);
        copies.assign(files.begin() + 1, files.end());
        copies.push_back(files.front());
        results->addFileGroup(copies);
    }
    results->finishGroups();
    qCInfo(lcDuplicate, "result of %lld groups in %zu bytes", qlonglong(results->groupCapacity()), results->bytesUsed());
    out = std::move(results);
    return true;
}

}  // namespace velmora
