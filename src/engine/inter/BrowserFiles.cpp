#include "engine/inter/BrowserFiles.h"

#include "engine/erase/FileDeletion.h"
#include "engine/erase/ImmutableFlag.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QFile>
#include <QMap>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::BrowserFiles {
namespace {

// A trailing "/" would make the system follow a link at the end of the path.
QByteArray withoutTrailingSlash(const QString& path) {
    QByteArray native = nativePath(path);
    while (native.size() > 1 && native.endsWith('/')) native.chop(1);
    return native;
}

bool isRealFolder(const QString& path) {
    struct stat info;
    return ::lstat(withoutTrailingSlash(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The names in a folder opened without following a final link.
QStringList entriesOfFolder(int fd) {
    QStringList names;
    DIR* folder = ::fdopendir(fd);
    if (!folder) {
        ::close(fd);
        return names;
    }
    while (const dirent* entry = ::readdir(folder)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.append(pathFromNative(entry->d_name));
    }
    ::closedir(folder);
    names.sort();
    return names;
}

qint64 sizeBelow(int folderFd) {
    qint64 total = 0;
    DIR* folder = ::fdopendir(folderFd);
    if (!folder) {
        ::close(folderFd);
        return 0;
    }
    while (const dirent* entry = ::readdir(folder)) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
        struct stat info;
        if (::fstatat(::dirfd(folder), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (!S_ISDIR(info.st_mode)) {
            total += info.st_size;
            continue;
        }
        const int child = ::openat(::dirfd(folder), entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (child >= 0) total += sizeBelow(child);
    }
    ::closedir(folder);
    return total;
}

// A profile named by profiles.ini: relative to the profiles folder, without "..", and a
// real folder. An absolute path or one that climbs out is not taken: the cleaning deletes
// inside the profile, so it must be one below the folder the catalogue names.
QString profileInside(const QString& profilesFolder, const QString& relative) {
    if (relative.isEmpty() || relative.startsWith('/')) return {};
    if (relative.split('/').contains("..")) return {};
    const QString path = profilesFolder + relative;
    return isRealFolder(path) ? path : QString();
}

struct IniSection {
    QString name;
    QMap<QString, QString> values;
};

QList<IniSection> readIni(const QString& path) {
    QList<IniSection> sections;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return sections;
    for (const QByteArray& rawLine : file.readAll().split('\n')) {
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.startsWith('[') && line.endsWith(']')) {
            sections.append({line.mid(1, line.size() - 2), {}});
        } else if (const qsizetype equals = line.indexOf('='); equals > 0 && !sections.isEmpty()) {
            sections.last().values.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }
    return sections;
}

QString profileFromIni(const QString& profilesFolder) {
    const QList<IniSection> sections = readIni(profilesFolder + "profiles.ini");
    // The install's default profile is the one the browser opens.
    for (const IniSection& section : sections) {
        if (!section.name.startsWith("Install")) continue;
        const QString path = profileInside(profilesFolder, section.values.value("Default"));
        if (!path.isEmpty()) return path;
    }
    for (const IniSection& section : sections) {
        if (!section.name.startsWith("Profile") || section.values.value("Default") != "1") continue;
        if (section.values.value("IsRelative", "1") != "1") continue;
        const QString path = profileInside(profilesFolder, section.values.value("Path"));
        if (!path.isEmpty()) return path;
    }
    return {};
}

}  // namespace

QString userName() { return qEnvironmentVariable("USER"); }

QString pathWithUser(const QString& urlStr) {
    QString path = urlStr;
    const qsizetype place = path.indexOf("%@");
    if (place < 0) return path;
    if (StandardPaths::layout() == StandardPaths::Layout::Linux)
        return path.replace(place, 2, StandardPaths::homeDir());
    path.replace(place, 2, userName());
    const QString root = StandardPaths::systemRoot();
    return root == "/" ? path : root + path;
}

QStringList getAllFileWithPath(const QString& path) {
    if (path.trimmed().isEmpty()) return {};
    const int fd = openLongPath(withoutTrailingSlash(path), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return {};
    return entriesOfFolder(fd);
}

QString getDefaultWithPath(const QString& path) {
    QString profile;
    for (const QString& name : getAllFileWithPath(path))
        if (name.endsWith(".default")) profile = path + name;
    return profile;
}

QString firefoxProfileWithPath(const QString& profilesFolder) {
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) return getDefaultWithPath(profilesFolder);
    if (const QString fromIni = profileFromIni(profilesFolder); !fromIni.isEmpty()) return fromIni;
    QString profile = getDefaultWithPath(profilesFolder);
    if (!profile.isEmpty() && isRealFolder(profile)) return profile;
    profile.clear();
    for (const QString& name : getAllFileWithPath(profilesFolder))
        if (name.endsWith(".default-release") && isRealFolder(profilesFolder + name)) profile = profilesFolder + name;
    return profile;
}

bool deleteFileWithPath(const QString& folderOrFile, QString* failure) {
    // "Folder/" names the folder itself, not what a link there points at.
    const QByteArray native = withoutTrailingSlash(folderOrFile);
    const QString path = pathFromNative(native);
    struct stat info;
    if (::lstat(native.constData(), &info) != 0) {
        if (errno == ENOENT) return true;
        if (failure) *failure = QString("cannot read %1: %2").arg(displayPath(path), std::strerror(errno));
        return false;
    }
    if (ImmutableFlag::isSet(path) && !ImmutableFlag::clear(path)) {
        if (failure) *failure = QString("%1 is immutable and the flag cannot be cleared").arg(displayPath(path));
        return false;
    }
    if (!FileDeletion::isDeletableFileAtPath(path)) {
        if (failure) *failure = QString("%1 cannot be deleted (no permission)").arg(displayPath(path));
        return false;
    }
    if (!FileDeletion::removeItemAtPath(path) || ::lstat(native.constData(), &info) == 0) {
        if (failure) *failure = QString("%1 could not be removed completely").arg(displayPath(path));
        return false;
    }
    return true;
}

qint64 fileSizeWithPath(const QString& path) {
    const QByteArray native = withoutTrailingSlash(path);
    struct stat info;
    if (::lstat(native.constData(), &info) != 0) return 0;
    if (!S_ISDIR(info.st_mode)) return info.st_size;
    const int fd = openLongPath(native, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    return fd < 0 ? 0 : sizeBelow(fd);
}

QString countText(int count) { return count == 0 ? QString("0 Item") : QString("%1 Items").arg(count); }

}  // namespace velmora::BrowserFiles
