#include "support/ChildProcess.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::test {

namespace {

constexpr uid_t kNobody = 65534;

int makeCaptureFile()
{
    char name[] = "/tmp/velmora-test-output-XXXXXX";
    const int fd = mkstemp(name);
    if (fd < 0)
        throw std::runtime_error("mkstemp failed");
    unlink(name);
    return fd;
}

std::string readAll(int fd)
{
    std::string text;
    char chunk[65536];
    lseek(fd, 0, SEEK_SET);
    for (ssize_t got; (got = read(fd, chunk, sizeof chunk)) > 0;)
        text.append(chunk, static_cast<std::size_t>(got));
    return text;
}

std::vector<char*> cStrings(const std::vector<std::string>& strings)
{
    std::vector<char*> pointers;
    for (const std::string& s : strings)
        pointers.push_back(const_cast<char*>(s.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// A file holding the text, read from its start, for a child's standard input.
int makeInputFile(const std::string& text)
{
    const int fd = makeCaptureFile();
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(fd, text.data() + written, text.size() - written);
        if (count <= 0)
            throw std::runtime_error("cannot write the input file");
        written += static_cast<std::size_t>(count);
    }
    lseek(fd, 0, SEEK_SET);
    return fd;
}

pid_t spawn(const std::vector<std::string>& argv, const ProcessOptions& options, int outFd, int errFd)
{
    std::vector<char*> arguments = cStrings(argv);
    std::vector<std::string> environment;
    for (char** entry = environ; *entry; ++entry)
        environment.emplace_back(*entry);
    environment.insert(environment.end(), options.environment.begin(), options.environment.end());
    std::vector<char*> environmentPointers = cStrings(environment);
    const bool dropPrivileges = options.unprivileged && geteuid() == 0;
    const int inputFd = options.input.empty() ? open("/dev/null", O_RDONLY | O_CLOEXEC) : makeInputFile(options.input);

    const pid_t pid = fork();
    if (pid != 0) {
        close(inputFd);
        return pid;
    }
    // Child: only async-signal-safe calls from here on.
    dup2(inputFd, STDIN_FILENO);
    dup2(outFd, STDOUT_FILENO);
    dup2(errFd, STDERR_FILENO);
    if (dropPrivileges && (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0))
        _exit(126);
    execvpe(arguments[0], arguments.data(), environmentPointers.data());
    _exit(127);
}

} // namespace

int waitForChild(pid_t pid, int timeoutSeconds, bool& timedOut)
{
    timedOut = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    int status = 0;
    for (;;) {
        const pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid)
            break;
        if (done < 0)
            return -1;
        if (std::chrono::steady_clock::now() > deadline) {
            timedOut = true;
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ProcessResult runProcess(const std::vector<std::string>& argv, const ProcessOptions& options)
{
    ProcessResult result;
    const int outFd = options.outputFd >= 0 ? options.outputFd : makeCaptureFile();
    const int errFd = options.outputFd >= 0 ? options.outputFd : makeCaptureFile();
    const pid_t pid = spawn(argv, options, outFd, errFd);
    if (pid > 0)
        result.status = waitForChild(pid, options.timeoutSeconds, result.timedOut);
    if (options.outputFd < 0) {
        result.out = readAll(outFd);
        result.err = readAll(errFd);
        close(outFd);
        close(errFd);
    }
    return result;
}

pid_t spawnQuietly(const std::vector<std::string>& argv)
{
    const int devNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const pid_t pid = spawn(argv, {}, devNull, devNull);
    close(devNull);
    return pid;
}

static std::string buildProgram(const char* name)
{
    const char* binDir = std::getenv("VELMORA_BIN_DIR");
    if (!binDir)
        throw std::runtime_error("VELMORA_BIN_DIR is not set; run the test through ctest");
    return std::string(binDir) + "/" + name;
}

ProcessResult runSrm(const std::vector<std::string>& arguments, const ProcessOptions& options)
{
    std::vector<std::string> argv{buildProgram("srm")};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return runProcess(argv, options);
}

ProcessResult runCli(const std::vector<std::string>& arguments)
{
    ProcessOptions options;
    options.timeoutSeconds = 300;
    return runCli(arguments, options);
}

ProcessResult runCli(const std::vector<std::string>& arguments, const ProcessOptions& options,
                     const std::vector<std::string>& wrapper)
{
    std::vector<std::string> argv = wrapper;
    argv.push_back(buildProgram("velmora-cli"));
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return runProcess(argv, options);
}

std::vector<std::string> withoutReadOverride()
{
    if (geteuid() != 0)
        return {};
    return {"/usr/bin/setpriv", "--bounding-set=-dac_override,-dac_read_search"};
}

uid_t unprivilegedUid()
{
    return geteuid() == 0 ? kNobody : geteuid();
}

gid_t unprivilegedGid()
{
    return geteuid() == 0 ? kNobody : getegid();
}

} // namespace velmora::test
