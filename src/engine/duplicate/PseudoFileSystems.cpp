#include "engine/duplicate/PseudoFileSystems.h"

#include "engine/volumes/MountInfo.h"

#include <QFile>
#if defined(__linux__)
#include <sys/sysmacros.h>
#endif

namespace velmora {

namespace {

const char* const kPseudoTypes[] = {"proc",      "sysfs",      "devtmpfs",   "devpts",      "cgroup",   "cgroup2",
                                    "debugfs",   "tracefs",    "securityfs", "pstore",      "bpf",      "configfs",
                                    "fusectl",   "mqueue",     "hugetlbfs",  "autofs",      "binfmt_misc",
                                    "efivarfs",  "nsfs",       "rpc_pipefs", "selinuxfs",   "fuse.portal"};

const char* const kRootFoldersSkipped[] = {"/proc", "/sys", "/dev", "/run"};

bool isPseudoType(const QString& fileSystemType) {
    for (const char* type : kPseudoTypes)
        if (fileSystemType == QLatin1String(type)) return true;
    return false;
}

}  // namespace

bool PseudoFileSystems::isSkippedBelowRoot(const QString& path) {
    for (const char* folder : kRootFoldersSkipped)
        if (path == QLatin1String(folder)) return true;
    return false;
}

PseudoFileSystems PseudoFileSystems::fromMountInfo(const QByteArray& mountInfo) {
    PseudoFileSystems result;
    for (const MountInfoEntry& entry : parseMountInfo(mountInfo)) {
        if (!isPseudoType(entry.fileSystemType)) continue;
        const QList<QByteArray> numbers = entry.deviceNumber.split(':');
        bool majorOk = false, minorOk = false;
        const uint major = numbers.value(0).toUInt(&majorOk), minor = numbers.value(1).toUInt(&minorOk);
        if (numbers.size() == 2 && majorOk && minorOk) result.m_devices.insert(quint64(makedev(major, minor)));
    }
    return result;
}

PseudoFileSystems PseudoFileSystems::mountedNow() {
#if defined(__linux__)
    QFile table("/proc/self/mountinfo");
    if (table.open(QIODevice::ReadOnly)) return fromMountInfo(table.readAll());
#endif
    return {};
}

}  // namespace velmora
