#include "engine/platform/WriteAll.h"

#include <cerrno>
#include <unistd.h>

namespace velmora {

int writeAll(int fd, const char* data, qsizetype size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        if (written == 0) return EIO;
        data += written;
        size -= written;
    }
    return 0;
}

}  // namespace velmora
