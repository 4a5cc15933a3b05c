#pragma once

#include "srm/Options.h"
#include "srm/Overwriter.h"
#include "srm/RandomSource.h"

#include <string>

#include <sys/stat.h>

namespace velmora {

// Erases and removes the paths named on the command line. Regular files are
// overwritten, emptied, renamed to a random name and unlinked; folders (with -r) are
// emptied that way and removed bottom-up. Symbolic links are removed, never followed,
// also on the way to a path, and a walk never enters another mount. Every failure is
// reported on standard error and makes remove() answer false.
class SecureRemover {
public:
    SecureRemover(const Options& options, int stopAfterPass);

    bool remove(const std::string& path);

private:
    // insideWalk: the entry was found in a folder being removed, so it must lie on
    // that folder's mount; an operand may be anywhere.
    bool removeEntry(int dirfd, const std::string& name, const std::string& path, bool insideWalk);
    bool removeFile(int dirfd, const std::string& name, const std::string& path, const struct stat& seen,
                    bool insideWalk);
    bool removeFolder(int dirfd, const std::string& name, const std::string& path, const struct stat& seen,
                      bool insideWalk);
    std::string overwriteAll(int fd, const std::string& path);
    bool removeHardLinkedName(int dirfd, const std::string& name, const std::string& path, nlink_t links);
    bool unlinkRenamed(int dirfd, const std::string& name, const std::string& path);
    int openWritable(int dirfd, const std::string& name, const struct stat& seen);
    std::string overwriteResourceFork(int dirfd, const std::string& name, const std::string& path);
    void progress(const std::string& line) const;

    const Options& options_;
    RandomSource random_;
    Overwriter overwriter_;
};

} // namespace velmora
