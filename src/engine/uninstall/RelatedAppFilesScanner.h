#pragma once

#include "engine/uninstall/AMAppItem.h"

namespace velmora {

// The files and folders that belong to an application: the application itself first,
// then the entries of the library folders (their Linux counterparts on that layout) whose
// names begin with the application's name or identifier, in a fixed folder order.
// Runs on the calling thread and sizes every record it adds.
class RelatedAppFilesScanner {
public:
    // `installed`: the other applications of the inventory; a leftover that one of them
    // also matches is never pre-ticked. Records carry preTicked/isPossibleMatch/sharedWith.
    static AMAppItemList relatedFilesToApplicationAtPath(const QString& path, const AMAppItemList& installed = {});
    // The same for a record of the inventory (keeps its kind: Flatpak, Snap, AppImage...).
    static AMAppItemList relatedFilesToApplication(const AMAppItem& application, const AMAppItemList& installed = {});

    static AMAppItemPtr getAppItemWithFilePath(const QString& path, bool appFlag = false);
    static AMAppItemPtr aConstructItem(const QString& path, bool appFlag = false);  // with its size
    static AMAppItemPtr constructItem(const QString& path, bool appFlag = false);   // size "0KB"
    static QString getFileSizeItem(const QString& path);
};

// The per-folder probes and the shared matcher. Each appends records to `list`.
void GetPreferencePaths(AMAppItemList& list, const QString& name, const QString& bundleID);
void GetCachePaths(AMAppItemList& list, const QString& name, const QString& bundleID);
void GetLogPaths(AMAppItemList& list, const QString& name, const QString& bundleID);
void GetSavedStatePaths(AMAppItemList& list, const QString& name, const QString& bundleID);
void GetAppSupportPaths(AMAppItemList& list, const QString& name, const QString& bundleID);
void GetDownloadPaths(AMAppItemList& list, const QString& name, const QString& bundleID);
void GetGrowlPaths(AMAppItemList& list, const QString& name);
// Appends every direct entry of `folder` whose lower-cased name begins with the lower-cased
// term, or with the term without its blanks. Records are marked possible matches when
// the term runs on into a letter or digit.
void AddPathIfExists(AMAppItemList& list, const QString& folder, const QString& term);

}  // namespace velmora
