#include "srm/Messages.h"

#include <cerrno>
#include <climits>

#include <poll.h>
#include <unistd.h>

namespace velmora {

namespace {

char lineEnd = '\n';

// A pipe that polls writable takes up to PIPE_BUF bytes at once without blocking, so
// longer lines (deep paths) are shortened to that.
void writeIfRoom(int fd, std::string text)
{
    if (text.size() > PIPE_BUF) {
        text.resize(PIPE_BUF - 1);
        text += lineEnd;
    }
    pollfd ready{fd, POLLOUT, 0};
    if (poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0)
        return;
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t result = write(fd, text.data() + written, text.size() - written);
        if (result < 0 && errno == EINTR)
            continue;
        if (result <= 0)
            return;
        written += static_cast<std::size_t>(result);
    }
}

} // namespace

void endLinesWithNul()
{
    lineEnd = '\0';
}

void printProgress(const std::string& line)
{
    writeIfRoom(STDOUT_FILENO, line + lineEnd);
}

void printProblem(const std::string& path, const std::string& reason)
{
    writeIfRoom(STDERR_FILENO, "srm: " + path + ": " + reason + lineEnd);
}

} // namespace velmora
