#include "engine/erase/EraseList.h"

#include "engine/erase/TreeRemoval.h"

#include <QDirIterator>
#include <QFile>
#include <sys/stat.h>

namespace velmora::EraseList {

FileObjList build(const FileObjList& records) {
    FileObjList list;
    for (FileObj record : records) {
        if (!record.isSelect) continue;
        const QByteArray path = TreeRemoval::withResolvedFolder(QFile::encodeName(record.url));
        record.url = QFile::decodeName(path);
        if (const std::optional<TreeRemoval::Identity> identity = TreeRemoval::identityOf(path)) {
            record.device = quint64(identity->device);
            record.inode = quint64(identity->inode);
        }
        list.append(record);
    }
    return list;
}

int itemCount(const FileObj& record) {
    struct stat status;
    if (lstat(QFile::encodeName(record.url).constData(), &status) != 0 || !S_ISDIR(status.st_mode)) return 1;
    int count = 1;
    QDirIterator entries(record.url, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        ++count;
    }
    return count;
}

}  // namespace velmora::EraseList
