#include "engine/erase/EraseList.h"

#include <QDirIterator>
#include <QFileInfo>

namespace velmora::EraseList {
namespace {

bool isRealFolder(const QFileInfo& info) { return info.isDir() && !info.isSymLink(); }

void appendContents(const QString& folder, FileObjList& list) {
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        const QFileInfo info = entries.nextFileInfo();
        FileObj record;
        record.name = info.fileName();
        record.url = folder + "/" + info.fileName();
        record.type = "Folder";
        record.isDir = true;
        if (isRealFolder(info)) {
            appendContents(record.url, list);
        } else if (!info.isSymLink()) {
            // The size tells the engine whether there is content to overwrite. A link
            // has none of its own and stays at 0, so it is unlinked, never followed.
            record.size = quint64(info.size());
        }
        list.append(record);
    }
}

}  // namespace

FileObjList build(const FileObjList& records) {
    FileObjList list;
    for (const FileObj& record : records) {
        if (!record.isSelect) continue;
        // A chosen link to a folder is erased as the link: what it points to was not chosen.
        const QFileInfo info(record.url);
        if (record.isDir && isRealFolder(info) && info.suffix() != "app") appendContents(record.url, list);
        list.append(record);
    }
    return list;
}

}  // namespace velmora::EraseList
