#pragma once

#include "engine/erase/FileObj.h"

namespace velmora::EraseList {

// The erase list of a run, built from the page's records: each ticked folder
// (other than an ".app" bundle) is preceded by its whole contents, depth first,
// so every item comes before the folder that holds it. Contents records are all
// marked as folders and typed "Folder"; the engine decides by what is on disk.
// Links are never followed into.
FileObjList build(const FileObjList& records);

}  // namespace velmora::EraseList
