#pragma once

#include "engine/duplicate/fileAttrbItem.h"

#include <memory>

namespace velmora {

// A file held open between its first-block read and its whole-file read,
// which saves opening it twice.
class OpenedFile {
public:
    OpenedFile() = default;
    ~OpenedFile();
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    // Opens the item's file without following a link; false when it cannot
    // be read or is no longer the file listed.
    bool open(const fileAttrbItem& item);
    void close();
    int fd() const { return m_fd; }
    // False when the first page had to come from the disk, so that it was
    // not cached before.
    bool firstBlockWasCached = true;
    // CRC-64 of the first 4 KiB, zero-padded: read with the first block at
    // no extra cost, it tells most files with a common header apart before
    // they are read whole.
    quint64 firstPageCrc = 0;

private:
    int m_fd = -1;
};

// Computes the two fingerprints of a file. Each instance owns a read buffer,
// so one instance serves one thread at a time. Reads leave in the
// page cache only what was there before (macOS: reads bypass it).
class algorithm {
public:
    static constexpr size_t kFirstBlockSize = 1024;
    static constexpr size_t kFirstPageSize = 4096;  // what the first read fetches
    static constexpr size_t kReadSize = 128 * 1024;  // a read chunk that stays in the core's cache
    static constexpr quint64 kDescriptorSpan = quint64(1) << 30;  // bytes read per descriptor

    algorithm();
    ~algorithm();

    // Sets md5_1k: the CRC-64 of the first 1024 bytes, the part behind the end
    // of a shorter file counting as zeros. When the whole file fits in the
    // first page it also sets md5, saving the second read. False if
    // unreadable. With `file`, the file is opened into it and stays open, and
    // its first page stays cached until getMD5 or forgetFirstBlock.
    bool getMD5_1K(fileAttrbItem& item, OpenedFile* file = nullptr);
    void forgetFirstBlock(const OpenedFile& file);

    // Sets md5: the CRC-64 of the whole file, read in chunks through a
    // fresh descriptor for each GiB (the first one may be `file`'s). False
    // for an empty or unreadable file.
    bool getMD5(fileAttrbItem& item, const OpenedFile* file = nullptr);

private:
    std::unique_ptr<unsigned char[]> m_buffer;
};

}  // namespace velmora
