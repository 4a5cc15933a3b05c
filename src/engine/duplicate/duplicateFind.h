#pragma once

#include "engine/duplicate/AppAttrbItem.h"
#include "engine/duplicate/CurrentPath.h"
#include "engine/duplicate/DescriptorBudget.h"
#include "engine/duplicate/FindDuplicateApp.h"
#include "engine/duplicate/algorithm.h"
#include "engine/duplicate/fileAttrbItem.h"
#include "engine/duplicate/getFileList.h"

#include <QList>
#include <QStringList>
#include <atomic>
#include <memory>
#include <span>
#include <vector>

namespace velmora {

// One whole duplicate search below a folder: enumeration, the bundle pass,
// then the file pass. Runs synchronously on the calling (worker) thread;
// getProgress(), getCurrentSearchPath() and stopSearch() may be called from
// any thread meanwhile. The results are read once the search has returned.
class duplicateFind {
public:
    void setSearchOption(bool searchHiddenFile, bool searchSystemDirectory);

    // Does nothing (and answers false) unless `path` is a folder. Answers
    // false as well when the folder cannot be read or holds no file larger
    // than limittedSize; bundle groups may have been found all the same.
    bool searchDuplicateFileAtPath(const QString& path, quint64 limittedSize);

    // (bundle progress + file progress) / 2, in percent.
    int getProgress() const;
    // The folder being listed, then the bundle, then the file being examined.
    QString getCurrentSearchPath() const;
    void stopSearch();

    // The groups of duplicate files, in the order of their first copies: in
    // each, the later copies in enumeration order, then the first copy found.
    // A group is given as indexes into the listing.
    qsizetype duplicateGroupCount() const { return qsizetype(m_groups.size()); }
    qsizetype duplicateCopyCount() const { return qsizetype(m_copies.size()); }
    std::vector<quint32> duplicateGroup(qsizetype group) const;
    const std::shared_ptr<FileListing>& listing() const { return m_files; }
    const QList<QList<AppAttrbItem>>& getAllAppDuplicateDir() const { return m_appGroups; }
    // Files that could not be read to be compared, and folders that could
    // not be listed: the search could not tell whether they have copies.
    const QStringList& unreadablePaths() const { return m_unreadable; }

private:
    enum class Phase { Idle, Enumerating, Applications, Files, Done };
    static constexpr qsizetype kMaxOpenPerSize = 64;  // descriptors one job keeps open
    static constexpr qsizetype kMaxWorkers = 64;      // reading threads, the calling one included

    struct Found;
    // A group of duplicates: the file found first, which orders the groups,
    // and where its copies lie in m_copies.
    struct GroupSpan {
        quint32 first;
        quint32 begin;
        quint32 count;
    };

    void findDuplicateFiles(DescriptorBudget& budget, qsizetype workers);
    // Compares the files of one size (indexes into the listing, ascending)
    // and adds the groups among them to `found`.
    void compareSameSize(algorithm& worker, std::span<const quint32> members, DescriptorBudget& budget, Found& found);
    // Only files in a group are shown from now on: the listing keeps those alone.
    void keepGroupedFilesOnly();
    // Counts files whose fate is known, for the progress.
    void settle(qsizetype count);
    bool stopped() const { return m_stop.load(std::memory_order_relaxed); }

    bool m_searchHiddenFile = true;
    bool m_searchSystemDirectory = true;
    std::atomic<Phase> m_phase{Phase::Idle};
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_appProgress{0};
    std::atomic<int> m_fileProgress{0};
    std::atomic<qsizetype> m_settled{0};
    qsizetype m_fileCount = 0;
    getFileList m_enumerator;
    FindDuplicateApp m_appFinder;
    CurrentPath m_CurrentSearchPath;
    std::shared_ptr<FileListing> m_files = std::make_shared<FileListing>();
    std::vector<quint32> m_copies;    // the groups' copies as indexes into the listing, each group in its shown order
    std::vector<GroupSpan> m_groups;  // in the order of their first files
    QList<QList<AppAttrbItem>> m_appGroups;
    QStringList m_unreadable;
};

}  // namespace velmora
