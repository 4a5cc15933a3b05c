#include "srm/Options.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace velmora {

const char* const kUsage =
    "usage: srm [-fsEmzrv0] PATH...\n"
    "       srm [-fsEmzrv0] --files0-from=FILE\n"
    "       srm --help | --version\n"
    "  -s  one pass of random data\n"
    "  -E  three passes: random, random, 0x44 0x6F 0x45\n"
    "  -m  seven passes: 0xF6, 0x00, 0xFF, random, 0x00, 0xFF, random\n"
    "      (no mode letter: the 35-pass scheme)\n"
    "  -z  one more pass of zeros at the end\n"
    "  -f  force: missing files are no error, write-protected files are made writable\n"
    "  -r  remove folders and their contents\n"
    "  -v  print progress\n"
    "  -0  end every output line with NUL instead of a line break\n"
    "  --files0-from=FILE  read the paths from FILE (\"-\": standard input), each ended by NUL\n";

namespace {

constexpr char kPathsFromOption[] = "--files0-from=";

} // namespace

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
        if (argument.rfind(kPathsFromOption, 0) == 0) {
            options.pathsFrom = argument.substr(sizeof kPathsFromOption - 1);
            if (options.pathsFrom.empty()) {
                error = "--files0-from needs a file (\"-\" for standard input)";
                return std::nullopt;
            }
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
            case '0': options.nulTerminatedOutput = true; break;
            default:
                error = std::string("unknown option -") + letter;
                return std::nullopt;
            }
        }
    }
    if (!options.pathsFrom.empty() && !options.paths.empty()) {
        error = "paths given both as arguments and with --files0-from";
        return std::nullopt;
    }
    if (options.paths.empty() && options.pathsFrom.empty()) {
        error = "missing path";
        return std::nullopt;
    }
    return options;
}

bool readPathsFrom(Options& options, std::string& error)
{
    const bool fromInput = options.pathsFrom == "-";
    const int fd = fromInput ? STDIN_FILENO : open(options.pathsFrom.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    std::string data;
    char chunk[65536];
    for (;;) {
        const ssize_t count = read(fd, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            error = std::strerror(errno);
            if (!fromInput)
                close(fd);
            return false;
        }
        if (count == 0)
            break;
        data.append(chunk, static_cast<std::size_t>(count));
    }
    if (!fromInput)
        close(fd);
    if (!data.empty() && data.back() == '\0')
        data.pop_back();
    if (data.empty()) {
        error = "holds no path";
        return false;
    }
    std::size_t start = 0;
    for (std::size_t end; (end = data.find('\0', start)) != std::string::npos; start = end + 1)
        options.paths.push_back(data.substr(start, end - start));
    options.paths.push_back(data.substr(start));
    for (const std::string& path : options.paths) {
        if (path.empty()) {
            error = "holds an empty path";
            return false;
        }
    }
    return true;
}

} // namespace velmora
