#include "engine/duplicate/getFileList.h"

#include "engine/duplicate/DuplicateLog.h"
#include "engine/duplicate/PathNames.h"

#include <QFile>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

namespace {

qint64 modificationMSecs(const struct stat& st) {
#if defined(__APPLE__)
    return qint64(st.st_mtimespec.tv_sec) * 1000 + st.st_mtimespec.tv_nsec / 1000000;
#else
    return qint64(st.st_mtim.tv_sec) * 1000 + st.st_mtim.tv_nsec / 1000000;
#endif
}

getFileList::Entry makeEntry(const QString& path, const struct stat& st) {
    return {path, S_ISDIR(st.st_mode), quint64(st.st_size), modificationMSecs(st)};
}

// Opens a folder for listing; logs and answers null when it cannot be read.
DIR* openFolder(const QString& folder) {
    DIR* dir = opendir(QFile::encodeName(folder).constData());
    if (!dir) qCInfo(lcDuplicate, "get contents Of Directory At Path failed%s: %s", qUtf8Printable(folder), strerror(errno));
    return dir;
}

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

const char* const kSystemDirectories[] = {"Library", "Developer", "System", "Volumes", "bin", "sbin"};

}  // namespace

bool getFileList::getListAtPath(const QString& path, QList<fileAttrbItem>& fileArray, QStringList& directoryArray,
                                quint64 limittedSize) {
    m_stop.store(false, std::memory_order_relaxed);
    QList<Entry> listing;
    const bool listed = getDirectoryAtPath(path, listing);
    if (!listed) return false;
    for (const Entry& entry : listing) {
        if (stopped()) break;
        if (!m_bSearchHiddenFile && IsHiddenFile(entry.path)) continue;
        if (getAppDirectory(entry, directoryArray, limittedSize)) continue;
        if (entry.isDirectory) continue;
        if (entry.size > limittedSize) {
            qCDebug(lcDuplicate, "file:%s filesize:%llu", qUtf8Printable(entry.path), entry.size);
            fileAttrbItem item;
            item.fileSize = entry.size;
            item.filePathName = entry.path;
            item.fileName = PathNames::lastComponent(entry.path);
            item.ModificationDate = QDateTime::fromMSecsSinceEpoch(entry.modificationMSecs, Qt::UTC);
            fileArray.append(std::move(item));
        }
    }
    return listed;
}

bool getFileList::getDirectoryAtPath(const QString& path, QList<Entry>& resultArray) {
    if (path.isEmpty()) return false;
    DIR* dir = openFolder(path);
    if (!dir) return false;
    QStringList names;
    while (const dirent* entry = readdir(dir))
        if (!isDotOrDotDot(entry->d_name)) names.append(QFile::decodeName(entry->d_name));
    closedir(dir);

    for (const QString& name : names) {
        const QString fullPath = PathNames::appendComponent(path, name);
        struct stat st;
        if (stat(QFile::encodeName(fullPath).constData(), &st) != 0) {
            qCInfo(lcDuplicate, "directory not exsts:%s", qUtf8Printable(fullPath));
            continue;
        }
        if (!S_ISDIR(st.st_mode)) {
            resultArray.append(makeEntry(fullPath, st));
            continue;
        }
        if (!m_bSearchHiddenFile && IsHiddenFile(fullPath)) continue;
        if (!m_bSearchSystemDirectory && path == "/" && IsSystemDirectory(fullPath)) continue;
        QList<Entry> below;
        getSubpathsOfDirectoryAtPath(below, fullPath);
        resultArray.append(below);
    }
    return true;
}

bool getFileList::getSubpathsOfDirectoryAtPath(QList<Entry>& outArray, const QString& folder) {
    if (folder.isEmpty() || stopped()) return false;
    m_CurrentPath.set(folder);
    DIR* dir = openFolder(folder);
    if (!dir) return false;
    const int folderFd = dirfd(dir);
    while (const dirent* entry = readdir(dir)) {
        if (isDotOrDotDot(entry->d_name)) continue;
        struct stat st;
        if (fstatat(folderFd, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (S_ISLNK(st.st_mode)) continue;
        const QString fullPath = PathNames::appendComponent(folder, QFile::decodeName(entry->d_name));
        if (S_ISDIR(st.st_mode)) {
            QList<Entry> below;
            if (!getSubpathsOfDirectoryAtPath(below, fullPath)) continue;
            outArray.append(below);
        }
        outArray.append(makeEntry(fullPath, st));
    }
    closedir(dir);
    return true;
}

bool getFileList::IsHiddenFile(const QString& path) {
    return path.startsWith('.') || path.contains(QLatin1String("/."));
}

bool getFileList::IsSystemDirectory(const QString& path) {
    const QStringList components = path.split('/', Qt::SkipEmptyParts);
    if (components.isEmpty()) return false;
    for (const char* name : kSystemDirectories)
        if (components.first().compare(QLatin1String(name), Qt::CaseInsensitive) == 0) return true;
    return false;
}

bool getFileList::getAppDirectory(const Entry& entry, QStringList& outArray, quint64 limitSize) {
    const QString& path = entry.path;
    if (!path.contains(QLatin1String(".app"), Qt::CaseInsensitive)) return false;
    qsizetype start = 0;
    while (start < path.size()) {
        qsizetype end = path.indexOf('/', start);
        if (end < 0) end = path.size();
        const QString component = path.mid(start, end - start);
        if (PathNames::pathExtension(component).compare(QLatin1String("app"), Qt::CaseInsensitive) == 0) {
            const QString bundlePath = path.left(end);
            if (!m_recordedBundles.contains(bundlePath) && entry.size > limitSize) {
                m_recordedBundles.insert(bundlePath);
                outArray.append(bundlePath);
            }
            return true;
        }
        start = end + 1;
    }
    return false;
}

}  // namespace velmora
