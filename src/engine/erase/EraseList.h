#pragma once

#include "engine/erase/FileObj.h"

namespace velmora::EraseList {

// The erase list of a run, built from the page's records when the erase is
// confirmed: one record per ticked record, in order. A chosen folder stays one item
// that the secure-remove tool walks itself, so nothing can redirect the walk by
// swapping a folder inside it for a link. Each path gets its folder resolved once
// (a chosen link stays the link), and the item found there is pinned by device and
// inode so that the engine can refuse an item that was replaced meanwhile.
FileObjList build(const FileObjList& records);

// How many items erasing the record touches, for progress: 1, plus everything
// inside when it is a folder (links are counted, never followed).
int itemCount(const FileObj& record);

}  // namespace velmora::EraseList
