#pragma once

#include "engine/duplicate/AppAttrbItem.h"
#include "engine/duplicate/CurrentPath.h"

#include <QList>
#include <QStringList>
#include <atomic>

namespace velmora {

// Finds duplicate application bundles: two bundles are equal when they hold
// the same number of files and their files pair up by size, first-block and
// whole-file CRC-64. File names and places inside the bundles do not count.
class FindDuplicateApp {
public:
    // Appends one group per set of equal bundles, in the order of each set's
    // first bundle in `appPaths`; within a group the later bundles come
    // first and that first bundle last. A stopped pass appends nothing.
    void FindAppInArray(const QStringList& appPaths, QList<QList<AppAttrbItem>>& outArray);

    int progress() const { return m_Progress.load(std::memory_order_relaxed); }
    void setM_StopSearch(bool stop) { m_StopSearch.store(stop, std::memory_order_relaxed); }
    // How many files may be read at once (each holds one descriptor).
    void setMaxWorkers(qsizetype workers) { m_maxWorkers = workers; }
    QString currentSearchFile() const { return m_CurrentSearchFile.get(); }

    // Lists the files inside the bundle and sums their sizes; false when the
    // bundle cannot be read as a folder.
    static bool getAllFilePathName(AppAttrbItem& bundle);

private:
    bool stopped() const { return m_StopSearch.load(std::memory_order_relaxed); }
    void computeFirstBlocks(QList<AppAttrbItem>& bundles, const QList<qsizetype>& which);
    void computeWholeFiles(QList<AppAttrbItem>& bundles, const QList<qsizetype>& which);
    void reportRemaining(qsizetype remaining, qsizetype total);

    std::atomic<int> m_Progress{0};  // percent of bundles still to examine, counting down
    std::atomic<bool> m_StopSearch{false};
    CurrentPath m_CurrentSearchFile;
    qsizetype m_maxWorkers = 1;
};

}  // namespace velmora
