#include "engine/erase/FileObj.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/PathStatus.h"

namespace velmora {

void FileObj::setIsSymbolicLink() {
    struct stat status;
    isSymbolicLink = statWithoutFollowing(nativePath(url), &status) == 0 && S_ISLNK(status.st_mode);
}

}  // namespace velmora
