#pragma once

#include <cstddef>
#include <string>

namespace velmora::test {

// A fresh folder under /tmp, removed with everything in it when the test ends (by a walk
// relative to folder descriptors, so trees deeper than PATH_MAX go too).
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// These three take paths of any length: beyond PATH_MAX they go folder by folder.
void writeFile(const std::string& path, const std::string& content);
std::string readFile(const std::string& path);
bool exists(const std::string& path); // without following a final symbolic link

// `levels` nested folders below `root`, each named `name`, made relative to one another so
// that the whole path may exceed PATH_MAX. Answers the deepest folder's path.
std::string makeDeepFolders(const std::string& root, int levels, const std::string& name);
std::string randomBytes(std::size_t count);
std::string uniqueMarker(); // printable, unique for each call

} // namespace velmora::test
