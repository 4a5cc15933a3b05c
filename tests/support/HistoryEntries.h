#pragma once

#include <string>

namespace velmora::test {

// Plants `entries` file-eraser runs in the history database at `databasePath`, one
// hour apart from 2020-01-01 00:00 UTC, each with its header row and `itemsPerEntry`
// erased items, as a run stores them (one transaction). Returns the newest entry's key,
// empty when the database could not be written.
std::string plantHistoryEntries(const std::string& databasePath, int entries, int itemsPerEntry);

}  // namespace velmora::test
