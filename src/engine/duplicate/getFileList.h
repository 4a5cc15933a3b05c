#pragma once

#include "engine/duplicate/CurrentPath.h"
#include "engine/duplicate/FileIdentity.h"
#include "engine/duplicate/PseudoFileSystems.h"
#include "engine/duplicate/FileListing.h"

#include <QList>
#include <QPair>
#include <QSet>
#include <QStringList>
#include <atomic>

namespace velmora {

// Walks the folder chosen for a duplicate search and produces the ordinary
// files larger than a size limit and the application bundles met on the way.
// Symbolic links are never followed (only the chosen folder itself may be
// reached through one); each file and each folder is listed once, however
// many paths (hard links, bind mounts) lead to it; pseudo file systems are
// not entered. The walk goes relative to folder descriptors, so trees deeper
// than PATH_MAX are searched, and holds a bounded number of them open; what it
// cannot enter is reported in unreadableFolders(). Runs on the search thread; stopSearch() and currentPath() may
// be called from any thread.
class getFileList {
public:
    bool m_bSearchHiddenFile = true;
    bool m_bSearchSystemDirectory = true;  // only matters when searching "/"

    // The entry point: lists `path` and keeps, in listing order, every file
    // strictly larger than limittedSize that is neither hidden (when hidden
    // entries are excluded) nor inside an application bundle; the bundles go
    // to directoryArray. Answers whether the top folder could be read.
    bool getListAtPath(const QString& path, FileListing& fileArray, QStringList& directoryArray, quint64 limittedSize);

    // Folders below the chosen one that could not be read, and files that
    // could not be listed, in walk order.
    const QStringList& unreadableFolders() const { return m_unreadableFolders; }

    // True when any component of the path starts with a full stop.
    static bool IsHiddenFile(const QString& path);
    // True when the path's top-level component is one of the volume's
    // system folders (Library, Developer, System, Volumes, bin, sbin).
    static bool IsSystemDirectory(const QString& path);

    void stopSearch() { m_stop.store(true, std::memory_order_relaxed); }
    QString currentPath() const { return m_CurrentPath.get(); }

private:
    using Inode = QPair<quint64, quint64>;  // device, inode
    // At most this many folders stay open along the walk's path, however deep.
    static constexpr int kMaxHeldFolders = 256;
    // Entries looked at by one thread at a time in a large folder.
    static constexpr qsizetype kStatChunk = 256;

    // A folder being listed: its path both ways, and what its entries inherit.
    struct Folder {
        QString path;
        QByteArray nativePath;
        bool hidden = false;  // its path has a hidden component
        QString bundle;       // the bundle it lies in, or empty
    };

    // Lists the open folder `fd` (the folder `folderStat` describes) into the
    // listing: each file in readdir order, each subfolder's contents in its
    // place, the bundles as their entries are met. Subfolders are opened
    // relative to `fd`; deeper than the held-folder limit, `fd` is let go
    // while a subfolder is listed and found again through that subfolder's
    // "..", so `fd` may be another descriptor (or -1) on return. False when
    // stopped or unreadable.
    bool listFolder(int& fd, const struct stat& folderStat, const Folder& folder, bool topLevel, int depth);
    // What the listing does with one entry other than a folder's contents:
    // hidden ones are left out, those inside a bundle record it, files are kept.
    void takeEntry(const Folder& folder, quint32 folderIndex, const char* name, const struct stat& st);
    void recordBundle(const QString& bundle, quint64 size);
    // Keeps the first path of every file met by several (hard links).
    void dropFurtherLinks();
    // Opens the subfolder `name` of the open folder, without following a
    // link, and only if it is still the folder seen while listing.
    static int openSeenFolder(int folderFd, const char* name, const struct stat& seen);
    // Opens the folder again through its open subfolder's "..", only if it
    // is still the folder `folderStat` describes.
    static int openParentAgain(int childFd, const struct stat& folderStat);
    void reportUnreadable(const QString& folder);
    bool stopped() const { return m_stop.load(std::memory_order_relaxed); }

    std::atomic<bool> m_stop{false};
    CurrentPath m_CurrentPath;
    FileListing* m_listing = nullptr;
    QStringList* m_bundles = nullptr;
    quint64 m_limit = 0;
    QSet<QString> m_recordedBundles;
    QSet<Inode> m_seenFolders;
    PseudoFileSystems m_pseudoFileSystems;
    QStringList m_unreadableFolders;
    QString m_rootPath;
    int m_heldFolderLimit = kMaxHeldFolders;
    int m_statThreads = 1;  // threads that look at a large folder's entries, set once per walk
};

}  // namespace velmora
