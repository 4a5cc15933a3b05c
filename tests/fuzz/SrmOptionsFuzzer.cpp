// srm's command line carries file names, which may look like options.
#include "FuzzCheck.h"
#include "srm/Options.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The input is the argument list, arguments separated by NUL bytes.
    std::vector<std::string> arguments{"srm"};
    std::string argument;
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == 0) {
            arguments.push_back(argument);
            argument.clear();
        } else {
            argument += char(data[i]);
        }
    }
    arguments.push_back(argument);
    std::vector<const char*> argv;
    for (const std::string& a : arguments) argv.push_back(a.c_str());

    std::string error;
    const std::optional<velmora::Options> options = velmora::parseOptions(int(argv.size()), argv.data(), error);
    if (!options) {
        fuzzCheck(!error.empty(), "a refused command line says why");
        return 0;
    }
    // Paths read from a file come later; then there is no operand.
    fuzzCheck(!options->paths.empty() != !options->pathsFrom.empty(), "a run has its paths from one source");
    // The paths are the operands, in their order: everything after "--", and before it
    // every argument that is not an option word.
    std::vector<std::string> operands;
    bool optionsEnded = false;
    for (size_t i = 1; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        if (!optionsEnded && a == "--") optionsEnded = true;
        else if (optionsEnded || a.size() < 2 || a[0] != '-') operands.push_back(a);
    }
    fuzzCheck(options->paths == operands, "the paths are exactly the operands");
    return 0;
}
