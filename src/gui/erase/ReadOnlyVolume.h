#pragma once

#include <QString>

namespace velmora {

// Volumes the file eraser refuses to take items from: NTFS volumes (this tool
// cannot write to them) and "lifs" volumes, recognised by the file-system type.
namespace ReadOnlyVolume {

bool isRefusedFileSystemType(const QString& type);
// Looks up the file system holding `path`, logs its description and answers
// whether items there are refused.
bool contains(const QString& path);

}  // namespace ReadOnlyVolume
}  // namespace velmora
