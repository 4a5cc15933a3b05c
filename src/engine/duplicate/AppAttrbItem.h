#pragma once

#include "engine/duplicate/fileAttrbItem.h"

#include <QList>
#include <QString>

namespace velmora {

// One application bundle and the files inside it, compared as a whole.
struct AppAttrbItem {
    QString DirectoryPathName;
    QString DirectoryName;
    quint64 DirectorySize = 0;  // sum of the sizes of the non-folder entries
    QList<fileAttrbItem> AllFileInDirectory;
    FileIdentity identity;  // of the bundle folder, as listed
};

}  // namespace velmora
