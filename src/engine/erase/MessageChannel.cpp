#include "engine/erase/MessageChannel.h"

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace velmora {

bool MessageChannel::send(const QByteArray& message) {
    const QByteArray data = message + '\0';
    qsizetype written = 0;
    while (written < data.size()) {
        // MSG_NOSIGNAL: a vanished peer must give an error, not kill the process with SIGPIPE.
        ssize_t count = ::send(m_outFd, data.constData() + written, size_t(data.size() - written), MSG_NOSIGNAL);
        if (count < 0 && errno == ENOTSOCK) count = ::write(m_outFd, data.constData() + written, size_t(data.size() - written));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        written += count;
    }
    return true;
}

bool MessageChannel::receive(QByteArray* message) {
    for (;;) {
        const qsizetype end = m_buffer.indexOf('\0');
        if (end >= 0) {
            *message = m_buffer.left(end);
            m_buffer.remove(0, end + 1);
            return true;
        }
        if (m_buffer.size() > kMaxMessage) return false;
        char chunk[4096];
        const ssize_t count = ::read(m_inFd, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        m_buffer.append(chunk, count);
    }
}

}  // namespace velmora
