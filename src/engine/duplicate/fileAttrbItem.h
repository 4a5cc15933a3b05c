#pragma once

#include "engine/duplicate/FileIdentity.h"

#include <QDateTime>
#include <QString>
#include <QtGlobal>

namespace velmora {

// One file as the duplicate finder sees it. The two fingerprints are CRC-64
// values (the md5 names are historical); 0 means "not computed yet".
struct fileAttrbItem {
    quint64 md5_1k = 0;  // CRC-64 of the first 1024 bytes, zero-padded
    quint64 md5 = 0;     // CRC-64 of the whole file
    quint64 fileSize = 0;
    QString filePathName;
    QString fileName;
    QDateTime ModificationDate;
    FileIdentity identity;  // as listed; a copy is removed only while it still matches
};

}  // namespace velmora
