#pragma once

#include <cstdint>
#include <plist/plist.h>
#include <string>
#include <vector>

namespace velmora::test {

struct CommandResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// Runs a program (searched in PATH and the system folders) and collects its two streams.
CommandResult runCommand(const std::vector<std::string>& args);

// Runs velmora-diskutil from VELMORA_BIN_DIR with the arguments.
CommandResult runDiskUtil(const std::vector<std::string>& args);

// A parsed XML property list whose top level is a dictionary.
class Dictionary {
public:
    explicit Dictionary(const std::string& xml);
    ~Dictionary();
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    bool valid() const { return m_root && plist_get_node_type(m_root) == PLIST_DICT; }
    bool has(const char* key) const;
    std::string string(const char* key) const;
    uint64_t integer(const char* key) const;
    bool boolean(const char* key) const;
    plist_t node(const char* key) const;

private:
    plist_t m_root = nullptr;
};

std::string stringOf(plist_t node);
std::vector<std::string> stringsOf(plist_t array);

// The message of the error dictionary a failed command prints (after any progress lines),
// checked to come with a non-zero exit that the dictionary repeats and on standard error.
std::string errorMessageOf(const CommandResult& result);

// What blkid reads from the device itself: TYPE, LABEL, UUID, VERSION.
std::string blkidValue(const std::string& node, const std::string& tag);

bool programInstalled(const std::string& name);

}  // namespace velmora::test
