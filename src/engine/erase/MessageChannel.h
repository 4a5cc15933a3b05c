#pragma once

#include <QByteArray>

namespace velmora {

// NUL-terminated messages over a descriptor (the privileged helper's protocol).
// A message may not contain NUL, which no path can.
class MessageChannel {
public:
    MessageChannel(int inFd, int outFd) : m_inFd(inFd), m_outFd(outFd) {}

    // False when the other side is gone.
    bool send(const QByteArray& message);
    // False at end of input, on a read error, or when a message exceeds kMaxMessage.
    bool receive(QByteArray* message);

    static constexpr qsizetype kMaxMessage = 8192;

private:
    int m_inFd;
    int m_outFd;
    QByteArray m_buffer;
};

}  // namespace velmora
