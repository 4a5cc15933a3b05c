#include "srm/Options.h"

namespace velmora {

const char* const kUsage =
    "usage: srm [-fsEmzrv] PATH...\n"
    "  -s  one pass of random data\n"
    "  -E  three passes: random, random, 0x44 0x6F 0x45\n"
    "  -m  seven passes: 0xF6, 0x00, 0xFF, random, 0x00, 0xFF, random\n"
    "      (no mode letter: the 35-pass scheme)\n"
    "  -z  one more pass of zeros at the end\n"
    "  -f  force: missing files are no error, write-protected files are made writable\n"
    "  -r  remove folders and their contents\n"
    "  -v  print progress\n";

std::optional<Options> parseOptions(int argc, const char* const* argv, std::string& error)
{
    Options options;
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (optionsEnded || argument.size() < 2 || argument[0] != '-') {
            options.paths.push_back(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        for (char letter : argument.substr(1)) {
            switch (letter) {
            case 's': options.mode = PassMode::Single; break;
            case 'E': options.mode = PassMode::ThreePass; break;
            case 'm': options.mode = PassMode::SevenPass; break;
            case 'z': options.zeroPass = true; break;
            case 'f': options.force = true; break;
            case 'r': options.recursive = true; break;
            case 'v': options.verbose = true; break;
            default:
                error = std::string("unknown option -") + letter;
                return std::nullopt;
            }
        }
    }
    if (options.paths.empty()) {
        error = "missing path";
        return std::nullopt;
    }
    return options;
}

} // namespace velmora
