#include "engine/copy/CopyVerifier.h"

#include "engine/copy/TreeCopier.h"
#include "engine/copy/UniqueFd.h"
#include "engine/platform/NativePath.h"

#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr size_t kChunk = 1024 * 1024;

// The item at a path of any length, opened without following a final link.
UniqueFd openItem(const QByteArray& path, int flags) {
    QByteArray name;
    const UniqueFd folder(openContainingFolder(path, name));
    if (!folder.valid()) return UniqueFd();
    return UniqueFd(openat(folder.get(), name.constData(), flags | O_NOFOLLOW | O_CLOEXEC));
}

QByteArray linkTarget(const QByteArray& path, bool* ok) {
    QByteArray name;
    const UniqueFd folder(openContainingFolder(path, name));
    QByteArray target(4096, '\0');
    const ssize_t length = folder.valid() ? readlinkat(folder.get(), name.constData(), target.data(), target.size()) : -1;
    *ok = length >= 0;
    target.truncate(qMax<ssize_t>(length, 0));
    return target;
}

ssize_t readFully(int fd, char* buffer, size_t size, off_t offset) {
    size_t done = 0;
    while (done < size) {
        const ssize_t got = pread(fd, buffer + done, size - done, offset + off_t(done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += size_t(got);
    }
    return ssize_t(done);
}

}  // namespace

QList<CopyIssue> CopyVerifier::compare(const QList<std::pair<QByteArray, QByteArray>>& pairs) {
    QList<CopyIssue> mismatches;
    // Written out first, so the copies are read back from the device.
    if (!pairs.isEmpty()) {
        QByteArray name;
        const UniqueFd folder(openContainingFolder(pairs.first().second, name));
        if (folder.valid()) syncfs(folder.get());
    }
    m_sourceBuffer.resize(kChunk);
    m_copyBuffer.resize(kChunk);
    for (const auto& [source, copy] : pairs) {
        if (m_cancel.load(std::memory_order_relaxed)) break;
        const QString difference = this->difference(source, copy);
        ++m_compared;
        if (!difference.isEmpty()) mismatches.append({pathFromNative(source), difference});
    }
    return mismatches;
}

QString CopyVerifier::difference(const QByteArray& sourcePath, const QByteArray& copyPath) {
    struct stat sourceStatus {};
    struct stat copyStatus {};
    QByteArray sourceName;
    QByteArray copyName;
    const UniqueFd sourceFolder(openContainingFolder(sourcePath, sourceName));
    const UniqueFd copyFolder(openContainingFolder(copyPath, copyName));
    if (!sourceFolder.valid() || fstatat(sourceFolder.get(), sourceName.constData(), &sourceStatus, AT_SYMLINK_NOFOLLOW) != 0)
        return "the source could not be read back: " + reasonOf(errno);
    if (!copyFolder.valid() || fstatat(copyFolder.get(), copyName.constData(), &copyStatus, AT_SYMLINK_NOFOLLOW) != 0)
        return "the copy is missing: " + reasonOf(errno);
    if (S_ISLNK(sourceStatus.st_mode)) {
        bool sourceOk = false;
        bool copyOk = false;
        if (!S_ISLNK(copyStatus.st_mode) || linkTarget(sourcePath, &sourceOk) != linkTarget(copyPath, &copyOk) ||
            !sourceOk || !copyOk)
            return "the copied link points elsewhere";
        return {};
    }
    if (!S_ISREG(copyStatus.st_mode)) return "the copy is not a file";
    if (copyStatus.st_size != sourceStatus.st_size) return "the copy has another size";
    const UniqueFd in = openItem(sourcePath, O_RDONLY | O_NONBLOCK);
    const UniqueFd out = openItem(copyPath, O_RDONLY);
    if (!in.valid() || !out.valid()) return "could not be read back: " + reasonOf(errno);
    posix_fadvise(out.get(), 0, 0, POSIX_FADV_DONTNEED);
    for (off_t offset = 0; offset < sourceStatus.st_size; offset += off_t(kChunk)) {
        if (m_cancel.load(std::memory_order_relaxed)) return {};
        const ssize_t a = readFully(in.get(), m_sourceBuffer.data(), kChunk, offset);
        const ssize_t b = readFully(out.get(), m_copyBuffer.data(), kChunk, offset);
        if (a < 0 || b < 0) return "could not be read back: " + reasonOf(errno);
        if (a != b || std::memcmp(m_sourceBuffer.data(), m_copyBuffer.data(), size_t(a)) != 0)
            return QString("the copy differs from the source in the MiB from byte %1").arg(offset);
        if (a == 0) break;
    }
    return {};
}

}  // namespace velmora
