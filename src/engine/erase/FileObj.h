#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

namespace velmora {

// One file or folder of the file eraser's list. The icon is not kept here: the
// engine has no image types, and the page draws it from the path.
struct FileObj {
    QString name;            // last path component
    QString url;             // absolute path (a plain path, not a URL)
    quint64 size = 0;        // bytes, as the file system reports the item itself
    QString type;            // "Folder" for folder records, else the extension as typed
    bool isDir = false;
    bool isSelect = false;
    QString failStr;         // "Success"/"Fail" from the engine, later "Erased"/"Failed"
    QString failReason;      // why the item was not erased; empty otherwise
    quint64 device = 0;      // the item itself (a link is the link) when the erase was
    quint64 inode = 0;       // confirmed; both 0 when it could not be read then
    bool isSymbolicLink = false;
    bool isSSD = false;

    // Marks a symbolic link; the list builder deliberately never calls it.
    void setIsSymbolicLink();
    // Hook for solid-state detection; intentionally empty.
    void setIsSSD() {}
};

using FileObjList = QList<FileObj>;

}  // namespace velmora
