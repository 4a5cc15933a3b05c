#include "diskutil/DiskUtilTestSupport.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace velmora::test {

namespace {

std::string readMemoryFile(int fd) {
    std::string text;
    char buffer[4096];
    off_t offset = 0;
    ssize_t count;
    while ((count = pread(fd, buffer, sizeof buffer, offset)) > 0) {
        text.append(buffer, static_cast<size_t>(count));
        offset += count;
    }
    close(fd);
    return text;
}

std::string findInPath(const std::string& name) {
    if (name.find('/') != std::string::npos) return name;
    std::istringstream folders(std::string(std::getenv("PATH") ? std::getenv("PATH") : "") + ":/usr/sbin:/sbin");
    std::string folder;
    while (std::getline(folders, folder, ':')) {
        const std::string candidate = folder + "/" + name;
        if (!folder.empty() && access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return {};
}

std::string unescapeMountField(const std::string& field) {
    std::string text;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            text += static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
}

}  // namespace

CommandResult runCommand(const std::vector<std::string>& args) {
    const std::string path = findInPath(args.at(0));
    if (path.empty()) return {127, "", args[0] + ": not found"};
    const int outFd = memfd_create("out", MFD_CLOEXEC);
    const int errFd = memfd_create("err", MFD_CLOEXEC);
    std::vector<char*> argv;
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outFd, 1);
    posix_spawn_file_actions_adddup2(&actions, errFd, 2);
    pid_t pid = 0;
    CommandResult result;
    if (posix_spawn(&pid, path.c_str(), &actions, nullptr, argv.data(), environ) == 0) {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    posix_spawn_file_actions_destroy(&actions);
    result.out = readMemoryFile(outFd);
    result.err = readMemoryFile(errFd);
    return result;
}

CommandResult runDiskUtil(const std::vector<std::string>& args) {
    const char* binDir = std::getenv("VELMORA_BIN_DIR");
    std::vector<std::string> command = {std::string(binDir ? binDir : ".") + "/velmora-diskutil"};
    command.insert(command.end(), args.begin(), args.end());
    return runCommand(command);
}

Dictionary::Dictionary(const std::string& xml) {
    plist_from_xml(xml.c_str(), static_cast<uint32_t>(xml.size()), &m_root);
}

Dictionary::~Dictionary() {
    if (m_root) plist_free(m_root);
}

plist_t Dictionary::node(const char* key) const {
    return valid() ? plist_dict_get_item(m_root, key) : nullptr;
}

bool Dictionary::has(const char* key) const {
    return node(key) != nullptr;
}

std::string Dictionary::string(const char* key) const {
    return stringOf(node(key));
}

uint64_t Dictionary::integer(const char* key) const {
    uint64_t value = 0;
    if (plist_t item = node(key); item && plist_get_node_type(item) == PLIST_UINT) plist_get_uint_val(item, &value);
    return value;
}

bool Dictionary::boolean(const char* key) const {
    uint8_t value = 0;
    if (plist_t item = node(key); item && plist_get_node_type(item) == PLIST_BOOLEAN) plist_get_bool_val(item, &value);
    return value != 0;
}

std::string stringOf(plist_t node) {
    if (!node || plist_get_node_type(node) != PLIST_STRING) return {};
    char* value = nullptr;
    plist_get_string_val(node, &value);
    std::string text = value ? value : "";
    free(value);
    return text;
}

std::vector<std::string> stringsOf(plist_t array) {
    std::vector<std::string> strings;
    if (!array || plist_get_node_type(array) != PLIST_ARRAY) return strings;
    for (uint32_t i = 0; i < plist_array_get_size(array); ++i) strings.push_back(stringOf(plist_array_get_item(array, i)));
    return strings;
}

std::string blkidValue(const std::string& node, const std::string& tag) {
    std::string value = runCommand({"blkid", "-p", "-o", "value", "-s", tag, node}).out;
    while (!value.empty() && value.back() == '\n') value.pop_back();
    return value;
}

std::vector<std::string> mountPointsOf(const std::string& node) {
    std::vector<std::string> mountPoints;
    struct stat info;
    if (stat(node.c_str(), &info) != 0) return mountPoints;
    const std::string number = std::to_string(major(info.st_rdev)) + ":" + std::to_string(minor(info.st_rdev));
    std::ifstream table("/proc/self/mountinfo");
    std::string line;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string id, parent, device, root, mountPoint;
        fields >> id >> parent >> device >> root >> mountPoint;
        if (device == number) mountPoints.push_back(unescapeMountField(mountPoint));
    }
    return mountPoints;
}

bool programInstalled(const std::string& name) {
    return !findInPath(name).empty();
}

}  // namespace velmora::test
