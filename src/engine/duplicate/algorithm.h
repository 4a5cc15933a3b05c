#pragma once

#include "engine/duplicate/fileAttrbItem.h"

#include <memory>

namespace velmora {

// Computes the two fingerprints of a file. Each instance owns a 4 MiB read
// buffer, so one instance serves one thread at a time.
class algorithm {
public:
    static constexpr size_t kFirstBlockSize = 1024;
    static constexpr size_t kReadSize = 4 * 1024 * 1024;
    static constexpr quint64 kDescriptorSpan = quint64(1) << 30;  // bytes read per descriptor

    algorithm();
    ~algorithm();

    // Sets md5_1k: the CRC-64 of the first 1024 bytes, the part behind the end
    // of a shorter file counting as zeros. When the whole file fits in that
    // block it also sets md5, saving the second read. False if unreadable.
    bool getMD5_1K(fileAttrbItem& item);

    // Sets md5: the CRC-64 of the whole file, read in 4 MiB chunks through a
    // fresh descriptor for each GiB. False for an empty or unreadable file.
    // The read does not leave in the page cache what was not there before.
    bool getMD5(fileAttrbItem& item);

private:
    std::unique_ptr<unsigned char[]> m_buffer;
};

}  // namespace velmora
