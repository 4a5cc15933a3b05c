#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora {

// The few file calls that differ between Linux and macOS.

// Opens `name` in `dirfd` write-only, bypassing the page cache where the file system
// allows it (O_DIRECT on Linux, F_NOCACHE on macOS). Never follows a symbolic link
// and never blocks on a FIFO. Returns -1 with errno set on failure.
int openForOverwrite(int dirfd, const char* name);

// Writes all `length` bytes at `offset`. When the file system refuses uncached I/O
// for this request the descriptor falls back to cached I/O and the write is retried.
// Returns 0, or the errno of the failure with `written` telling how far it got.
int writeFully(int fd, const std::uint8_t* data, std::size_t length, std::uint64_t offset,
               std::size_t& written);

// Flushes the file's data to the device itself, past the drive's cache where the
// platform can ask for that (F_FULLFSYNC on macOS). Returns false with errno set.
bool syncToDevice(int fd);

// Drops the file's pages from the cache, so the erasure leaves the cache as it was.
void dropCachedPages(int fd);

// Renames `from` to `to` within one folder, failing with EEXIST rather than
// replacing an existing `to`. Returns false with errno set.
bool renameWithoutReplacing(int dirfd, const char* from, const char* to);

} // namespace velmora
