// srm: overwrites files beyond recovery, then removes them.
// Exit status: 0 when every path was erased, 1 when any failed, 2 for bad usage.

#include "srm/Messages.h"
#include "srm/Options.h"
#include "srm/SecureRemover.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

namespace {

// Test hook: VELMORA_SRM_STOP_AFTER_PASS=N ends the tool (status 3) right after pass N
// reached the device, leaving the file in place so a test can read what was written.
int stopAfterPass()
{
    const char* value = std::getenv("VELMORA_SRM_STOP_AFTER_PASS");
    return value ? std::atoi(value) : 0;
}

} // namespace

int main(int argc, char** argv)
{
    // The reader of our output may go away; that must not stop an erasure half-way.
    std::signal(SIGPIPE, SIG_IGN);

    // A lone --help or --version; any other argument list is the erasure's.
    if (argc == 2 && std::string_view(argv[1]) == "--help") {
        std::fputs(velmora::kUsage, stdout);
        return 0;
    }
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        std::printf("srm (Velmora Data Eraser) %s\n", VELMORA_VERSION);
        return 0;
    }

    std::string error;
    std::optional<velmora::Options> options = velmora::parseOptions(argc, argv, error);
    if (!options) {
        std::fprintf(stderr, "srm: %s\n%s", error.c_str(), velmora::kUsage);
        return 2;
    }
    if (options->nulTerminatedOutput)
        velmora::endLinesWithNul();
    if (!options->pathsFrom.empty() && !velmora::readPathsFrom(*options, error)) {
        velmora::printProblem(options->pathsFrom, error);
        return 2;
    }
    try {
        velmora::SecureRemover remover(*options, stopAfterPass());
        bool allErased = true;
        for (const std::string& path : options->paths)
            allErased = remover.remove(path) && allErased;
        return allErased ? 0 : 1;
    } catch (const std::exception& failure) {
        velmora::printProblem("srm", failure.what());
        return 1;
    }
}
