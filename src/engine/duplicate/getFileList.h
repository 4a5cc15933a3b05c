#pragma once

#include "engine/duplicate/CurrentPath.h"
#include "engine/duplicate/fileAttrbItem.h"

#include <QList>
#include <QSet>
#include <QStringList>
#include <atomic>

namespace velmora {

// Walks the folder chosen for a duplicate search and produces the ordinary
// files larger than a size limit and the application bundles met on the way.
// Symbolic links are followed only directly in the chosen folder. Runs on the
// search thread; stopSearch() and currentPath() may be called from any thread.
class getFileList {
public:
    // One listed entry with the attributes read while listing, so that the
    // filtering step needs no second look at the disk.
    struct Entry {
        QString path;
        bool isDirectory = false;
        quint64 size = 0;
        qint64 modificationMSecs = 0;
    };

    bool m_bSearchHiddenFile = true;
    bool m_bSearchSystemDirectory = true;  // only matters when searching "/"

    // The entry point: lists `path` and keeps, in listing order, every file
    // strictly larger than limittedSize that is neither hidden (when hidden
    // entries are excluded) nor inside an application bundle; the bundles go
    // to directoryArray. Answers whether the top folder could be read.
    bool getListAtPath(const QString& path, QList<fileAttrbItem>& fileArray, QStringList& directoryArray,
                       quint64 limittedSize);

    // Top-level listing: links are followed, hidden and system folders are
    // skipped as configured, folders are expanded but not listed themselves.
    bool getDirectoryAtPath(const QString& path, QList<Entry>& resultArray);
    // Recursive listing below the top level: links are dropped, each folder
    // comes after its contents; false when stopped or unreadable.
    bool getSubpathsOfDirectoryAtPath(QList<Entry>& outArray, const QString& folder);

    // True when any component of the path starts with a full stop.
    static bool IsHiddenFile(const QString& path);
    // True when the path's top-level component is one of the volume's
    // system folders (Library, Developer, System, Volumes, bin, sbin).
    static bool IsSystemDirectory(const QString& path);
    // True when the entry lies inside a bundle (a component with the
    // extension "app", any case); the bundle is recorded once, and only when
    // the entry is larger than limitSize.
    bool getAppDirectory(const Entry& entry, QStringList& outArray, quint64 limitSize);

    void stopSearch() { m_stop.store(true, std::memory_order_relaxed); }
    QString currentPath() const { return m_CurrentPath.get(); }

private:
    bool stopped() const { return m_stop.load(std::memory_order_relaxed); }

    std::atomic<bool> m_stop{false};
    CurrentPath m_CurrentPath;
    QSet<QString> m_recordedBundles;
};

}  // namespace velmora
