#pragma once

#include <string>
#include <vector>

namespace velmora::diskutil {

struct ProgramResult {
    int exitCode = 0;
    std::string output;  // standard output: what parsers read
    std::string errors;  // standard error: kept for messages, never parsed

    // What the program said about a failure: its standard error, or its standard
    // output when it wrote nothing there.
    const std::string& reason() const { return errors.empty() ? output : errors; }
};

// Full path of a program in /usr/sbin, /sbin, /usr/bin or /bin (never PATH): a
// regular file owned by root that only root may change. Empty when there is none.
std::string findProgram(const std::string& name);

// Runs the program args[0] names (found by findProgram) with args, standard input
// from /dev/null and PATH set to the system folders, and waits for it.
// Exit code 127 when the program cannot be found or started. Each stream is
// collected in a memory file rather than a pipe, so a program that leaves a
// daemon behind (a FUSE driver) cannot keep the call waiting for end of file.
ProgramResult runProgram(const std::vector<std::string>& args);

}  // namespace velmora::diskutil
