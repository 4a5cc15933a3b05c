#include "engine/duplicate/duplicateFind.h"

#include "engine/duplicate/BatchedFirstPages.h"
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
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <unistd.h>

namespace velmora {

namespace {

// How far a file has been read: Distinct means it was read far enough to
// know that no other file equals it.
enum class Stage : quint8 { Unread, FirstBlock, Distinct, Whole, Failed };

// Gives the memory freed by a finished stage back to the system: the stages
// free many small blocks on several threads, which the allocator would keep.
void returnFreedMemory() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

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
    QStringList appDirectories;
    const bool listed = m_enumerator.getListAtPath(path, *m_files, appDirectories, limittedSize);
    m_unreadable = m_enumerator.unreadableFolders();
    qCInfo(lcDuplicate, "listed %lld files in %zu bytes", qlonglong(m_files->size()), m_files->bytesUsed());
    returnFreedMemory();

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
    } else if (m_files->isEmpty()) {
        result = false;
    } else {
        findDuplicateFiles(budget, workers);
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
// first blocks read (in batches where io_uring serves) and compared, and
// those still alike read whole.
void duplicateFind::findDuplicateFiles(DescriptorBudget& budget, qsizetype workers) {
    const FileListing& files = *m_files;
    const qsizetype total = files.size();
    std::atomic<qsizetype> settled{0};
    auto settle = [&](qsizetype count) {
        const qsizetype now = settled.fetch_add(count, std::memory_order_relaxed) + count;
        m_fileProgress.store(int(now * 100 / total), std::memory_order_relaxed);
    };
    std::vector<Stage> stage(size_t(total), Stage::Unread);  // each entry written by one worker
    std::vector<Fingerprints> prints(static_cast<size_t>(total));
    const auto sizeOf = [&](qsizetype i) { return files.file(i).size; };
    const auto firstBlockKey = [&](qsizetype i) { return FingerprintKey{sizeOf(i), prints[size_t(i)].firstBlock, 0}; };

    // Same size (an empty file is never a duplicate).
    QList<QList<qsizetype>> sameSize;
    {
        std::vector<qsizetype> all(static_cast<size_t>(total));
        std::iota(all.begin(), all.end(), 0);
        qsizetype alone = 0;
        for (QList<qsizetype>& bySize : sharedClassesBySorting<quint64>(std::move(all), sizeOf, alone)) {
            if (sizeOf(bySize.first()) > 0) sameSize.append(std::move(bySize));
            else settle(bySize.size());
        }
        settle(alone);
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
        const auto readOneByOne = [&](qsizetype k) {
            const qsizetype i = members[k];
            OpenedFile& file = opened[size_t(k)];
            const bool read = worker.getFirstBlock(files.nativePath(i), files.identity(i), prints[size_t(i)], &file);
            if (!keepOpen) {
                worker.forgetFirstBlock(file);
                file.close();
            }
            return read;
        };
        const auto record = [&](qsizetype i, bool read) {
            if (!read) {
                stage[i] = Stage::Failed;
                settle(1);
                return;
            }
            stage[i] = prints[size_t(i)].whole != 0 ? Stage::Whole : Stage::FirstBlock;
        };

        BatchedFirstPages* batched = worker.batchedFirstPages(budget);
        BatchedFirstPages::Request requests[BatchedFirstPages::kMaxBatch];
        for (qsizetype start = 0; start < members.size();) {
            if (stopped()) return;
            m_CurrentSearchPath.set(files.path(members[start]));
            // A batch holds its files open at once: the files kept open have
            // their descriptors already, the others take theirs for the batch.
            qsizetype count = batched ? qMin<qsizetype>(BatchedFirstPages::kMaxBatch, members.size() - start) : 1;
            if (batched && !keepOpen)
                while (count > 1 && !budget.tryTake(count)) count /= 2;
            if (count > 1 || (batched && keepOpen)) {
                for (qsizetype k = 0; k < count; ++k) {
                    const qsizetype i = members[start + k];
                    // A file that fits in its first page is read whole by then.
                    const bool keep = keepOpen && files.file(i).size >= algorithm::kFirstPageSize;
                    requests[k] = {files.nativePath(i), files.identity(i), &prints[size_t(i)],
                                   &opened[size_t(start + k)], keep, BatchedFirstPages::Outcome::NotTried};
                }
                batched->read(requests, size_t(count));
                if (!keepOpen) budget.giveBack(count);
                for (qsizetype k = 0; k < count; ++k) {
                    const BatchedFirstPages::Outcome outcome = requests[k].outcome;
                    record(members[start + k], outcome == BatchedFirstPages::Outcome::NotTried
                                                   ? readOneByOne(start + k)
                                                   : outcome == BatchedFirstPages::Outcome::Read);
                }
            } else {
                record(members[start], readOneByOne(start));
            }
            start += count;
        }
        QList<qsizetype> readable;  // positions in members
        for (qsizetype k = 0; k < members.size(); ++k)
            if (stage[members[k]] != Stage::Failed) readable.append(k);

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
                m_CurrentSearchPath.set(files.path(i));
                stage[i] = worker.getWhole(files.nativePath(i), files.identity(i), prints[size_t(i)], &file)
                               ? Stage::Whole
                               : Stage::Failed;
                settle(1);
            }
        }
    }, m_stop, workers);

    for (qsizetype i = 0; i < total; ++i)
        if (stage[i] == Stage::Failed) m_unreadable.append(files.path(i));

    // Same whole file. When stopped, a class some of whose files were not
    // read is left out, so that every group reported is complete.
    QSet<quint64> unfinishedSizes;
    QSet<FingerprintKey> unfinishedFirstBlocks;
    for (const QList<qsizetype>& members : sameSize) {
        for (qsizetype i : members) {
            if (stage[i] == Stage::Unread) unfinishedSizes.insert(sizeOf(i));
            if (stage[i] == Stage::FirstBlock) unfinishedFirstBlocks.insert(firstBlockKey(i));
        }
    }
    sameSize = {};
    returnFreedMemory();
    std::vector<quint32> comparable;
    for (qsizetype i = 0; i < total; ++i)
        if (stage[i] == Stage::Whole && !unfinishedSizes.contains(sizeOf(i)) &&
            !unfinishedFirstBlocks.contains(firstBlockKey(i)))
            comparable.push_back(quint32(i));
    const auto wholeKey = [&](quint32 i) {
        return FingerprintKey{sizeOf(i), prints[i].firstBlock, prints[i].whole};
    };
    for (const auto& [start, end] : sharedRunsBySorting<FingerprintKey>(comparable, wholeKey)) {
        m_groupStarts.push_back(m_copies.size());
        m_copies.insert(m_copies.end(), comparable.begin() + start + 1, comparable.begin() + end);
        m_copies.push_back(comparable[start]);
    }
    m_copies.shrink_to_fit();
    m_groupStarts.shrink_to_fit();
}

std::vector<quint32> duplicateFind::duplicateGroup(qsizetype group) const {
    const size_t end = size_t(group) + 1 < m_groupStarts.size() ? m_groupStarts[size_t(group) + 1] : m_copies.size();
    return {m_copies.begin() + qsizetype(m_groupStarts[size_t(group)]), m_copies.begin() + qsizetype(end)};
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
