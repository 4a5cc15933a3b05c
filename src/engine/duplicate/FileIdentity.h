#pragma once

#include <QtGlobal>
#include <sys/stat.h>

namespace velmora {

// A file as the duplicate search saw it: which file it is (device and inode),
// which folder held it, and its size and modification time then. Two paths
// with the same device and inode are one file, never two copies.
struct FileIdentity {
    quint64 device = 0;
    quint64 inode = 0;
    quint64 size = 0;
    qint64 modifiedSeconds = 0;
    qint64 modifiedNanoseconds = 0;
    quint64 folderDevice = 0;
    quint64 folderInode = 0;

    static FileIdentity of(const struct stat& file, const struct stat& folder);

    bool isSameFile(const struct stat& st) const { return quint64(st.st_dev) == device && quint64(st.st_ino) == inode; }
    bool isSameFile(const FileIdentity& other) const { return other.device == device && other.inode == inode; }
    // The same file, still of the size and modification time seen.
    bool isUnchanged(const struct stat& st) const;
    bool isFolderOf(const struct stat& folder) const {
        return quint64(folder.st_dev) == folderDevice && quint64(folder.st_ino) == folderInode;
    }
    qint64 modificationMSecs() const { return modifiedSeconds * 1000 + modifiedNanoseconds / 1000000; }
};

}  // namespace velmora
