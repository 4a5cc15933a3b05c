#pragma once

#include <cstddef>
#include <string>

namespace velmora::test {

// A fresh folder under /tmp, removed with everything in it when the test ends.
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

void writeFile(const std::string& path, const std::string& content);
std::string readFile(const std::string& path);
bool exists(const std::string& path); // without following a final symbolic link
std::string randomBytes(std::size_t count);
std::string uniqueMarker(); // printable, unique for each call

} // namespace velmora::test
