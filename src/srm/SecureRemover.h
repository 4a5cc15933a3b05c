#pragma once

#include "srm/Options.h"
#include "srm/Overwriter.h"
#include "srm/RandomSource.h"

#include <string>

#include <sys/stat.h>

namespace velmora {

// Erases and removes the paths named on the command line. Regular files are
// overwritten, emptied, renamed to a random name and unlinked; folders (with -r) are
// emptied that way and removed bottom-up. Symbolic links are removed, never followed.
// Every failure is reported on standard error and makes remove() answer false.
class SecureRemover {
public:
    SecureRemover(const Options& options, int stopAfterPass);

    bool remove(const std::string& path);

private:
    bool removeEntry(int dirfd, const std::string& name, const std::string& path);
    bool removeFile(int dirfd, const std::string& name, const std::string& path, const struct stat& seen);
    bool removeFolder(int dirfd, const std::string& name, const std::string& path, const struct stat& seen);
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
