#include "engine/duplicate/duplicateFind.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/FingerprintKey.h"
#include "engine/duplicate/FingerprintPool.h"
#include "engine/platform/NativePath.h"

#include <QScopeGuard>
#include <QSet>
#include <algorithm>
#include <numeric>
#include <vector>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {

namespace {

// How far a file has been read: Distinct means it was read far enough to
// know that no other file equals it.
enum class Stage : quint8 { Unread, FirstBlock, Distinct, Whole, Failed };

bool isFolder(const QString& path) {
    if (path.isEmpty()) return false;
    const int fd = openLongPath(nativePath(path), O_PATH | O_DIRECTORY);
    if (fd < 0) return false;
    close(fd);
    return true;
}

}  // namespace

void duplicateFind::setSearchOption(bool searchHiddenFile, bool searchSystemDirectory) {
    m_searchHiddenFile = searchHiddenFile;
    m_searchSystemDirectory = searchSystemDirectory;
}

bool duplicateFind::searchDuplicateFileAtPath(const QString& path, quint64 limittedSize) {
    if (!isFolder(path)) return false;

    m_phase.store(Phase::Enumerating);
    m_enumerator.m_bSearchHiddenFile = m_searchHiddenFile;
    m_enumerator.m_bSearchSystemDirectory = m_searchSystemDirectory;
    QList<fileAttrbItem> files;
    QStringList appDirectories;
    const bool listed = m_enumerator.getListAtPath(path, files, appDirectories, limittedSize);
    m_unreadable = m_enumerator.unreadableFolders();

    // Each reading thread holds one descriptor at a time; what the budget
    // has beyond that lets a group of same-size files stay open between
    // its two reads.
    DescriptorBudget budget(DescriptorBudget::availableNow());
    const qsizetype workers = qBound<qsizetype>(1, budget.capacity() / 4, kMaxWorkers);
    budget.tryTake(workers);
    if (!appDirectories.isEmpty()) {
        m_phase.store(Phase::Applications);
        if (stopped()) m_appFinder.setM_StopSearch(true);
        m_appFinder.setMaxWorkers(workers);
        m_appFinder.FindAppInArray(appDirectories, m_appGroups);
    }
    m_appProgress.store(100, std::memory_order_relaxed);
    m_phase.store(Phase::Files);

    bool result;
    if (!listed || stopped()) {
        result = listed;
    } else if (files.isEmpty()) {
        result = false;
    } else {
        findDuplicateFiles(files, budget, workers);
        result = true;
    }
    m_phase.store(Phase::Done);
    qCInfo(lcDuplicate, "findDuplicate result:%d", result ? 1 : 0);
    return result;
}

