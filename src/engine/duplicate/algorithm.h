#pragma once

#include "engine/duplicate/fileAttrbItem.h"

#include <QByteArray>
#include <memory>
#include <sys/types.h>

namespace velmora {

class BatchedFirstPages;
class DescriptorBudget;

// A file held open between its first-block read and its whole-file read,
// which saves opening it twice.
class OpenedFile {
public:
    OpenedFile() = default;
    ~OpenedFile();
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    // Opens the file at `path` without following a link; false when it
    // cannot be read or is no longer the file listed (an identity with inode
    // 0 stands for a file that was not listed).
    bool open(const QByteArray& path, const FileIdentity& listed);
    // Takes over a descriptor opened and checked elsewhere.
    void adopt(int fd);
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

// The two fingerprints of a file, 0 while not computed.
struct Fingerprints {
    quint64 firstBlock = 0;  // CRC-64 of the first 1024 bytes, zero-padded
    quint64 whole = 0;       // CRC-64 of the whole file
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
    bool getFirstBlock(const QByteArray& path, const FileIdentity& listed, Fingerprints& out, OpenedFile* file);
    void forgetFirstBlock(const OpenedFile& file);
    // The fingerprints of a first page already read (`got` bytes of it, the
    // rest zeros), as getFirstBlock computes them.
    static void fingerprintFirstPage(const unsigned char* page, ssize_t got, Fingerprints& out, OpenedFile& file);

    // Sets md5: the CRC-64 of the whole file, read in chunks through a
    // fresh descriptor for each GiB (the first one may be `file`'s). False
    // for an empty or unreadable file.
    bool getMD5(fileAttrbItem& item, const OpenedFile* file = nullptr);
    bool getWhole(const QByteArray& path, const FileIdentity& listed, Fingerprints& out, const OpenedFile* file);

    // This worker's batched reader of first pages, set up on first use
    // (its ring takes a descriptor from `budget`); null where io_uring does
    // not serve.
    BatchedFirstPages* batchedFirstPages(DescriptorBudget& budget);

private:
    std::unique_ptr<unsigned char[]> m_buffer;
    std::unique_ptr<BatchedFirstPages> m_batched;
    bool m_batchedTried = false;
};

}  // namespace velmora
