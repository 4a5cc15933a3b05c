#pragma once

#include <QList>
#include <QString>
#include <sys/types.h>

namespace velmora {

// One direct entry of a folder, typed without following a link.
struct FolderEntry {
    QString name;  // NativePath form
    enum Type { Folder, File, Link, Other } type = Other;
    qint64 size = 0;  // st_size of a file
};

// Opens a folder for reading entries; a link is not followed (-1 then). Closed by the caller.
int openFolder(const QString& path);
int openFolderAt(int parentFd, const QString& name);
// The entries of an open folder in listing order, "." and ".." left out, hidden ones kept.
QList<FolderEntry> readFolderEntries(int folderFd);
// The same by path; empty when the folder cannot be opened (or is a link).
QList<FolderEntry> folderEntries(const QString& path);

// Closes a descriptor when it goes out of scope.
class FolderFd {
public:
    explicit FolderFd(int fd) : m_fd(fd) {}
    ~FolderFd();
    FolderFd(const FolderFd&) = delete;
    FolderFd& operator=(const FolderFd&) = delete;
    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }

private:
    int m_fd;
};

}  // namespace velmora
