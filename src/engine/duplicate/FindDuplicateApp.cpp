#include "engine/duplicate/FindDuplicateApp.h"

#include "engine/duplicate/FingerprintKey.h"
#include "engine/duplicate/FingerprintPool.h"
#include "engine/duplicate/PathNames.h"
#include "engine/platform/NativePath.h"

#include <algorithm>
#include <numeric>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

namespace {

// Adds every non-folder entry below the open folder `fd` (taken over), whose
// path is `folder`; subfolders are opened relative to it and links are not
// followed.
void listFilesBelow(int fd, const QString& folder, AppAttrbItem& bundle) {
    DIR* dir = fdopendir(fd);
    if (!dir) {
        close(fd);
        return;
    }
    while (const dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0))) continue;
        struct stat st;
        if (fstatat(dirfd(dir), name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
        const QString path = PathNames::appendComponent(folder, pathFromNative(name));
        if (S_ISDIR(st.st_mode)) {
            const int sub = openat(dirfd(dir), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (sub >= 0) listFilesBelow(sub, path, bundle);
            continue;
        }
        fileAttrbItem item;
        item.filePathName = path;
        item.fileName = pathFromNative(name);
        item.fileSize = quint64(st.st_size);
        bundle.DirectorySize += item.fileSize;
        bundle.AllFileInDirectory.append(std::move(item));
    }
    closedir(dir);
}

// The bundle's files as a sorted list of keys: equal lists mean the files
// pair up one to one.
QList<FingerprintKey> contentSignature(const AppAttrbItem& bundle, bool withWhole) {
    QList<FingerprintKey> keys;
    keys.reserve(bundle.AllFileInDirectory.size());
    for (const fileAttrbItem& file : bundle.AllFileInDirectory)
        keys.append({file.fileSize, file.md5_1k, withWhole ? file.md5 : 0});
    std::sort(keys.begin(), keys.end());
    return keys;
}

QList<qsizetype> membersOfSharedClasses(const QList<QList<qsizetype>>& classes) {
    QList<qsizetype> members;
    for (const QList<qsizetype>& oneClass : classes)
        if (oneClass.size() > 1) members.append(oneClass);
    std::sort(members.begin(), members.end());
    return members;
}

}  // namespace

bool FindDuplicateApp::getAllFilePathName(AppAttrbItem& bundle) {
    QByteArray name;
    const int folder = openContainingFolder(nativePath(bundle.DirectoryPathName), name);
    if (folder < 0) return false;
    const int fd = openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat st, parent;
    const bool opened = fd >= 0 && fstat(fd, &st) == 0 && fstat(folder, &parent) == 0;
    close(folder);
    if (!opened) {
        if (fd >= 0) close(fd);
        return false;
    }
    bundle.identity = FileIdentity::of(st, parent);
    listFilesBelow(fd, bundle.DirectoryPathName, bundle);
    return true;
}

void FindDuplicateApp::reportRemaining(qsizetype remaining, qsizetype total) {
    m_Progress.store(total > 0 ? int(remaining * 100 / total) : 0, std::memory_order_relaxed);
}

void FindDuplicateApp::computeFirstBlocks(QList<AppAttrbItem>& bundles, const QList<qsizetype>& which) {
    QList<fileAttrbItem*> files;
    for (qsizetype b : which)
        for (fileAttrbItem& file : bundles[b].AllFileInDirectory) files.append(&file);
    FingerprintPool::run(files.size(), [&](algorithm& worker, qsizetype i) { worker.getMD5_1K(*files[i]); },
                         m_StopSearch, m_maxWorkers);
}

void FindDuplicateApp::computeWholeFiles(QList<AppAttrbItem>& bundles, const QList<qsizetype>& which) {
    QList<fileAttrbItem*> files;
    for (qsizetype b : which) {
        m_CurrentSearchFile.set(bundles[b].DirectoryPathName);
        for (fileAttrbItem& file : bundles[b].AllFileInDirectory)
            if (file.md5 == 0 && file.fileSize > 0) files.append(&file);
    }
    FingerprintPool::run(files.size(), [&](algorithm& worker, qsizetype i) { worker.getMD5(*files[i]); },
                         m_StopSearch, m_maxWorkers);
}

void FindDuplicateApp::FindAppInArray(const QStringList& appPaths, QList<QList<AppAttrbItem>>& outArray) {
    const qsizetype total = appPaths.size();
    QList<AppAttrbItem> bundles;
    for (const QString& path : appPaths) {
        if (stopped()) return;
        m_CurrentSearchFile.set(path);
        AppAttrbItem bundle;
        bundle.DirectoryPathName = path;
        bundle.DirectoryName = PathNames::lastComponent(path);
        if (getAllFilePathName(bundle)) bundles.append(std::move(bundle));
    }
    QList<qsizetype> all(bundles.size());
    std::iota(all.begin(), all.end(), 0);

    // Only bundles of equal total size and file count can be equal; only
    // those are read, first the first blocks, then the whole files of the
    // bundles whose first blocks still pair up.
    const QList<qsizetype> sameShape = membersOfSharedClasses(classesByKey<QPair<quint64, qsizetype>>(
        all, [&](qsizetype b) { return qMakePair(bundles[b].DirectorySize, bundles[b].AllFileInDirectory.size()); }));
    reportRemaining(sameShape.size(), total);
    computeFirstBlocks(bundles, sameShape);
    if (stopped()) return;

    const QList<qsizetype> sameFirstBlocks = membersOfSharedClasses(
        classesByKey<QList<FingerprintKey>>(sameShape, [&](qsizetype b) { return contentSignature(bundles[b], false); }));
    reportRemaining(sameFirstBlocks.size(), total);
    computeWholeFiles(bundles, sameFirstBlocks);
    if (stopped()) return;

    const QList<QList<qsizetype>> equal = classesByKey<QList<FingerprintKey>>(
        sameFirstBlocks, [&](qsizetype b) { return contentSignature(bundles[b], true); });
    for (const QList<qsizetype>& members : equal) {
        if (members.size() < 2) continue;
        QList<AppAttrbItem> group;
        for (qsizetype i = 1; i < members.size(); ++i) group.append(bundles[members[i]]);
        group.append(bundles[members.first()]);
        outArray.append(group);
    }
    reportRemaining(0, total);
}

}  // namespace velmora
