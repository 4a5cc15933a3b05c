#pragma once

#include "support/TestFiles.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {

// Sets environment variables for the life of the object and restores them afterwards.
class ScopedEnvironment {
public:
    ScopedEnvironment() = default;
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    void set(const std::string& name, const std::string& value);  // children inherit it

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

// A fake machine for the uninstaller: a system root and a home in a temporary folder,
// with VELMORA_LAYOUT, VELMORA_ROOT, HOME (and VELMORA_HOME) and VELMORA_DATA_DIR pointing
// at it, and PATH at an empty bin folder of its own (then /usr/bin:/bin), so the machine's
// own Flatpak and Snap are not asked.
class FakeAppTree {
public:
    explicit FakeAppTree(const std::string& layout);  // "macos" or "linux"
    const std::string& path() const { return dir_.path(); }
    std::string root() const { return dir_ / "root"; }
    std::string home() const { return dir_ / "home"; }
    std::string bin() const { return dir_ / "bin"; }
    std::string inRoot(const std::string& relative) const { return root() + "/" + relative; }
    std::string inHome(const std::string& relative) const { return home() + "/" + relative; }
    ScopedEnvironment& environment() { return env_; }

private:
    TempDir dir_;
    ScopedEnvironment env_;
};

// An application bundle with Contents/Info.plist holding the given string keys, written
// as an XML or a binary property list.
void makeBundle(const std::string& path, const std::map<std::string, std::string>& info, bool binary = false);
// A file with its folders.
void writeTreeFile(const std::string& path, const std::string& content);
// A file of `size` bytes (holes, so large sizes cost nothing), with its folders.
void makeSizedFile(const std::string& path, long long size);
// Sets or clears the immutable flag (root on ext4 and the like); false where impossible.
bool setImmutable(const std::string& path, bool immutable);

// A `flatpak` program in `binFolder` that appends each call's arguments (one per line,
// then a line "--end--") to `logFile`, prints the recorded listing `listFixture` for
// "list", the file <binFolder>/flatpak-ps (when there) for "ps", and for "uninstall" removes <data>/flatpak/app/<ID> of the user installation
// below `home`, as the real tool does.
void installFlatpakStandIn(const std::string& binFolder, const std::string& logFile, const std::string& listFixture,
                           const std::string& home);
// The logged calls of the stand-in, each as its argument list.
std::vector<std::vector<std::string>> loggedCalls(const std::string& logFile);

}  // namespace velmora::test
