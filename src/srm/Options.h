#pragma once

#include "srm/PassScheme.h"

#include <optional>
#include <string>
#include <vector>

namespace velmora {

// The command line: option letters (combined as in "-fsvrz", the last mode letter
// wins), then the paths to remove. "--" ends the options. A path is bytes and an
// argument list cannot carry every name losslessly through every caller, so the paths
// may instead come NUL-terminated from a file ("--files0-from=FILE", "-" for standard
// input), and "-0" ends every output line with NUL instead of a line break, so that a
// name holding a line break cannot split a line.
struct Options {
    PassMode mode = PassMode::ThirtyFivePass;
    bool force = false;
    bool recursive = false;
    bool verbose = false;
    bool zeroPass = false;
    bool nulTerminatedOutput = false;
    std::string pathsFrom;  // the --files0-from source, empty when the paths are arguments
    std::vector<std::string> paths;
};

// The parsed options, or nothing with `error` set when the usage is wrong. The paths of
// --files0-from are read by readPathsFrom, not here.
std::optional<Options> parseOptions(int argc, const char* const* argv, std::string& error);

// Reads the NUL-terminated paths of options.pathsFrom into options.paths (the last one
// may lack its NUL). False with `error` (what is wrong with the source) set when it
// cannot be read, holds no path, or holds an empty one.
bool readPathsFrom(Options& options, std::string& error);

extern const char* const kUsage;

} // namespace velmora
