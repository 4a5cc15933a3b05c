#pragma once

#include "engine/copy/CopyReport.h"

namespace velmora {

// How a drive copy ended. Complete only when every item was copied (and, when asked,
// verified) and the copy was neither stopped nor lost its destination.
struct CopyResult {
    QString destinationFolder;
    bool cancelled = false;
    bool destinationLost = false;
    quint64 copiedItems = 0;
    quint64 copiedBytes = 0;
    QList<CopyIssue> failures;     // items not copied
    QList<CopyNote> notes;         // what the destination did not keep of copied items
    bool verified = false;         // a verification ran to its end
    quint64 verifiedFiles = 0;
    QList<CopyIssue> mismatches;   // copied files whose copy differs

    bool complete() const { return !cancelled && !destinationLost && failures.isEmpty() && mismatches.isEmpty(); }
};

}  // namespace velmora
