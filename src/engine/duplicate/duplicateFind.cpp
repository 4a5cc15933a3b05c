#include "engine/duplicate/duplicateFind.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/FingerprintKey.h"
#include "engine/duplicate/FingerprintPool.h"

#include <QFile>
#include <QSet>
#include <algorithm>
#include <numeric>
#include <vector>
#include <sys/stat.h>

namespace velmora {

namespace {

// How far a file has been read.
enum class Stage : quint8 { Unread, FirstBlock, Whole, Failed };

bool isFolder(const QString& path) {
    struct stat st;
    return !path.isEmpty() && stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
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

    if (!appDirectories.isEmpty()) {
        m_phase.store(Phase::Applications);
        if (stopped()) m_appFinder.setM_StopSearch(true);
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
        findDuplicateFiles(files);
        result = true;
    }
    m_phase.store(Phase::Done);
    qCInfo(lcDuplicate, "findDuplicate result:%d", result ? 1 : 0);
    return result;
}

// Files are equal when size, first-block and whole-file CRC-64 agree. They
// are sorted into classes by those keys in three hash passes, and each pass
// reads only the files that still share their class with another file.
void duplicateFind::findDuplicateFiles(QList<fileAttrbItem>& files) {
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

    // Same size (an empty file is never a duplicate).
    QList<qsizetype> sameSize;
    for (const QList<qsizetype>& bySize : classesByKey<quint64>(all, [&](qsizetype i) { return files[i].fileSize; })) {
        if (bySize.size() > 1 && files[bySize.first()].fileSize > 0) sameSize.append(bySize);
        else settle(bySize.size());
    }
    std::sort(sameSize.begin(), sameSize.end());

    FingerprintPool::run(sameSize.size(), [&](algorithm& worker, qsizetype n) {
        fileAttrbItem& file = items[sameSize[n]];
        m_CurrentSearchPath.set(file.filePathName);
        if (!worker.getMD5_1K(file)) stage[sameSize[n]] = Stage::Failed;
        else stage[sameSize[n]] = file.md5 != 0 ? Stage::Whole : Stage::FirstBlock;
    }, m_stop);

    // Same size and first block.
    QSet<quint64> unfinishedSizes;  // sizes some of whose files were not read (stopped)
    QList<qsizetype> readable;
    for (qsizetype i : sameSize) {
        if (stage[i] == Stage::Unread) unfinishedSizes.insert(files[i].fileSize);
        else if (stage[i] == Stage::Failed) settle(1);
        else readable.append(i);
    }
    const auto firstBlockKey = [&](qsizetype i) { return FingerprintKey{files[i].fileSize, files[i].md5_1k, 0}; };
    QList<qsizetype> needWhole;
    for (const QList<qsizetype>& byFirstBlock : classesByKey<FingerprintKey>(readable, firstBlockKey)) {
        for (qsizetype i : byFirstBlock) {
            if (byFirstBlock.size() > 1 && stage[i] == Stage::FirstBlock) needWhole.append(i);
            else settle(1);
        }
    }
    std::sort(needWhole.begin(), needWhole.end());

    FingerprintPool::run(needWhole.size(), [&](algorithm& worker, qsizetype n) {
        fileAttrbItem& file = items[needWhole[n]];
        m_CurrentSearchPath.set(file.filePathName);
        stage[needWhole[n]] = worker.getMD5(file) ? Stage::Whole : Stage::Failed;
        settle(1);
    }, m_stop);

    // Same whole file. A class whose files were not all read (stopped) is
    // left out, so every group reported is complete.
    QSet<FingerprintKey> unfinishedFirstBlocks;
    for (qsizetype i : needWhole)
        if (stage[i] == Stage::FirstBlock) unfinishedFirstBlocks.insert(firstBlockKey(i));
    QList<qsizetype> comparable;
    for (qsizetype i : readable)
        if (stage[i] == Stage::Whole && !unfinishedSizes.contains(files[i].fileSize) &&
            !unfinishedFirstBlocks.contains(firstBlockKey(i)))
            comparable.append(i);
    const auto wholeKey = [&](qsizetype i) { return FingerprintKey{files[i].fileSize, files[i].md5_1k, files[i].md5}; };
    for (const QList<qsizetype>& equal : classesByKey<FingerprintKey>(comparable, wholeKey)) {
        if (equal.size() < 2) continue;
        for (qsizetype k = 1; k < equal.size(); ++k) m_duplicateFiles.append(files[equal[k]]);
        m_duplicateFiles.append(files[equal.first()]);
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
