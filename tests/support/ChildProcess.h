#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace velmora::test {

struct ProcessOptions {
    std::vector<std::string> environment; // "NAME=value" added to ours
    bool unprivileged = false;            // when root, run as nobody
    int outputFd = -1;                    // stdout and stderr go here instead of being captured
    std::string input;                    // the child's standard input (else /dev/null)
    int timeoutSeconds = 120;
};

struct ProcessResult {
    int status = -1; // exit status, or -1 when killed
    bool timedOut = false;
    std::string out;
    std::string err;
};

// Runs a program (looked up in PATH) to its end and collects its output.
ProcessResult runProcess(const std::vector<std::string>& argv, const ProcessOptions& options = {});

// Starts a program in the background with its output discarded; -1 if it cannot start.
pid_t spawnQuietly(const std::vector<std::string>& argv);

// Waits up to `timeoutSeconds` for the child, then kills it. Answers its exit status
// (-1 when killed or not waitable) and sets `timedOut` if it had to be killed.
int waitForChild(pid_t pid, int timeoutSeconds, bool& timedOut);

// The srm tool of this build, run as a child with the given arguments.
ProcessResult runSrm(const std::vector<std::string>& arguments, const ProcessOptions& options = {});

// velmora-cli of this build, run as a child with the given arguments (for up to 300 s when
// no options are given); `wrapper` (such as setpriv and its options) runs it when given.
ProcessResult runCli(const std::vector<std::string>& arguments);
ProcessResult runCli(const std::vector<std::string>& arguments, const ProcessOptions& options,
                     const std::vector<std::string>& wrapper = {});

// A wrapper for runCli: as root, setpriv without the capabilities that let root read any
// file or folder, so a test can show what happens to an unreadable item; empty otherwise.
std::vector<std::string> withoutReadOverride();

// The uid and gid that `unprivileged` runs use, so a test can hand files to them.
uid_t unprivilegedUid();
gid_t unprivilegedGid();

} // namespace velmora::test
