// velmora-privileged-helper: removes, with administrator rights, the items the
// application asks for over its standard input and output. The application starts
// it through pkexec, so the password is asked once per batch.
#include "engine/erase/PrivilegedHelper.h"

#include <cstdio>
#include <string_view>

namespace {

const char* const kUsage =
    "usage: velmora-privileged-helper\n"
    "Serves removal requests of Velmora Data Eraser on standard input and output.\n"
    "The application starts it through pkexec; it is not meant to be run by hand.\n";

}  // namespace

int main(int argc, char* argv[]) {
    if (argc == 1) return velmora::PrivilegedHelper::serve(0, 1);
    const std::string_view option = argv[1];
    if (argc == 2 && option == "--version") {
        std::printf("velmora-privileged-helper (Velmora Data Eraser) %s\n", VELMORA_VERSION);
        return 0;
    }
    if (argc == 2 && (option == "--help" || option == "-h")) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    std::fputs(kUsage, stderr);
    return 2;
}
