#include "engine/platform/NativePath.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {

namespace {

constexpr char16_t kFirstKeptByte = 0xDC80;
constexpr char16_t kLastKeptByte = 0xDCFF;

bool isKeptByte(char16_t code) { return code >= kFirstKeptByte && code <= kLastKeptByte; }

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The length of the valid UTF-8 sequence at `at` (1 to 4), or 0 when the byte there
// starts none (overlong forms, surrogates and code points above U+10FFFF are invalid).
int validSequenceLength(const unsigned char* at, qsizetype left) {
    const unsigned char lead = at[0];
    if (lead < 0x80) return 1;
    int length;
    unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) length = 2;
    else if (lead == 0xE0) length = 3, low = 0xA0;
    else if (lead == 0xED) length = 3, high = 0x9F;
    else if (lead >= 0xE1 && lead <= 0xEF) length = 3;
    else if (lead == 0xF0) length = 4, low = 0x90;
    else if (lead >= 0xF1 && lead <= 0xF3) length = 4;
    else if (lead == 0xF4) length = 4, high = 0x8F;
    else return 0;
    if (left < length || at[1] < low || at[1] > high) return 0;
    for (int i = 2; i < length; ++i)
        if (!isContinuation(at[i])) return 0;
    return length;
}

char32_t decodeSequence(const unsigned char* at, int length) {
    if (length == 1) return at[0];
    char32_t code = at[0] & (0x7F >> length);
    for (int i = 1; i < length; ++i) code = (code << 6) | (at[i] & 0x3F);
    return code;
}

void appendUtf8(QByteArray& out, char32_t code) {
    if (code < 0x80) {
        out += char(code);
    } else if (code < 0x800) {
        out += char(0xC0 | (code >> 6));
        out += char(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += char(0xE0 | (code >> 12));
        out += char(0x80 | ((code >> 6) & 0x3F));
        out += char(0x80 | (code & 0x3F));
    } else {
        out += char(0xF0 | (code >> 18));
        out += char(0x80 | ((code >> 12) & 0x3F));
        out += char(0x80 | ((code >> 6) & 0x3F));
        out += char(0x80 | (code & 0x3F));
    }
}

bool needsQuoting(const QString& path) {
    if (path.startsWith(QLatin1String("$'"))) return true;
    for (const QChar c : path) {
        const char16_t code = c.unicode();
        if (code < 0x20 || code == 0x7F || (code >= 0x80 && code <= 0x9F) || isKeptByte(code)) return true;
    }
    return false;
}

QString hexEscape(unsigned char byte) { return QString("\\x%1").arg(int(byte), 2, 16, QChar('0')); }

void closeKeepingErrno(int fd) {
    const int error = errno;
    close(fd);
    errno = error;
}

}  // namespace

QString pathFromNative(const QByteArray& bytes) {
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype size = bytes.size();
    QString path;
    path.reserve(size);
    for (qsizetype at = 0; at < size;) {
        const int length = validSequenceLength(data + at, size - at);
        if (length == 0) {
            path += QChar(char16_t(0xDC00 + data[at]));
            ++at;
            continue;
        }
        const char32_t code = decodeSequence(data + at, length);
        if (code < 0x10000) path += QChar(char16_t(code));
        else path += QString::fromUcs4(&code, 1);
        at += length;
    }
    return path;
}

QByteArray nativePath(const QString& path) {
    QByteArray bytes;
    bytes.reserve(path.size());
    for (qsizetype i = 0; i < path.size(); ++i) {
        const char16_t code = path.at(i).unicode();
        if (QChar::isHighSurrogate(code) && i + 1 < path.size() && QChar::isLowSurrogate(path.at(i + 1).unicode())) {
            appendUtf8(bytes, QChar::surrogateToUcs4(code, path.at(i + 1).unicode()));
            ++i;
        } else if (isKeptByte(code)) {
            bytes += char(code - 0xDC00);
        } else if (QChar::isSurrogate(code)) {
            appendUtf8(bytes, QChar::ReplacementCharacter);
        } else {
            appendUtf8(bytes, code);
        }
    }
    return bytes;
}

bool hasNonTextBytes(const QString& path) {
    return std::any_of(path.cbegin(), path.cend(), [](QChar c) { return isKeptByte(c.unicode()); });
}

QString displayPath(const QString& path) {
    if (!hasNonTextBytes(path)) return path;
    QString shown = path;
    for (QChar& c : shown)
        if (isKeptByte(c.unicode())) c = QChar(QChar::ReplacementCharacter);
    return shown;
}

QString escapedPath(const QString& path) {
    if (!needsQuoting(path)) return path;
    QString quoted = QStringLiteral("$'");
    for (const QChar c : path) {
        const char16_t code = c.unicode();
        if (isKeptByte(code)) quoted += hexEscape(code - 0xDC00);
        else if (code == '\n') quoted += QLatin1String("\\n");
        else if (code == '\t') quoted += QLatin1String("\\t");
        else if (code == '\r') quoted += QLatin1String("\\r");
        else if (code == '\\') quoted += QLatin1String("\\\\");
        else if (code == '\'') quoted += QLatin1String("\\'");
        else if (code < 0x20 || code == 0x7F) quoted += hexEscape(code);
        else if (code >= 0x80 && code <= 0x9F) quoted += hexEscape(0xC2) + hexEscape(code & 0xBF);
        else quoted += c;
    }
    return quoted + QLatin1Char('\'');
}

int openLongPath(const QByteArray& path, int flags, mode_t mode) {
    int folder = AT_FDCWD;
    qsizetype start = 0;
    // Open leading folders until what is left fits the system's limit.
    while (path.size() - start >= PATH_MAX) {
        const qsizetype cut = path.lastIndexOf('/', start + PATH_MAX - 2);
        if (cut < start) {
            if (folder != AT_FDCWD) close(folder);
            errno = ENAMETOOLONG;
            return -1;
        }
        const QByteArray leading = cut == 0 ? QByteArray("/") : path.mid(start, cut - start);
        start = cut + 1;
        if (leading.isEmpty()) continue;
        int next;
        do next = openat(folder, leading.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        while (next < 0 && errno == EINTR);
        if (folder != AT_FDCWD) closeKeepingErrno(folder);
        if (next < 0) return -1;
        folder = next;
    }
    int fd;
    do fd = openat(folder, path.constData() + start, flags | O_CLOEXEC, mode);
    while (fd < 0 && errno == EINTR);
    if (folder != AT_FDCWD) closeKeepingErrno(folder);
    return fd;
}

int openContainingFolder(const QByteArray& path, QByteArray& name) {
    const qsizetype slash = path.lastIndexOf('/');
    name = path.mid(slash + 1);
    if (name.isEmpty() || name == "." || name == "..") {
        errno = EINVAL;
        return -1;
    }
    const QByteArray folder = slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
    return openLongPath(folder, O_PATH | O_DIRECTORY);
}

}  // namespace velmora
