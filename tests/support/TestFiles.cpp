#include "support/TestFiles.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

TempDir::TempDir()
{
    char pattern[] = "/tmp/velmora-test-XXXXXX";
    if (!mkdtemp(pattern))
        throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
    chmod(path_.c_str(), 0755); // unprivileged runs must reach their files
}

TempDir::~TempDir()
{
    std::error_code ignored;
    // Folders a test made read-only must be writable again to be emptied.
    for (auto it = std::filesystem::recursive_directory_iterator(path_, ignored);
         it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
        if (it->is_directory(ignored) && !it->is_symlink(ignored))
            chmod(it->path().c_str(), 0755);
    }
    std::filesystem::remove_all(path_, ignored);
}

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

bool exists(const std::string& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

std::string randomBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t got = getrandom(bytes.data() + filled, count - filled, 0);
        if (got <= 0)
            throw std::runtime_error("getrandom failed");
        filled += static_cast<std::size_t>(got);
    }
    return bytes;
}

std::string uniqueMarker()
{
    static const char hex[] = "0123456789abcdef";
    std::string marker = "VELMORA-RESIDUE-";
    for (unsigned char byte : randomBytes(24)) {
        marker += hex[byte >> 4];
        marker += hex[byte & 15];
    }
    return marker;
}

} // namespace velmora::test
