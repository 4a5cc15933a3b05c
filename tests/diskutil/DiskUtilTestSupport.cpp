#include "diskutil/DiskUtilTestSupport.h"

#include "support/ChildProcess.h"
#include "support/LoopVolume.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace velmora::test {

CommandResult runCommand(const std::vector<std::string>& args) {
    std::vector<std::string> command = args;
    command.at(0) = programPath(args.at(0));
    if (command[0].empty()) return {127, "", args[0] + ": not found"};
    const ProcessResult result = runProcess(command);
    return {result.status, result.out, result.err};
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

std::string errorMessageOf(const CommandResult& result) {
    EXPECT_NE(result.exitCode, 0);
    const size_t start = result.out.find("<?xml");
    if (start == std::string::npos) {
        ADD_FAILURE() << "no error dictionary in: " << result.out;
        return {};
    }
    const Dictionary error(result.out.substr(start));
    EXPECT_TRUE(error.boolean("Error")) << result.out;
    EXPECT_EQ(error.integer("ExitCode"), static_cast<uint64_t>(result.exitCode));
    const std::string message = error.string("ErrorMessage");
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    return message;
}

std::string blkidValue(const std::string& node, const std::string& tag) {
    std::string value = runCommand({"blkid", "-p", "-o", "value", "-s", tag, node}).out;
    while (!value.empty() && value.back() == '\n') value.pop_back();
    return value;
}

bool programInstalled(const std::string& name) {
    return !programPath(name).empty();
}

}  // namespace velmora::test
