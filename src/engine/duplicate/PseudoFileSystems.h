#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <sys/types.h>

namespace velmora {

// The mounted file systems a duplicate search does not enter: kernel and
// virtual file systems (proc, sysfs, devtmpfs, cgroup, ...) whose entries are
// not the user's files and may block or never end when read. tmpfs and
// overlay are searched: they hold real files (/tmp, a container's root).
class PseudoFileSystems {
public:
    // The pseudo file systems mounted now (Linux: /proc/self/mountinfo;
    // elsewhere there are none to skip).
    static PseudoFileSystems mountedNow();
    static PseudoFileSystems fromMountInfo(const QByteArray& mountInfo);

    // Below "/", the kernel's and the runtime's folders are skipped by name
    // as well: /proc, /sys, /dev and /run.
    static bool isSkippedBelowRoot(const QString& path);

    bool contains(dev_t device) const { return m_devices.contains(quint64(device)); }

private:
    QSet<quint64> m_devices;
};

}  // namespace velmora
