#include "engine/volumes/Ext4Fill.h"

#include "engine/platform/LogCategories.h"

#include <QtGlobal>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr long kExt4Magic = 0xEF53;
// From the kernel's ext4 interface (not in the system headers).
constexpr unsigned long kExt4CheckpointRequest = _IOW('f', 43, quint32);
constexpr quint32 kCheckpointZeroOut = 0x2;

bool isExt4(int fd) {
    struct statfs fileSystem;
    return ::fstatfs(fd, &fileSystem) == 0 && fileSystem.f_type == kExt4Magic;
}

// The whole text of a sysfs attribute, empty when it cannot be read.
QByteArray readAttribute(const QByteArray& path) {
    const int fd = ::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return {};
    char text[64];
    const ssize_t size = ::read(fd, text, sizeof text);
    ::close(fd);
    return size > 0 ? QByteArray(text, int(size)).trimmed() : QByteArray();
}

bool writeAttribute(const QByteArray& path, const QByteArray& value) {
    const int fd = ::open(path.constData(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return false;
    const bool written = ::write(fd, value.constData(), size_t(value.size())) == ssize_t(value.size());
    const int error = errno;
    ::close(fd);
    errno = error;
    return written;
}

// The reserve's sysfs attribute of the device holding `fd`; empty when that is no
// ext4 file system on a block device.
QByteArray reserveAttributeOf(int fd) {
    struct stat file;
    if (!isExt4(fd) || ::fstat(fd, &file) != 0) return {};
    // /sys/dev/block/MAJOR:MINOR links to the device's folder, named as the kernel names the device.
    const QByteArray deviceLink =
        "/sys/dev/block/" + QByteArray::number(major(file.st_dev)) + ":" + QByteArray::number(minor(file.st_dev));
    char target[PATH_MAX];
    const ssize_t length = ::readlink(deviceLink.constData(), target, sizeof target - 1);
    if (length <= 0) return {};
    const QByteArray deviceFolder(target, int(length));
    const QByteArray kernelName = deviceFolder.mid(deviceFolder.lastIndexOf('/') + 1);
    if (kernelName.isEmpty() || kernelName == "." || kernelName == "..") return {};
    return "/sys/fs/ext4/" + kernelName + "/reserved_clusters";
}

}  // namespace

Ext4ReserveRelease::Ext4ReserveRelease(int fd) {
    if (::geteuid() != 0) return;
    const QByteArray attribute = reserveAttributeOf(fd);
    if (attribute.isEmpty()) return;
    m_oldValue = readAttribute(attribute);
    if (m_oldValue.isEmpty() || m_oldValue == "0") return;
    if (!writeAttribute(attribute, "0")) {
        qCWarning(lcVolumes, "cannot release the ext4 reserve (%s): %s", attribute.constData(), std::strerror(errno));
        return;
    }
    m_attribute = attribute;
}

Ext4ReserveRelease::~Ext4ReserveRelease() {
    if (m_attribute.isEmpty()) return;
    if (!writeAttribute(m_attribute, m_oldValue))
        qCWarning(lcVolumes, "cannot restore the ext4 reserve of %s clusters (%s): %s", m_oldValue.constData(),
                 m_attribute.constData(), std::strerror(errno));
}

bool checkpointExt4Journal(int fd) {
    if (::geteuid() != 0 || !isExt4(fd)) return true;
    quint32 flags = kCheckpointZeroOut;
    return ::ioctl(fd, kExt4CheckpointRequest, &flags) == 0;
}

}  // namespace velmora
