#include "engine/duplicate/duplicateFind.h"

#include "engine/duplicate/BatchedFirstPages.h"
#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/FingerprintKey.h"
#include "engine/duplicate/FingerprintPool.h"
#include "engine/platform/NativePath.h"

#include <QScopeGuard>
#include <algorithm>
#include <limits>
#include <mutex>
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

// What the workers share besides the groups: the lock under which they add
// groups, and the files that could not be read.
struct duplicateFind::Found {
    std::mutex mutex;
    std::vector<quint32> failed;
};

void duplicateFind::settle(qsizetype count) {
    const qsizetype now = m_settled.fetch_add(count, std::memory_order_relaxed) + count;
    m_fileProgress.store(int(now * 100 / m_fileCount), std::memory_order_relaxed);
}

// Files are equal when size, first-block and whole-file CRC-64 agree. The
// files of each size (an empty file is never a duplicate) are one job of the
// background pool, found by sorting one list of indexes. A job keeps the
// fingerprints of its own files only and reports its groups when done, so
// the search holds no per-file state beyond the listing and that list.
void duplicateFind::findDuplicateFiles(DescriptorBudget& budget, qsizetype workers) {
    const FileListing& files = *m_files;
    m_fileCount = files.size();
    m_settled.store(0, std::memory_order_relaxed);
    std::vector<quint32> bySize(static_cast<size_t>(m_fileCount));
    std::iota(bySize.begin(), bySize.end(), 0u);
    std::vector<std::pair<quint32, quint32>> sameSize =
        sharedRunsBySorting<quint64>(bySize, [&](quint32 i) { return files.file(i).size; });
    std::erase_if(sameSize, [&](const auto& run) { return files.file(bySize[run.first]).size == 0; });
    qsizetype shared = 0;
    for (const auto& [begin, end] : sameSize) shared += end - begin;
    settle(m_fileCount - shared);

    // No more copies than files of a shared size, nor more groups than half
    // of them: reserved once, only what is written takes memory.
    m_copies.reserve(size_t(shared));
    m_groups.reserve(size_t(shared / 2));
    Found found;
    FingerprintPool::run(qsizetype(sameSize.size()), [&](algorithm& worker, qsizetype job) {
        const auto [begin, end] = sameSize[size_t(job)];
        compareSameSize(worker, std::span<const quint32>(bySize.data() + begin, end - begin), budget, found);
    }, m_stop, workers);
    bySize = {};
    sameSize = {};

    std::sort(found.failed.begin(), found.failed.end());
    for (quint32 i : found.failed) m_unreadable.append(files.path(i));
    std::sort(m_groups.begin(), m_groups.end(), [](const GroupSpan& x, const GroupSpan& y) { return x.first < y.first; });
    keepGroupedFilesOnly();
    returnFreedMemory();
}

void duplicateFind::keepGroupedFilesOnly() {
    constexpr quint32 kDropped = std::numeric_limits<quint32>::max();
    std::vector<quint32> newIndex(size_t(m_files->size()), kDropped);
    for (quint32 copy : m_copies) newIndex[copy] = 0;
    quint32 kept = 0;
    for (quint32& index : newIndex)
        if (index != kDropped) index = kept++;
    m_files->filter([&](qsizetype i) { return newIndex[size_t(i)] != kDropped; });
    for (quint32& copy : m_copies) copy = newIndex[copy];
    for (GroupSpan& group : m_groups) group.first = newIndex[group.first];
}

