#include "engine/duplicate/FileIdentity.h"

namespace velmora {

namespace {

const struct timespec& modificationTime(const struct stat& st) {
#if defined(__APPLE__)
    return st.st_mtimespec;
#else
    return st.st_mtim;
#endif
}

}  // namespace

FileIdentity FileIdentity::of(const struct stat& file, const struct stat& folder) {
    const struct timespec& modified = modificationTime(file);
    return {quint64(file.st_dev),  quint64(file.st_ino),    quint64(file.st_size), qint64(modified.tv_sec),
            qint64(modified.tv_nsec), quint64(folder.st_dev), quint64(folder.st_ino)};
}

bool FileIdentity::isUnchanged(const struct stat& st) const {
    const struct timespec& modified = modificationTime(st);
    return isSameFile(st) && quint64(st.st_size) == size && qint64(modified.tv_sec) == modifiedSeconds &&
           qint64(modified.tv_nsec) == modifiedNanoseconds;
}

}  // namespace velmora
