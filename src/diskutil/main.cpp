#include "diskutil/Commands.h"
#include "diskutil/PropertyList.h"

#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <string_view>

using namespace velmora::diskutil;

namespace {

const char* const usage =
    "Usage: velmora-diskutil info -plist TARGET | list -plist | listFilesystems -plist | rename TARGET NAME"
    " | eject TARGET | eraseVolume FORMAT NAME DEVICE | reformat DEVICE";

// On failure the error dictionary goes to standard output, where the application reads
// the tool's property lists, and the message to standard error.
int fail(const std::string& message) {
    constexpr int exitCode = 1;
    std::cout << errorDictionary(message, exitCode).toXml();
    std::cerr << "Error: " << message << std::endl;
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, std::function<void(const std::vector<std::string>&)>> commands = {
        {"info", infoCommand},       {"list", listCommand},
        {"listFilesystems", listFilesystemsCommand},
        {"rename", renameCommand},   {"eject", ejectCommand},
        {"eraseVolume", eraseVolumeCommand}, {"reformat", reformatCommand},
    };
    if (argc == 2 && std::string_view(argv[1]) == "--help") {
        std::cout << usage << "\n       velmora-diskutil --help | --version" << std::endl;
        return 0;
    }
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        std::cout << "velmora-diskutil (Velmora Data Eraser) " << VELMORA_VERSION << std::endl;
        return 0;
    }
    if (argc < 2) return fail(usage);
    const auto command = commands.find(argv[1]);
    if (command == commands.end()) return fail(std::string("Unknown verb: ") + argv[1] + ". " + usage);
    try {
        command->second(std::vector<std::string>(argv + 2, argv + argc));
    } catch (const std::exception& error) {
        return fail(error.what());
    }
    return 0;
}
