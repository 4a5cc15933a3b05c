#pragma once

#include "engine/uninstall/AMAppItem.h"

namespace velmora::LeftoverMatch {

// The length of the search term that an entry name begins with (case ignored; the term
// as it is, else without its blanks), or -1 when it does not begin with it.
qsizetype matchedLength(const QString& entryName, const QString& term);
// Whether the entry is the term itself or the term followed by ".", " ", "-" or "_".
// An entry that only runs on into further letters or digits ("Notebook" for "Note") is a
// possible match.
bool isExactMatch(const QString& entryName, const QString& term);

// Marks the records after element 0 that another installed application (a different
// path) matches at least as closely by its name or identifier, and sets preTicked:
// exact matches that no other application claims.
void markTicks(AMAppItemList& related, const QString& name, const QString& bundleID, const AMAppItemList& installed);

}  // namespace velmora::LeftoverMatch