// Files are equal when size, first-block and whole-file CRC-64 agree. They
// are sorted into classes by those keys with hash maps; a file is read only
// while it still shares its class with another file. Each group of equal
// size is one job of the background pool: its files are opened once, their
// first blocks read and compared, and those still alike read whole.
void duplicateFind::findDuplicateFiles(QList<fileAttrbItem>& files, DescriptorBudget& budget, qsizetype workers) {
    const qsizetype total = files.size();
    std::atomic<qsizetype> settled{0};
    auto settle = [&](qsizetype count) {
        const qsizetype now = settled.fetch_add(count, std::memory_order_relaxed) + count;
        m_fileProgress.store(int(now * 100 / total), std::memory_order_relaxed);
    };
    std::vector<Stage> stage(size_t(total), Stage::Unread);  // each entry written by one worker
    fileAttrbItem* const items = files.data();
    QList<qsizetype> all(total);
    std::iota(all.begin(), all.end(), 0);
    const auto firstBlockKey = [&](qsizetype i) { return FingerprintKey{items[i].fileSize, items[i].md5_1k, 0}; };

    // Same size (an empty file is never a duplicate).
    QList<QList<qsizetype>> sameSize;
    for (QList<qsizetype>& bySize : classesByKey<quint64>(all, [&](qsizetype i) { return items[i].fileSize; })) {
        if (bySize.size() > 1 && items[bySize.first()].fileSize > 0) sameSize.append(std::move(bySize));
        else settle(bySize.size());
    }

    FingerprintPool::run(sameSize.size(), [&](algorithm& worker, qsizetype job) {
        const QList<qsizetype>& members = sameSize[job];
        // Files stay open between their two reads, up to a bound and while
        // the descriptor budget allows.
        const bool keepOpen = members.size() <= kMaxOpenPerSize && budget.tryTake(members.size());
        const auto giveBack = qScopeGuard([&] {
            if (keepOpen) budget.giveBack(members.size());
        });
        std::vector<OpenedFile> opened(size_t(members.size()));
        QList<qsizetype> readable;  // positions in members
        for (qsizetype k = 0; k < members.size(); ++k) {
            if (stopped()) return;
            const qsizetype i = members[k];
            OpenedFile& file = opened[size_t(k)];
            m_CurrentSearchPath.set(items[i].filePathName);
            const bool read = worker.getMD5_1K(items[i], &file);
            if (!keepOpen) {
                worker.forgetFirstBlock(file);
                file.close();
            }
            if (!read) {
                stage[i] = Stage::Failed;
                settle(1);
                continue;
            }
            stage[i] = items[i].md5 != 0 ? Stage::Whole : Stage::FirstBlock;
            readable.append(k);
        }
        // Files whose first page (which holds the first block) is alike are
        // read whole; the page CRC only saves reads and decides nothing.
        const auto firstPageKey = [&](qsizetype k) {
            return qMakePair(firstBlockKey(members[k]), opened[size_t(k)].firstPageCrc);
        };
        for (const QList<qsizetype>& alike : classesByKey<QPair<FingerprintKey, quint64>>(readable, firstPageKey)) {
            for (qsizetype k : alike) {
                const qsizetype i = members[k];
                OpenedFile& file = opened[size_t(k)];
                if (alike.size() < 2 || stage[i] == Stage::Whole) {
                    if (stage[i] == Stage::FirstBlock) stage[i] = Stage::Distinct;
                    worker.forgetFirstBlock(file);
                    settle(1);
                    continue;
                }
                if (stopped()) return;
                m_CurrentSearchPath.set(items[i].filePathName);
                stage[i] = worker.getMD5(items[i], &file) ? Stage::Whole : Stage::Failed;
                settle(1);
            }
        }
    }, m_stop, workers);

    for (qsizetype i = 0; i < total; ++i)
        if (stage[i] == Stage::Failed) m_unreadable.append(items[i].filePathName);

    // Same whole file. When stopped, a class some of whose files were not
    // read is left out, so that every group reported is complete.
    QSet<quint64> unfinishedSizes;
    QSet<FingerprintKey> unfinishedFirstBlocks;
    for (const QList<qsizetype>& members : sameSize) {
        for (qsizetype i : members) {
            if (stage[i] == Stage::Unread) unfinishedSizes.insert(items[i].fileSize);
            if (stage[i] == Stage::FirstBlock) unfinishedFirstBlocks.insert(firstBlockKey(i));
        }
    }
    QList<qsizetype> comparable;
    for (qsizetype i = 0; i < total; ++i)
        if (stage[i] == Stage::Whole && !unfinishedSizes.contains(items[i].fileSize) &&
            !unfinishedFirstBlocks.contains(firstBlockKey(i)))
            comparable.append(i);
    const auto wholeKey = [&](qsizetype i) { return FingerprintKey{items[i].fileSize, items[i].md5_1k, items[i].md5}; };
    for (const QList<qsizetype>& equal : classesByKey<FingerprintKey>(comparable, wholeKey)) {
        if (equal.size() < 2) continue;
        for (qsizetype k = 1; k < equal.size(); ++k) m_duplicateFiles.append(items[equal[k]]);
        m_duplicateFiles.append(items[equal.first()]);
    }
}

int duplicateFind::getProgress() const {
    const int appProgress = m_phase.load() == Phase::Applications ? m_appFinder.progress()
                                                                  : m_appProgress.load(std::memory_order_relaxed);
    return (appProgress + m_fileProgress.load(std::memory_order_relaxed)) / 2;
}

QString duplicateFind::getCurrentSearchPath() const {
    switch (m_phase.load()) {
    case Phase::Enumerating: return m_enumerator.currentPath();
    case Phase::Applications: return m_appFinder.currentSearchFile();
    default: return m_CurrentSearchPath.get();
    }
}

void duplicateFind::stopSearch() {
    m_enumerator.stopSearch();
    m_appFinder.setM_StopSearch(true);
    m_stop.store(true, std::memory_order_relaxed);
}

}  // namespace velmora
