#include "support/FakeAppTrees.h"

#include "support/BrowserProfiles.h"

#include <cstdlib>
#include <fcntl.h>
#include <linux/fs.h>
#include <plist/plist.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

ScopedEnvironment::~ScopedEnvironment() {
    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
        if (it->second) ::setenv(it->first.c_str(), it->second->c_str(), 1);
        else ::unsetenv(it->first.c_str());
    }
}

void ScopedEnvironment::set(const std::string& name, const std::string& value) {
    const char* old = std::getenv(name.c_str());
    saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
    ::setenv(name.c_str(), value.c_str(), 1);
}

FakeAppTree::FakeAppTree(const std::string& layout) {
    for (const std::string& folder : {root(), home(), bin(), dir_ / "data"}) makeFolders(folder);
    env_.set("VELMORA_LAYOUT", layout);
    env_.set("VELMORA_ROOT", root());
    env_.set("HOME", home());
    env_.set("VELMORA_HOME", home());
    env_.set("VELMORA_DATA_DIR", dir_ / "data");
    env_.set("PATH", bin() + ":/usr/bin:/bin");
}

void makeBundle(const std::string& path, const std::map<std::string, std::string>& info, bool binary) {
    makeFolders(path + "/Contents/MacOS");
    plist_t dict = plist_new_dict();
    for (const auto& [key, value] : info) plist_dict_set_item(dict, key.c_str(), plist_new_string(value.c_str()));
    char* bytes = nullptr;
    uint32_t length = 0;
    if (binary) plist_to_bin(dict, &bytes, &length);
    else plist_to_xml(dict, &bytes, &length);
    writeFile(path + "/Contents/Info.plist", std::string(bytes, length));
    free(bytes);
    plist_free(dict);
}

void writeTreeFile(const std::string& path, const std::string& content) {
    makeFolders(path.substr(0, path.rfind('/')));
    writeFile(path, content);
}

void makeSizedFile(const std::string& path, long long size) {
    const std::string folder = path.substr(0, path.rfind('/'));
    makeFolders(folder);
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0 || ::ftruncate(fd, size) != 0) throw std::runtime_error("cannot make " + path);
    ::close(fd);
}

bool setImmutable(const std::string& path, bool immutable) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return false;
    int flags = 0;
    bool done = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(fd);
    return done;
}

void installFlatpakStandIn(const std::string& binFolder, const std::string& logFile, const std::string& listFixture,
                           const std::string& home) {
    const std::string script = "#!/bin/sh\n"
                               "for argument in \"$@\"; do printf '%s\\n' \"$argument\" >> '" + logFile + "'; done\n"
                               "echo --end-- >> '" + logFile + "'\n"
                               "case \"$1\" in\n"
                               "list) cat '" + listFixture + "' ;;\n"
                               "ps) cat '" + binFolder + "/flatpak-ps' 2>/dev/null; exit 0 ;;\n"
                               "uninstall) for id in \"$@\"; do :; done; rm -rf -- '" + home + "/.local/share/flatpak/app/'\"$id\" ;;\n"
                               "*) exit 1 ;;\n"
                               "esac\n";
    writeFile(binFolder + "/flatpak", script);
    ::chmod((binFolder + "/flatpak").c_str(), 0755);
}

std::vector<std::vector<std::string>> loggedCalls(const std::string& logFile) {
    std::vector<std::vector<std::string>> calls(1);
    if (!exists(logFile)) return {};
    const std::string log = readFile(logFile);
    std::size_t start = 0;
    while (start < log.size()) {
        const std::size_t end = log.find('\n', start);
        const std::string line = log.substr(start, end - start);
        start = end == std::string::npos ? log.size() : end + 1;
        if (line == "--end--") calls.emplace_back();
        else calls.back().push_back(line);
    }
    calls.pop_back();
    return calls;
}

}  // namespace velmora::test
