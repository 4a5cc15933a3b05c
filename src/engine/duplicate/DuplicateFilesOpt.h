#pragma once

#include "engine/duplicate/DuplicateResults.h"
#include "engine/duplicate/duplicateFind.h"

#include <QMutex>
#include <atomic>
#include <memory>

namespace velmora {

// The duplicate finder as a page or a command drives it: one search, run on
// a worker thread with beginSearchAtPath(), polled from elsewhere with
// getProgress() and getCurrentSearchFile(), stopped with stopSearch(), and
// turned into a result tree with getDuplicateFiles() once it has returned.
class DuplicateFilesOpt {
public:
    struct SearchOption {
        bool searchHiddenFile = true;
        bool searchSystemDirectory = true;
    };

    DuplicateFilesOpt();
    ~DuplicateFilesOpt();

    void setSearchOption(SearchOption option) { m_option = option; }

    // Runs the whole search on the calling thread. A second call on the same
    // object is refused (answers false at once). Answers the search's result.
    bool beginSearchAtPath(const QString& path, quint64 limitSize);

    int getProgress() const;
    void stopSearch();
    // The path being examined, or the last one seen when there is none now.
    QString getCurrentSearchFile();

    // Builds the result: the bundle groups first, then the file groups. In
    // a file group the copies are the group's later copies in order, then
    // its first copy found, then its second: the last copy is the one to
    // keep. The result shares the search's listing. False when no search ran
    // or nothing was found.
    bool getDuplicateFiles(std::unique_ptr<DuplicateResults>& out);

    // After the search: the files it could not read and the folders it could
    // not list (their copies, if any, are not in the tree).
    QStringList unreadablePaths() const;

private:
    SearchOption m_option;
    std::unique_ptr<duplicateFind> m_search;      // created once, kept until destruction
    std::atomic<duplicateFind*> m_activeSearch{nullptr};
    QMutex m_lastPathMutex;
    QString m_lastPath;
};

}  // namespace velmora
