#include "diskutil/FatAllocationTable.h"

#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace velmora::diskutil {

namespace {

uint32_t little16(const unsigned char* bytes) {
    return bytes[0] | (bytes[1] << 8);
}

uint32_t little32(const unsigned char* bytes) {
    return little16(bytes) | (static_cast<uint32_t>(little16(bytes + 2)) << 16);
}

// A device opened for reading, closed when it goes out of scope.
class ReadOnlyDevice {
public:
    explicit ReadOnlyDevice(const std::string& node) : m_fd(open(node.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~ReadOnlyDevice() {
        if (m_fd >= 0) close(m_fd);
    }
    ReadOnlyDevice(const ReadOnlyDevice&) = delete;
    ReadOnlyDevice& operator=(const ReadOnlyDevice&) = delete;

    bool read(unsigned char* buffer, size_t size, off_t offset) const {
        size_t done = 0;
        while (m_fd >= 0 && done < size) {
            const ssize_t count = pread(m_fd, buffer + done, size - done, offset + static_cast<off_t>(done));
            if (count <= 0) return false;
            done += static_cast<size_t>(count);
        }
        return m_fd >= 0;
    }

private:
    int m_fd;
};

// The boot sector fields that locate the allocation table and size the clusters.
struct BootSector {
    uint32_t bytesPerSector = 0;
    uint32_t sectorsPerCluster = 0;
    uint32_t reservedSectors = 0;
    uint32_t rootDirSectors = 0;
    uint32_t fatCount = 0;
    uint32_t sectorsPerFat = 0;
    uint32_t totalSectors = 0;
};

std::optional<BootSector> parseBootSector(const unsigned char* sector) {
    if (sector[510] != 0x55 || sector[511] != 0xAA) return std::nullopt;
    BootSector boot;
    boot.bytesPerSector = little16(sector + 11);
    boot.sectorsPerCluster = sector[13];
    boot.reservedSectors = little16(sector + 14);
    boot.fatCount = sector[16];
    const uint32_t rootEntries = little16(sector + 17);
    boot.totalSectors = little16(sector + 19) ? little16(sector + 19) : little32(sector + 32);
    boot.sectorsPerFat = little16(sector + 22) ? little16(sector + 22) : little32(sector + 36);
    const bool sane = boot.bytesPerSector >= 512 && boot.bytesPerSector <= 4096 && boot.sectorsPerCluster != 0
        && boot.fatCount != 0 && boot.sectorsPerFat != 0;
    if (!sane) return std::nullopt;
    boot.rootDirSectors = (rootEntries * 32 + boot.bytesPerSector - 1) / boot.bytesPerSector;
    return boot;
}

uint32_t fatEntry(const std::vector<unsigned char>& fat, uint32_t cluster, unsigned entryBits) {
    if (entryBits == 12) {  // two entries share three bytes
        const uint32_t pair = little16(&fat[cluster + cluster / 2]);
        return (cluster & 1) ? pair >> 4 : pair & 0x0FFF;
    }
    if (entryBits == 16) return little16(&fat[cluster * 2]);
    return little32(&fat[cluster * 4]) & 0x0FFFFFFF;
}

}  // namespace

std::optional<uint64_t> countFatFreeBytes(const std::string& node) {
    const ReadOnlyDevice device(node);
    unsigned char sector[512];
    if (!device.read(sector, sizeof sector, 0)) return std::nullopt;
    const std::optional<BootSector> boot = parseBootSector(sector);
    if (!boot) return std::nullopt;

    const uint64_t dataStart =
        boot->reservedSectors + uint64_t(boot->fatCount) * boot->sectorsPerFat + boot->rootDirSectors;
    if (boot->totalSectors <= dataStart) return std::nullopt;
    const uint32_t clusterCount = static_cast<uint32_t>((boot->totalSectors - dataStart) / boot->sectorsPerCluster);
    // The FAT type follows from the cluster count alone.
    const unsigned entryBits = clusterCount < 4085 ? 12 : clusterCount < 65525 ? 16 : 32;
    // Entries 0 and 1 are reserved: cluster numbers run from 2 to clusterCount + 1.
    const uint64_t tableBytes = ((uint64_t(clusterCount) + 2) * entryBits + 7) / 8;
    if (tableBytes > uint64_t(boot->sectorsPerFat) * boot->bytesPerSector) return std::nullopt;

    std::vector<unsigned char> fat(tableBytes + 1);  // one spare byte: FAT12 entries are read in pairs
    if (!device.read(fat.data(), tableBytes, off_t(boot->reservedSectors) * boot->bytesPerSector)) return std::nullopt;
    uint64_t freeClusters = 0;
    for (uint32_t cluster = 2; cluster < clusterCount + 2; ++cluster) {
        if (fatEntry(fat, cluster, entryBits) == 0) ++freeClusters;
    }
    return freeClusters * boot->sectorsPerCluster * boot->bytesPerSector;
}

}  // namespace velmora::diskutil