// The files are opened once, their first blocks read (in batches where
// io_uring serves) and compared, and those still alike read whole. A class
// of files alike is reported only once all of it has been read, so that a
// stopped search reports complete groups only.
void duplicateFind::compareSameSize(algorithm& worker, std::span<const quint32> members, DescriptorBudget& budget,
                                    Found& found) {
    const FileListing& files = *m_files;
    const qsizetype count = qsizetype(members.size());
    std::vector<Stage> stage(members.size(), Stage::Unread);
    std::vector<Fingerprints> prints(members.size());
    std::vector<OpenedFile> opened(members.size());
    // Files stay open between their two reads, up to a bound and while the
    // descriptor budget allows.
    const bool keepOpen = count <= kMaxOpenPerSize && budget.tryTake(count);
    const auto atEnd = qScopeGuard([&] {
        if (keepOpen) budget.giveBack(count);
        std::vector<quint32> failed;
        for (qsizetype k = 0; k < count; ++k)
            if (stage[k] == Stage::Failed) failed.push_back(members[k]);
        if (failed.empty()) return;
        std::lock_guard lock(found.mutex);
        found.failed.insert(found.failed.end(), failed.begin(), failed.end());
    });
    const auto readOneByOne = [&](qsizetype k) {
        OpenedFile& file = opened[size_t(k)];
        const bool read = worker.getFirstBlock(files.nativePath(members[k]), files.identity(members[k]), prints[k], &file);
        if (!keepOpen) {
            worker.forgetFirstBlock(file);
            file.close();
        }
        return read;
    };
    const auto record = [&](qsizetype k, bool read) {
        if (!read) {
            stage[k] = Stage::Failed;
            settle(1);
            return;
        }
        stage[k] = prints[k].whole != 0 ? Stage::Whole : Stage::FirstBlock;
    };

    BatchedFirstPages* batched = worker.batchedFirstPages(budget);
    BatchedFirstPages::Request requests[BatchedFirstPages::kMaxBatch];
    for (qsizetype start = 0; start < count;) {
        if (stopped()) return;
        m_CurrentSearchPath.set(files.path(members[start]));
        // A batch holds its files open at once: the files kept open have
        // their descriptors already, the others take theirs for the batch.
        qsizetype batch = batched ? qMin<qsizetype>(BatchedFirstPages::kMaxBatch, count - start) : 1;
        if (batched && !keepOpen)
            while (batch > 1 && !budget.tryTake(batch)) batch /= 2;
        if (batch > 1 || (batched && keepOpen)) {
            for (qsizetype j = 0; j < batch; ++j) {
                const quint32 i = members[start + j];
                // A file that fits in its first page is read whole by then.
                const bool keep = keepOpen && files.file(i).size >= algorithm::kFirstPageSize;
                requests[j] = {files.nativePath(i), files.identity(i), &prints[start + j], &opened[size_t(start + j)],
                               keep, BatchedFirstPages::Outcome::NotTried};
            }
            batched->read(requests, size_t(batch));
            if (!keepOpen) budget.giveBack(batch);
            for (qsizetype j = 0; j < batch; ++j) {
                const BatchedFirstPages::Outcome outcome = requests[j].outcome;
                record(start + j, outcome == BatchedFirstPages::Outcome::NotTried
                                      ? readOneByOne(start + j)
                                      : outcome == BatchedFirstPages::Outcome::Read);
            }
        } else {
            record(start, readOneByOne(start));
        }
        start += batch;
    }
    QList<qsizetype> readable;  // positions in members
    for (qsizetype k = 0; k < count; ++k)
        if (stage[k] != Stage::Failed) readable.append(k);

    // Files whose first page (which holds the first block) is alike are
    // read whole; the page CRC only saves reads and decides nothing.
    const auto firstPageKey = [&](qsizetype k) { return qMakePair(prints[k].firstBlock, opened[size_t(k)].firstPageCrc); };
    for (const QList<qsizetype>& alike : classesByKey<QPair<quint64, quint64>>(readable, firstPageKey)) {
        for (qsizetype k : alike) {
            OpenedFile& file = opened[size_t(k)];
            if (alike.size() < 2 || stage[k] == Stage::Whole) {
                if (stage[k] == Stage::FirstBlock) stage[k] = Stage::Distinct;
                worker.forgetFirstBlock(file);
                settle(1);
                continue;
            }
            if (stopped()) return;
            m_CurrentSearchPath.set(files.path(members[k]));
            stage[k] = worker.getWhole(files.nativePath(members[k]), files.identity(members[k]), prints[k], &file)
                           ? Stage::Whole
                           : Stage::Failed;
            settle(1);
        }
        if (alike.size() < 2) continue;
        // Same whole file: each group in its shown order, the later copies
        // (in listing order) first, then the copy found first.
        std::vector<quint32> whole;
        for (qsizetype k : alike)
            if (stage[k] == Stage::Whole) whole.push_back(quint32(k));
        const auto runs = sharedRunsBySorting<quint64>(whole, [&](quint32 k) { return prints[k].whole; });
        if (runs.empty()) continue;
        std::lock_guard lock(found.mutex);
        for (const auto& [begin, end] : runs) {
            m_groups.push_back({members[whole[begin]], quint32(m_copies.size()), end - begin});
            for (quint32 r = begin + 1; r < end; ++r) m_copies.push_back(members[whole[r]]);
            m_copies.push_back(members[whole[begin]]);
        }
    }
}

std::vector<quint32> duplicateFind::duplicateGroup(qsizetype group) const {
    const GroupSpan& span = m_groups[size_t(group)];
    return {m_copies.begin() + span.begin, m_copies.begin() + span.begin + span.count};
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
