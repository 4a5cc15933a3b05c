#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velmora::diskutil {

// Free bytes of the FAT12/16/32 file system on a device, counted from its first
// allocation table. Used where the mounted driver reports no sizes (FUSE FAT).
// Empty when the device cannot be read or holds no valid FAT boot sector.
std::optional<uint64_t> countFatFreeBytes(const std::string& node);

}  // namespace velmora::diskutil
