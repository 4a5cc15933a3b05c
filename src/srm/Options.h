#pragma once

#include "srm/PassScheme.h"

#include <optional>
#include <string>
#include <vector>

namespace velmora {

// The command line: option letters (combined as in "-fsvrz", the last mode letter
// wins), then the paths to remove. "--" ends the options.
struct Options {
    PassMode mode = PassMode::ThirtyFivePass;
    bool force = false;
    bool recursive = false;
    bool verbose = false;
    bool zeroPass = false;
    std::vector<std::string> paths;
};

// The parsed options, or nothing with `error` set when the usage is wrong.
std::optional<Options> parseOptions(int argc, const char* const* argv, std::string& error);

extern const char* const kUsage;

} // namespace velmora
